#include "camera/open_cameras.h"

#include <algorithm>

#include "transport/lock.h"

namespace GenICam::Factory {

CCameraClass* OpenCameras::Enter(std::unique_ptr<CCameraClass> camera) {
    GEV::CAutoLock lock(GEV::library_section());
    return cameras_.emplace_back(std::move(camera)).get();
}

K_STATUS_CODES OpenCameras::Close(void* handle) {
    if (!handle) return K_ST_INVALID_HANDLE;
    std::unique_ptr<CCameraClass> closed;
    {
        GEV::CAutoLock lock(GEV::library_section());
        // Programs close their cameras in every path of their own shut-down: with nothing open that is no error.
        if (cameras_.empty()) return K_ST_SUCCESS;
        auto found = std::find_if(cameras_.begin(), cameras_.end(), [&](auto& camera) { return camera.get() == handle; });
        if (found == cameras_.end() || !kiv::retire_handle(handle, kiv::HandleKind::camera)) return K_ST_INVALID_HANDLE;
        closed = std::move(*found);
        cameras_.erase(found);
    }
    // Outside the lock: a slow device must not hold up the others.
    closed.reset();
    return K_ST_SUCCESS;
}

void OpenCameras::CloseAllOf(const CFactory& factory) {
    std::vector<std::unique_ptr<CCameraClass>> closed;
    {
        GEV::CAutoLock lock(GEV::library_section());
        auto stays =
            std::stable_partition(cameras_.begin(), cameras_.end(), [&](auto& camera) { return camera->Factory() != &factory; });
        std::move(stays, cameras_.end(), std::back_inserter(closed));
        cameras_.erase(stays, cameras_.end());
    }
}

OpenCameras& open_cameras() {
    // Left alive at exit: a camera that a program never closed must not call into a producer whose statics are gone.
    static OpenCameras& table = *std::make_unique<OpenCameras>().release();
    return table;
}

}  // namespace GenICam::Factory
