/// CCameraClass: an opened camera.
///
/// Owns the device that its producer opened and the node map over the remote device's port. Streams that still run when the
/// camera is closed are stopped first: they register as attachments.
#pragma once

#include <atomic>
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
    virtual ~CCameraAttachment() = default;
    /// Ends everything that uses the camera. Called once, on the thread that closes the camera; the attachment must not touch the
    /// camera afterwards.
    virtual void CameraCloses() = 0;
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
    /// For whoever runs other people's callbacks inside the node map. The camera disconnects it when it goes.
    std::shared_ptr<CRemoteDeviceClass> ShareRemoteDevice() const { return remote_device_; }
    /// Null when the camera has none.
    GenApi::INodeMap* GetNodeMap() noexcept { return remote_device_ ? remote_device_->GetNodeMap() : nullptr; }

    kiv::PixelFormatTables& PixelFormats() { return pixel_formats_; }

    CFactory* Factory() const { return factory_; }
    void SetFactory(CFactory& factory) { factory_ = &factory; }

    /// False: the camera is closing already, and the attachment will not be told. The last one attached is the first one ended.
    bool Attach(std::shared_ptr<CCameraAttachment> attachment);
    void Detach(const CCameraAttachment& attachment);
    /// The attachment of that type, made when there is none. Null: the camera is closing already.
    template <class Attachment, class Make>
    std::shared_ptr<Attachment> AttachmentOf(Make make) {
        GEV::CAutoLock lock(section_);
        if (closing_) return nullptr;
        for (auto& each : attachments_)
            if (auto found = std::dynamic_pointer_cast<Attachment>(each)) return found;
        std::shared_ptr<Attachment> made = make();
        attachments_.push_back(made);
        return made;
    }
    void EndAttachments();

    /// For what closes: waits until no other thread is inside the node map, some seconds at most and that only once. `another`: a
    /// register access is held up in the producer, and whatever needs the map had better be left undone.
    CModuleNodeMap::Occupant WaitForNodeMap() noexcept;

private:
    /// For a thread inside the node map that the producer does not let go of: what it is inside of stays.
    void Abandon() noexcept;

    struct OpenDevice {
        CTLWrapper& producer;
        GenTL::DEV_HANDLE handle;
        Device ownership;
        ~OpenDevice();
    };

    CTLWrapper& producer_;
    GenTL::IF_HANDLE interface_;
    OpenDevice device_;
    std::shared_ptr<CRemoteDeviceClass> remote_device_;
    kiv::PixelFormatTables pixel_formats_;
    CFactory* factory_ = nullptr;
    GEV::CCriticalSection section_;
    std::vector<std::shared_ptr<CCameraAttachment>> attachments_;
    bool closing_ = false;
    std::atomic<bool> is_map_held_up_{false};
    kiv::LiveHandle live_{this, kiv::HandleKind::camera};
};

}  // namespace GenICam::Factory
