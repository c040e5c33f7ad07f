#include "camera/camera.h"

#include <algorithm>

#include "transport/open_devices.h"

namespace GenICam::Factory {

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
    if (remote_device_) remote_device_->Disconnect();
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
