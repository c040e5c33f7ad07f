/// The process-wide table of opened cameras. It owns them: a camera lives until it is closed or its factory or interface goes.
///
/// Beside the camera that owns a device there may be port objects on the same device; they go when their camera goes, and closing
/// one closes the camera.
#pragma once

#include <memory>
#include <vector>

#include "camera/camera.h"

namespace GenICam::Factory {

class OpenCameras {
public:
    CCameraClass* Enter(std::unique_ptr<CCameraClass> camera);

    /// The status of K_Camera_Close for this handle. A handle that is no opened camera is never dereferenced.
    K_STATUS_CODES Close(void* handle);

    /// Closes every camera of one factory, or of one interface.
    void CloseAllOf(const CFactory& factory);
    void CloseAllOf(GenTL::IF_HANDLE interface_handle);

    /// Whether a camera owns that device.
    bool Owns(GenTL::DEV_HANDLE device) const;

private:
    using Cameras = std::vector<std::unique_ptr<CCameraClass>>;
    /// Takes out all objects, owner and ports, for which `wanted` holds. The caller destroys them outside the lock.
    template <class Wanted>
    Cameras TakeOut(Wanted wanted);

    Cameras cameras_;
};

OpenCameras& open_cameras();

}  // namespace GenICam::Factory
