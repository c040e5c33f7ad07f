// Entry points of a scripted producer: library, system module, interfaces. Which of the optional exports a module has is decided
// by its build; what it says is decided by its world.
#include <cstring>
#include <utility>

#include "scripted_entry.h"

namespace scripted {

using namespace GenTL;

namespace {

std::unique_ptr<World>& owned_world() {
    static std::unique_ptr<World> the_world;
    return the_world;
}

void reset() {
    owned_world() = std::make_unique<World>();
    furnish(*owned_world(), SCRIPTED_NAME, SCRIPTED_TLTYPE);
}

Infos system_infos(const World& here) {
    return {{TL_INFO_ID, text_info("Scripted " + here.name)},
            {TL_INFO_VENDOR, text_info(here.vendor)},
            {TL_INFO_MODEL, text_info("Scripted producer")},
            {TL_INFO_VERSION, text_info("1.0.0")},
            {TL_INFO_TLTYPE, text_info(here.tl_type)},
            {TL_INFO_NAME, text_info(here.name)},
            {TL_INFO_PATHNAME, text_info("/scripted/" + here.name)},
            {TL_INFO_DISPLAYNAME, text_info("Scripted producer " + here.name)},
            {TL_INFO_CHAR_ENCODING, number_info<std::int32_t>(INFO_DATATYPE_INT32, TL_CHAR_ENCODING_UTF8)},
            {TL_INFO_GENTL_VER_MAJOR, number_info<std::uint32_t>(INFO_DATATYPE_UINT32, 1)},
            {TL_INFO_GENTL_VER_MINOR, number_info<std::uint32_t>(INFO_DATATYPE_UINT32, 5)}};
}

Interface* interface_by_id(World& here, const char* id) {
    for (auto& interface : here.interfaces)
        if (id && interface.id == id) return &interface;
    return nullptr;
}

template <class List>
auto* at_index(List& list, std::uint32_t index) {
    return index < list.size() ? &*std::next(list.begin(), index) : nullptr;
}

}  // namespace

World& world() {
    if (!owned_world()) reset();
    return *owned_world();
}

GC_ERROR bad_handle(World& here, const char* entry, const void*) {
    return here.Broken(std::string(entry) + " with a handle that is not open", GC_ERR_INVALID_HANDLE);
}

GC_ERROR answer(World& here, const Info& info, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    if (!type || !size) return here.Broken("a query without type or size pointer", GC_ERR_INVALID_PARAMETER);
    if (info.status != GC_ERR_SUCCESS) return info.status;
    *type = info.type;
    auto capacity = std::exchange(*size, info.bytes.size());  // a consumer whose size is no size_t is written over here
    if (buffer && capacity < info.bytes.size()) return GC_ERR_BUFFER_TOO_SMALL;
    if (buffer) std::memcpy(buffer, info.bytes.data(), info.bytes.size());
    return GC_ERR_SUCCESS;
}

GC_ERROR answer_text(World& here, const std::string& text, char* buffer, std::size_t* size) {
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    return answer(here, text_info(text), &type, buffer, size);
}

GC_ERROR answer_from(World& here, const Infos& infos, std::int32_t command, INFO_DATATYPE* type, void* buffer,
                     std::size_t* size) {
    auto found = infos.find(command);
    return found == infos.end() ? GC_ERR_NOT_IMPLEMENTED : answer(here, found->second, type, buffer, size);
}

}  // namespace scripted

using namespace scripted;

/// The side door: not a GenTL function.
extern "C" GC_IMPORT_EXPORT const Control* Scripted_Control() {
    static const Control control{[] { return &scripted::world(); }, scripted::reset};
    return &control;
}

namespace GenTL {
extern "C" {

GC_API GCInitLib(void) {
    return run(noted("GCInitLib"), [](World& here) -> GC_ERROR {
        if (here.initialised) return GC_ERR_RESOURCE_IN_USE;
        here.initialised = true;
        return GC_ERR_SUCCESS;
    });
}

GC_API GCCloseLib(void) {
    return run(noted("GCCloseLib"), [](World& here) -> GC_ERROR {
        if (here.open) here.Broken("GCCloseLib with the system module open", 0);
        here.initialised = false;
        return GC_ERR_SUCCESS;
    });
}

GC_API GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("GCGetInfo", command),
               [=](World& here) -> GC_ERROR { return answer_from(here, system_infos(here), command, type, buffer, size); });
}

GC_API GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
    World& here = world();
    if (auto refused = here.Begin(noted("GCGetLastError"))) return *refused;
    std::lock_guard guard(here.lock);
    if (!code) return here.Broken("GCGetLastError without code pointer", GC_ERR_INVALID_PARAMETER);
    *code = here.last_error;
    return answer_text(here, here.last_error_text, text, size);
}

GC_API TLOpen(TL_HANDLE* handle) {
    return run(noted("TLOpen"), [=](World& here) -> GC_ERROR {
        if (here.open) return GC_ERR_RESOURCE_IN_USE;
        here.open = true;
        *handle = &here;
        return GC_ERR_SUCCESS;
    });
}

GC_API TLClose(TL_HANDLE handle) {
    return run(noted("TLClose", handle), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLClose", handle);
        for (auto& interface : here.interfaces)
            if (interface.open) here.CloseInterface(interface);
        here.open = false;
        return GC_ERR_SUCCESS;
    });
}

GC_API TLGetInfo(TL_HANDLE handle, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("TLGetInfo", handle, command), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLGetInfo", handle);
        return answer_from(here, system_infos(here), command, type, buffer, size);
    });
}

GC_API TLGetNumInterfaces(TL_HANDLE handle, uint32_t* count) {
    return run(noted("TLGetNumInterfaces", handle), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLGetNumInterfaces", handle);
        *count = static_cast<uint32_t>(here.interfaces.size());
        return GC_ERR_SUCCESS;
    });
}

GC_API TLGetInterfaceID(TL_HANDLE handle, uint32_t index, char* id, size_t* size) {
    return run(noted("TLGetInterfaceID", handle, index), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLGetInterfaceID", handle);
        auto* interface = at_index(here.interfaces, index);
        return interface ? answer_text(here, interface->id, id, size)
                         : here.Broken("interface index too large", GC_ERR_INVALID_INDEX);
    });
}

GC_API TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
    return GC_ERR_NOT_IMPLEMENTED;
}

GC_API TLOpenInterface(TL_HANDLE handle, const char* id, IF_HANDLE* result) {
    return run(noted_text("TLOpenInterface", id, handle), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLOpenInterface", handle);
        auto* interface = interface_by_id(here, id);
        if (!interface) return GC_ERR_INVALID_ID;
        if (interface->open) return GC_ERR_RESOURCE_IN_USE;
        interface->open = true;
        *result = interface;
        return GC_ERR_SUCCESS;
    });
}

GC_API TLUpdateInterfaceList(TL_HANDLE handle, bool8_t* changed, uint64_t timeout) {
    return run(noted("TLUpdateInterfaceList", handle, timeout), [=](World& here) -> GC_ERROR {
        if (handle != &here || !here.open) return bad_handle(here, "TLUpdateInterfaceList", handle);
        if (changed) *changed = false;
        return GC_ERR_SUCCESS;
    });
}

GC_API IFClose(IF_HANDLE handle) {
    return run(noted("IFClose", handle), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        if (!interface) return bad_handle(here, "IFClose", handle);
        here.CloseInterface(*interface);
        return GC_ERR_SUCCESS;
    });
}

GC_API IFGetInfo(IF_HANDLE, INTERFACE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }

GC_API IFGetNumDevices(IF_HANDLE handle, uint32_t* count) {
    return run(noted("IFGetNumDevices", handle), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        if (!interface) return bad_handle(here, "IFGetNumDevices", handle);
        *count = static_cast<uint32_t>(interface->devices.size());
        return GC_ERR_SUCCESS;
    });
}

GC_API IFGetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
    return run(noted("IFGetDeviceID", handle, index), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        if (!interface) return bad_handle(here, "IFGetDeviceID", handle);
        auto* device = at_index(interface->devices, index);
        return device ? answer_text(here, device->id, id, size) : here.Broken("device index too large", GC_ERR_INVALID_INDEX);
    });
}

GC_API IFUpdateDeviceList(IF_HANDLE handle, bool8_t* changed, uint64_t timeout) {
    return run(noted("IFUpdateDeviceList", handle, timeout), [=](World& here) -> GC_ERROR {
        if (!here.FindInterface(handle)) return bad_handle(here, "IFUpdateDeviceList", handle);
        if (changed) *changed = false;
        return GC_ERR_SUCCESS;
    });
}

GC_API IFGetDeviceInfo(IF_HANDLE handle, const char* id, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
    return run(noted_text("IFGetDeviceInfo", id, handle, command), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        if (!interface) return bad_handle(here, "IFGetDeviceInfo", handle);
        for (auto& device : interface->devices)
            if (id && device.id == id) return answer_from(here, device.infos, command, type, buffer, size);
        return GC_ERR_INVALID_ID;
    });
}

static GC_ERROR open_device(World& here, Interface& interface, const char* id, DEV_HANDLE* result) {
    for (auto& device : interface.devices) {
        if (!id || device.id != id) continue;
        if (device.open) return GC_ERR_RESOURCE_IN_USE;
        device.open = true;
        *result = &device;
        return GC_ERR_SUCCESS;
    }
    return here.Broken("opening a device that is not there", GC_ERR_INVALID_ID);
}

GC_API IFOpenDevice(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* result) {
    return run(noted_text("IFOpenDevice", id, handle, access), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        return interface ? open_device(here, *interface, id, result) : bad_handle(here, "IFOpenDevice", handle);
    });
}

GC_API IFGetParentTL(IF_HANDLE, TL_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }

#if SCRIPTED_EXTENSIONS
GC_API ProbeCameraLinkDevices(char* ports, char* ids, char* models, char* rates, char* supported, uint64_t size,
                              const char* cancel) {
    return run(noted_text("ProbeCameraLinkDevices", cancel, size), [=](World&) {
        for (char* text : {ports, ids, models, rates, supported})
            if (text) *text = '\0';
        return GC_ERR_SUCCESS;
    });
}

GC_API TLOpenDeviceMc(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* result, uint32_t multicast) {
    return run(noted_text("TLOpenDeviceMc", id, handle, access, multicast), [=](World& here) -> GC_ERROR {
        auto* interface = here.FindInterface(handle);
        return interface ? open_device(here, *interface, id, result) : bad_handle(here, "TLOpenDeviceMc", handle);
    });
}

GC_API TLSetForceIp(IF_HANDLE handle, uint32_t enable, uint32_t reserved) {
    return run(noted("TLSetForceIp", handle, enable, reserved), [=](World& here) -> GC_ERROR {
        return here.FindInterface(handle) ? static_cast<GC_ERROR>(GC_ERR_SUCCESS) : bad_handle(here, "TLSetForceIp", handle);
    });
}

GC_API TLSendActionCommand(TL_HANDLE handle, uint32_t device_key, uint32_t group_key, uint32_t group_mask, void* first,
                           void* second) {
    return run(noted("TLSendActionCommand", handle, device_key, group_key, group_mask, first, second),
               [=](World& here) -> GC_ERROR {
                   return handle == &here && here.open ? static_cast<GC_ERROR>(GC_ERR_SUCCESS)
                                                       : bad_handle(here, "TLSendActionCommand", handle);
               });
}
#endif

}  // extern "C"
}  // namespace GenTL
