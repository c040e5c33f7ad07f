#include "camera/remote_device.h"

namespace GenICam::Factory {

CRemoteDeviceClass::CRemoteDeviceClass(const CTLWrapper& producer, GenTL::PORT_HANDLE port)
    : producer_(producer), remote_port_(port) {}

void CRemoteDeviceClass::Build(std::uint32_t) {
    chunks_.Detach();
    BuildNodeMap(producer_, remote_port_, "Device");
}

}  // namespace GenICam::Factory
