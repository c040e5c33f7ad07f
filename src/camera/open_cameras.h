/// The process-wide table of opened cameras. It owns them: a camera lives until it is closed or its factory goes.
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

    /// Closes every camera of one factory.
    void CloseAllOf(const CFactory& factory);

private:
    std::vector<std::unique_ptr<CCameraClass>> cameras_;
};

OpenCameras& open_cameras();

}  // namespace GenICam::Factory
