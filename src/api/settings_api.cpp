// K_Camera_SaveSettings, K_Camera_LoadSettings and what a validation found.
#include <kiv/platform/text.h>
#include <kiv/settings.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "api/checks.h"
#include "api/error_record.h"
#include "settings/collect_settings.h"
#include "settings/load_settings.h"
#include "settings/script_reader.h"
#include "settings/script_writer.h"
#include "settings/validate_settings.h"
#include "settings/validation_text.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CCameraClass;

namespace {

// Texts that are no text in their encoding are no file name either.
std::optional<std::string> utf8_name(const char* name) noexcept try {
    if (!name) return std::nullopt;
    return platform::utf8_from_local(name);
} catch (const std::exception&) {
    return std::nullopt;
}
std::optional<std::string> utf8_name(const wchar_t* name) noexcept try {
    if (!name) return std::nullopt;
    return platform::utf8_from_wide(name);
} catch (const std::exception&) {
    return std::nullopt;
}

std::shared_ptr<ValidationText> validation_text(CCameraClass& camera) {
    auto text = camera.AttachmentOf<ValidationText>([] { return std::make_shared<ValidationText>(); });
    if (!text) fail(K_ST_INVALID_HANDLE);
    return text;
}

const RecordError record = [](const GenICam::GenericException& error) { record_genicam_error(error); };

K_STATUS_CODES save(CAM_HANDLE hCamera, const std::optional<std::string>& file, uint32_t mode) {
    auto& opened = camera(hCamera);
    require(file.has_value());
    auto& map = node_map(opened);
    auto save_mode = mode == K_SAVE_ALL ? SaveMode::all : SaveMode::streamable_only;
    if (mode == K_SAVE_AUTO) save_mode = suitable_save_mode(map);
    return write_script(*file, collect_settings(map, save_mode, record)) ? K_ST_SUCCESS : K_ST_IO;
}

K_STATUS_CODES validate(CCameraClass& opened, GenApi::INodeMap& map, const Settings& settings) {
    auto text = validation_text(opened);
    text->Set({});
    auto found = validate_settings(map, settings, record);
    text->Set(std::move(found.text));
    if (found.has_errors) return K_ST_VALIDATION_ERROR;
    return found.has_warnings ? K_ST_VALIDATION_WARNING : K_ST_SUCCESS;
}

K_STATUS_CODES load(CAM_HANDLE hCamera, const std::optional<std::string>& file, uint32_t mode) {
    auto& opened = camera(hCamera);
    require(file.has_value());
    auto& map = node_map(opened);
    auto settings = read_script(*file);
    if (!settings) return K_ST_SETTINGS_FILE_ERROR;
    if (settings->empty()) return K_ST_SUCCESS;
    if (mode == K_LOAD_AUTO || mode == K_VALIDATE_ONLY) {
        auto status = validate(opened, map, *settings);
        if (mode == K_VALIDATE_ONLY || status == K_ST_VALIDATION_ERROR) return status;
    }
    replay_settings(map, *settings, mode == K_LOAD_ONLY ? AfterFailure::go_on : AfterFailure::stop, record);
    return K_ST_SUCCESS;
}

}  // namespace

K_API K_STATUS_CODES K_CALL K_Camera_SaveSettings(CAM_HANDLE hCamera, const char* fileName, uint32_t mode) {
    return guarded([&] { return save(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_SaveSettingsA(CAM_HANDLE hCamera, const char* fileName, uint32_t mode) {
    return guarded([&] { return save(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_SaveSettingsW(CAM_HANDLE hCamera, const wchar_t* fileName, uint32_t mode) {
    return guarded([&] { return save(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_LoadSettings(CAM_HANDLE hCamera, const char* fileName, uint32_t mode) {
    return guarded([&] { return load(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_LoadSettingsA(CAM_HANDLE hCamera, const char* fileName, uint32_t mode) {
    return guarded([&] { return load(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_LoadSettingsW(CAM_HANDLE hCamera, const wchar_t* fileName, uint32_t mode) {
    return guarded([&] { return load(hCamera, utf8_name(fileName), mode); });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetSettingsValidationErrorInfo(CAM_HANDLE hCamera, char* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto& size = out(pSize);
        auto text = validation_text(opened)->Get();
        const auto needed = static_cast<uint32_t>(text.size() + 1);
        if (size == 0) {
            size = needed;
            return K_ST_SUCCESS;
        }
        out(buffer);
        if (text.empty()) return K_ST_SUCCESS;
        // The terminator goes along only where there is room for it.
        std::memcpy(buffer, text.c_str(), std::min(size, needed));
        size = needed;
        return K_ST_SUCCESS;
    });
}
