/// The process-wide table of opened devices, by the producer's DEV_HANDLE: which producer and interface a bare device handle
/// belongs to. Guarded by the library's section.
#pragma once

#include <map>
#include <memory>

#include "transport/tl_wrapper.h"

namespace GenICam::Factory {

struct OpenedDevice {
    OpenedDevice(CTLWrapper& its_producer, GenTL::IF_HANDLE its_interface)
        : producer(its_producer), interface_handle(its_interface) {}

    CTLWrapper& producer;
    GenTL::IF_HANDLE interface_handle;
    ModuleSlot own_module;
};

class OpenDevices {
public:
    void Enter(GenTL::DEV_HANDLE device, CTLWrapper& producer, GenTL::IF_HANDLE interface_handle);
    void Remove(GenTL::DEV_HANDLE device);
    void RemoveAllOf(GenTL::IF_HANDLE interface_handle);
    /// Null when no opened device has that handle. The answer is good while the device stays open.
    std::shared_ptr<OpenedDevice> Find(GenTL::DEV_HANDLE device) const;

private:
    std::map<GenTL::DEV_HANDLE, std::shared_ptr<OpenedDevice>> by_handle_;
};

OpenDevices& open_devices();

}  // namespace GenICam::Factory
