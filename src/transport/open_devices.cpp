#include "transport/open_devices.h"

#include "transport/lock.h"

namespace GenICam::Factory {

void OpenDevices::Enter(GenTL::DEV_HANDLE device, CTLWrapper& producer, GenTL::IF_HANDLE interface_handle) {
    auto entry = std::make_shared<OpenedDevice>(producer, interface_handle);
    GEV::CAutoLock lock(GEV::library_section());
    by_handle_[device] = std::move(entry);
}

void OpenDevices::Remove(GenTL::DEV_HANDLE device) {
    GEV::CAutoLock lock(GEV::library_section());
    by_handle_.erase(device);
}

void OpenDevices::RemoveAllOf(GenTL::IF_HANDLE interface_handle) {
    GEV::CAutoLock lock(GEV::library_section());
    std::erase_if(by_handle_, [&](auto& entry) { return entry.second->interface_handle == interface_handle; });
}

std::shared_ptr<OpenedDevice> OpenDevices::Find(GenTL::DEV_HANDLE device) const {
    GEV::CAutoLock lock(GEV::library_section());
    auto found = by_handle_.find(device);
    return found == by_handle_.end() ? nullptr : found->second;
}

OpenDevices& open_devices() {
    // Never destroyed: a program's own statics may close what they opened when the process exits.
    static OpenDevices& table = *std::make_unique<OpenDevices>().release();
    return table;
}

}  // namespace GenICam::Factory
