#include "camera/open_cameras.h"

#include <algorithm>

#include "transport/factory.h"
#include "transport/lock.h"

namespace GenICam::Factory {

CCameraClass* OpenCameras::Enter(std::unique_ptr<CCameraClass> camera) {
    GEV::CAutoLock lock(GEV::library_section());
    return cameras_.emplace_back(std::move(camera)).get();
}

template <class Wanted>
OpenCameras::Cameras OpenCameras::TakeOut(Wanted wanted) {
    Cameras taken;
    auto stays = std::stable_partition(cameras_.begin(), cameras_.end(), [&](auto& camera) { return !wanted(*camera); });
    std::move(stays, cameras_.end(), std::back_inserter(taken));
    cameras_.erase(stays, cameras_.end());
    // Ports first, then the camera that closes the device.
    std::stable_partition(taken.begin(), taken.end(), [](auto& camera) { return !camera->OwnsDevice(); });
    return taken;
}

K_STATUS_CODES OpenCameras::Close(void* handle) {
    if (!handle) return K_ST_INVALID_HANDLE;
    Cameras closed;
    {
        GEV::CAutoLock lock(GEV::library_section());
        // Programs close their cameras in every path of their own shut-down: with nothing open that is no error.
        if (cameras_.empty()) return K_ST_SUCCESS;
        auto found = std::find_if(cameras_.begin(), cameras_.end(), [&](auto& camera) { return camera.get() == handle; });
        if (found == cameras_.end() || !kiv::retire_handle(handle, kiv::HandleKind::camera)) return K_ST_INVALID_HANDLE;
        auto device = (*found)->DeviceHandle();
        closed = TakeOut([&](auto& camera) { return camera.DeviceHandle() == device; });
    }
    // Outside the lock: a slow device must not hold up the others.
    for (auto& camera : closed) camera.reset();
    return K_ST_SUCCESS;
}

void OpenCameras::CloseAllOf(const CFactory& factory) {
    Cameras closed;
    auto producers = factory.Producers();
    {
        GEV::CAutoLock lock(GEV::library_section());
        closed = TakeOut([&](auto& camera) {
            return std::any_of(producers.begin(), producers.end(),
                               [&](auto& entry) { return entry.second == &camera.Producer(); });
        });
    }
    for (auto& camera : closed) camera.reset();
}

void OpenCameras::CloseAllOf(GenTL::IF_HANDLE interface_handle) {
    Cameras closed;
    {
        GEV::CAutoLock lock(GEV::library_section());
        closed = TakeOut([&](auto& camera) { return camera.Interface() == interface_handle; });
    }
    for (auto& camera : closed) camera.reset();
}

bool OpenCameras::Owns(GenTL::DEV_HANDLE device) const {
    GEV::CAutoLock lock(GEV::library_section());
    return std::any_of(cameras_.begin(), cameras_.end(),
                       [&](auto& camera) { return camera->DeviceHandle() == device && camera->OwnsDevice(); });
}

OpenCameras& open_cameras() {
    // Never destroyed: a program's own statics may close what they opened when the process exits.
    static OpenCameras& table = *std::make_unique<OpenCameras>().release();
    return table;
}

}  // namespace GenICam::Factory
