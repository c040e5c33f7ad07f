/// CCameraClass: an opened camera.
///
/// Owns the device that its producer opened and the node map over the remote device's port. Streams that still run when the
/// camera is closed are stopped first: they register as attachments.
#pragma once

#include <memory>
#include <vector>

#include "camera/remote_device.h"
#include "imaging/pixel_format_tables.h"
#include "transport/interface.h"
#include "transport/lock.h"

namespace GenICam::Factory {

class CFactory;

/// Something that runs on a camera and has to end before the camera does.
class CCameraAttachment {
public:
    /// Ends everything that uses the camera. Called once, on the thread that closes the camera; the attachment must not touch the
    /// camera afterwards.
    virtual void CameraCloses() = 0;

protected:
    ~CCameraAttachment() = default;
};

class CCameraClass {
public:
    /// Whether the camera closes the device when it goes, or another camera object does.
    enum class Device { owned, borrowed };

    /// Throws StatusError when the producer gives no port for the device; an owned device is closed then.
    CCameraClass(CTLWrapper& producer, GenTL::IF_HANDLE interface_handle, GenTL::DEV_HANDLE device,
                 Device ownership = Device::owned);
    virtual ~CCameraClass();
    CCameraClass(const CCameraClass&) = delete;
    CCameraClass& operator=(const CCameraClass&) = delete;

    CTLWrapper& Producer() const { return producer_; }
    GenTL::IF_HANDLE Interface() const { return interface_; }
    GenTL::DEV_HANDLE DeviceHandle() const { return device_.handle; }
    bool OwnsDevice() const { return device_.ownership == Device::owned; }
    /// From now on the camera closes the device, which nobody else may own.
    void TakeDevice();
    CRemoteDeviceClass& RemoteDevice() { return *remote_device_; }
    /// Null when the camera has none.
    GenApi::INodeMap* GetNodeMap() noexcept { return remote_device_ ? remote_device_->GetNodeMap() : nullptr; }

    kiv::PixelFormatTables& PixelFormats() { return pixel_formats_; }

    CFactory* Factory() const { return factory_; }
    void SetFactory(CFactory& factory) { factory_ = &factory; }

    /// An attachment that is added to a camera that is closing is told at once: false.
    bool Attach(CCameraAttachment& attachment);
    void Detach(CCameraAttachment& attachment);
    void EndAttachments();

private:
    struct OpenDevice {
        CTLWrapper& producer;
        GenTL::DEV_HANDLE handle;
        Device ownership;
        ~OpenDevice();
    };

    CTLWrapper& producer_;
    GenTL::IF_HANDLE interface_;
    OpenDevice device_;
    std::unique_ptr<CRemoteDeviceClass> remote_device_;
    kiv::PixelFormatTables pixel_formats_;
    CFactory* factory_ = nullptr;
    GEV::CCriticalSection section_;
    std::vector<CCameraAttachment*> attachments_;
    bool closing_ = false;
    kiv::LiveHandle live_{this, kiv::HandleKind::camera};
};

}  // namespace GenICam::Factory
