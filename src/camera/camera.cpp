#include "camera/camera.h"

#include <kiv/platform/debug_output.h>

#include <algorithm>
#include <chrono>

#include "transport/keep_forever.h"
#include "transport/open_devices.h"

namespace GenICam::Factory {

namespace {

constexpr std::chrono::milliseconds longest_access{5000};

}  // namespace

CCameraClass::OpenDevice::~OpenDevice() {
    if (!handle || ownership == Device::borrowed) return;
    open_devices().Remove(handle);
    if (producer.DevClose) kiv::answer_of([&] { return producer.DevClose(handle); });
}

CCameraClass::CCameraClass(CTLWrapper& producer, GenTL::IF_HANDLE interface_handle, GenTL::DEV_HANDLE device, Device ownership)
    : producer_(producer), interface_(interface_handle), device_{producer, device, ownership} {
    if (ownership == Device::owned) open_devices().Enter(device, producer, interface_handle);
    GenTL::PORT_HANDLE port = nullptr;
    kiv::require_success(producer.DevGetPort(device, &port));
    remote_device_ = std::make_shared<CRemoteDeviceClass>(producer, port);
}

CCameraClass::~CCameraClass() {
    EndAttachments();
    if (!remote_device_) return;
    remote_device_->Disconnect();
    const auto inside = WaitForNodeMap();
    // Threads of this library that run callbacks share the map; an application's thread does not.
    const bool is_shared = remote_device_.use_count() > 1;
    using enum CModuleNodeMap::Occupant;
    if (inside == another || (inside == caller && !is_shared)) Abandon();
}

CModuleNodeMap::Occupant CCameraClass::WaitForNodeMap() noexcept {
    using enum CModuleNodeMap::Occupant;
    if (!remote_device_) return nobody;
    const auto inside = remote_device_->WaitUntilLeft(is_map_held_up_ ? std::chrono::milliseconds(0) : longest_access);
    is_map_held_up_ = inside == another;
    return inside;
}

void CCameraClass::Abandon() noexcept {
    kiv::platform::debug_print(
        "CCameraClass: a thread is inside the camera's node map and does not leave it: the map stays in memory.\n");
    kiv::answer_of([&] {
        kiv::keep_forever(producer_.Code());
        kiv::keep_forever(remote_device_);
        return K_ST_SUCCESS;
    });
}

void CCameraClass::TakeDevice() {
    open_devices().Enter(device_.handle, producer_, interface_);
    device_.ownership = Device::owned;
}

bool CCameraClass::Attach(std::shared_ptr<CCameraAttachment> attachment) {
    GEV::CAutoLock lock(section_);
    if (closing_) return false;
    attachments_.push_back(std::move(attachment));
    return true;
}

void CCameraClass::Detach(const CCameraAttachment& attachment) {
    GEV::CAutoLock lock(section_);
    std::erase_if(attachments_, [&](auto& each) { return each.get() == &attachment; });
}

void CCameraClass::EndAttachments() {
    // One at a time and without the lock: an attachment that ends waits for its thread, which may be using the camera.
    for (;;) {
        std::shared_ptr<CCameraAttachment> attachment;
        {
            GEV::CAutoLock lock(section_);
            closing_ = true;
            if (attachments_.empty()) return;
            attachment = std::move(attachments_.back());
            attachments_.pop_back();
        }
        attachment->CameraCloses();
    }
}

}  // namespace GenICam::Factory
