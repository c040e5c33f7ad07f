#include "transport/enumeration.h"

#include <kiv/platform/debug_output.h>

#include <algorithm>

#include "transport/camera_id.h"
#include "transport/factory.h"
#include "transport/interface.h"

namespace kiv {

namespace {

using GenICam::Factory::CInterfaceClass;
using GenICam::Factory::CTLWrapper;

constexpr std::uint64_t list_timeout_ms = 200;

// A 512-byte identifier asked of a producer; nothing when it does not fit or the producer refuses.
template <class Get>
std::optional<std::string> identifier(Get&& get) {
    char text[512 + 1] = {};
    std::size_t size = sizeof text - 1;
    if (get(text, &size) != GenTL::GC_ERR_SUCCESS) return std::nullopt;
    return std::string(text);
}

CInterfaceClass* opened_interface(CTLWrapper& producer, const std::string& id) {
    if (auto* known = producer.FindInterface(id)) return known;
    CInterfaceClass* opened = nullptr;
    if (auto status = producer.OpenInterface(id, opened); status != K_ST_SUCCESS)
        platform::debug_print("list_cameras: TLOpenInterface(\"" + id + "\") failed with status " + std::to_string(status) +
                              "\n");
    return opened;
}

void list_devices(const std::string& producer_key, CInterfaceClass& opened, std::vector<std::string>& cameras) {
    auto& producer = opened.Producer();
    bool changed = false;
    std::uint32_t count = 0;
    producer.IFUpdateDeviceList(opened.Handle(), &changed, list_timeout_ms);
    if (producer.IFGetNumDevices(opened.Handle(), &count) != GenTL::GC_ERR_SUCCESS) return;
    for (std::uint32_t index = 0; index < count; ++index) {
        auto device =
            identifier([&](char* text, std::size_t* size) { return producer.IFGetDeviceID(opened.Handle(), index, text, size); });
        if (!device) continue;
        auto id = format({producer_key, opened.Id(), *device});
        if (std::find(cameras.begin(), cameras.end(), id) == cameras.end()) cameras.push_back(std::move(id));
    }
}

}  // namespace

void list_cameras(const std::string& producer_key, CTLWrapper& producer, const GenICam::Factory::ForceIpSettings& force_ip,
                  std::vector<std::string>& cameras) {
    bool changed = false;
    std::uint32_t count = 0;
    producer.TLUpdateInterfaceList(producer.TL(), &changed, list_timeout_ms);
    if (producer.TLGetNumInterfaces(producer.TL(), &count) != GenTL::GC_ERR_SUCCESS) return;
    for (std::uint32_t index = 0; index < count; ++index) {
        auto id = identifier(
            [&](char* text, std::size_t* size) { return producer.TLGetInterfaceID(producer.TL(), index, text, size); });
        auto* opened = id ? opened_interface(producer, *id) : nullptr;
        if (!opened) continue;
        if (producer.TLSetForceIp && producer.IsGigE()) producer.TLSetForceIp(opened->Handle(), force_ip.enable, force_ip.second);
        list_devices(producer_key, *opened, cameras);
    }
}

}  // namespace kiv
