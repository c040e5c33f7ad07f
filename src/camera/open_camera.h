/// The steps from a camera identifier to an opened camera.
#pragma once

#include "camera/camera.h"
#include "transport/factory.h"

namespace kiv {

struct OpenRequest {
    const char* camera_id = nullptr;
    std::uint32_t access_mode = 3;  // GenTL's DEVICE_ACCESS_CONTROL
    std::uint32_t multicast = 0;
    std::uint32_t open_option = 0;
};

/// Opens the camera and enters it into the table of opened cameras. On failure a status, or a GenICam exception, and nothing
/// stays open.
K_STATUS_CODES open_camera(GenICam::Factory::CFactory& factory, const OpenRequest& request,
                           GenICam::Factory::CCameraClass*& camera);

/// Opens a device through the producer's multicast extension.
K_STATUS_CODES open_device_multicast(const GenICam::Factory::CTLWrapper& producer, GenTL::IF_HANDLE interface_handle,
                                     const char* device_id, std::uint32_t access_mode, std::uint32_t multicast,
                                     GenTL::DEV_HANDLE& device);

}  // namespace kiv
