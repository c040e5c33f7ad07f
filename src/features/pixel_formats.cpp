#include "features/pixel_formats.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include <string>

#include "features/node_cast.h"
#include "imaging/pixel_format_tables.h"

namespace kiv {

using GenICam::Factory::CCameraClass;

void translate_pixel_formats(CCameraClass& camera) {
    auto& tables = camera.PixelFormats();
    tables.MarkFilled();
    auto* map = camera.GetNodeMap();
    if (!map) fail(K_ST_NO_DATA);
    auto* node = map->GetNode("PixelFormat");
    auto* formats = node ? interface_of<GenApi::IEnumeration>(*node) : nullptr;
    if (!formats) fail(K_ST_INVALID_PARAMETER);
    GenApi::NodeList_t entries;
    formats->GetEntries(entries);
    for (auto* each : entries) {
        auto* entry = interface_of<GenApi::IEnumEntry>(*each);
        if (!entry) continue;
        auto name = each->GetName();
        tables.Insert(translate_pixel_format(static_cast<std::uint64_t>(entry->GetValue()), name.c_str()));
    }
}

PixelFormatTables& pixel_formats(CCameraClass& camera) noexcept {
    auto& tables = camera.PixelFormats();
    if (tables.Filled()) return tables;
    try {
        translate_pixel_formats(camera);
    } catch (const StatusError&) {
        // No such feature: the tables stay empty.
    } catch (const GenICam::GenericException& error) {
        platform::debug_print(std::string("PixelFormat: ") + error.GetDescription() + "\n");
    } catch (const std::exception& error) {
        platform::debug_print(std::string("PixelFormat: ") + error.what() + "\n");
    }
    return tables;
}

std::uint64_t local_pixel_type(CCameraClass& camera, std::uint64_t reported) noexcept {
    constexpr std::uint64_t mono8 = 0x01080001;
    std::uint64_t local = mono8;
    pixel_formats(camera).LocalCode(reported, local);
    return local;
}

}  // namespace kiv
