/// CDataStreamClass: an opened data stream whose buffers are the caller's.
///
/// Made in steps that the caller sees fail one by one (Open... and BuildOwnNodeMap); the camera keeps it from the first step on.
/// A stream that was not completed is not closed in the producer before the device is, and goes with its camera. A completed one
/// is closed by Close() or by its camera, whichever comes first; afterwards Check() refuses it.
#pragma once

#include <GenApi/i_node.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "acquisition/event_registration.h"
#include "camera/module_node_map.h"

namespace GenICam::Factory {

class CDataStreamClass final : public CModuleNodeMap, public CCameraAttachment {
public:
    /// An empty stream of that camera. Throws StatusError K_ST_INVALID_HANDLE for a camera that is closing.
    static std::shared_ptr<CDataStreamClass> On(CCameraClass& camera);
    explicit CDataStreamClass(CCameraClass& camera);  ///< for On()
    ~CDataStreamClass() override;

    /// Opens stream `index`: K_ST_NOT_AVAILABLE when the device has none, K_ST_INVALID_ID when it does not tell which,
    /// K_ST_INVALID_HANDLE when it cannot be opened.
    K_STATUS_CODES Open(std::uint32_t index);
    /// Opens it through the multicast extension, in the mode that only the producer understands, with the camera's transport
    /// parameters unlocked first. A failure shows in the step that follows.
    void OpenMulticast(std::uint32_t index, std::uint32_t mode);
    /// The last step: the stream module's own node map. Throws what CModuleNodeMap::BuildNodeMap throws.
    void BuildOwnNodeMap();

    CTLWrapper& Producer() const { return producer_; }
    GenTL::DS_HANDLE Handle() const { return stream_; }
    kiv::ModuleEvents& Events() const { return *events_; }
    /// Throws StatusError K_ST_INVALID_HANDLE once the stream or its camera is closed: the producer may be gone, too.
    void Check() const;

    /// Locks the camera's transport parameters, whatever comes of that, and starts. A count of 0 is without end. Flags are for
    /// GigE Vision; other producers get none.
    K_STATUS_CODES Start(std::uint32_t flags, std::uint64_t count);
    /// Stops and unlocks. With parameters to unlock the answer is how that went, else the producer's.
    K_STATUS_CODES Stop();

    /// Closes the stream in the producer and ends its threads. Registered events are the producer's to drop.
    void Close() noexcept;

private:
    void CameraCloses() override { Close(); }
    void OpenedAs(GenTL::DS_HANDLE stream);
    K_STATUS_CODES LockParameters(bool lock);

    CTLWrapper& producer_;
    GenTL::DEV_HANDLE device_;
    GenTL::DS_HANDLE stream_ = nullptr;
    std::shared_ptr<CRemoteDeviceClass> remote_device_;  // so that the node outlives a camera that closes under a call
    GenApi::INode* parameters_locked_ = nullptr;
    std::shared_ptr<kiv::ModuleEvents> events_;
    std::mutex close_lock_;
    CCameraClass* camera_;  // null once closed
    std::atomic<bool> complete_ = false;
};

}  // namespace GenICam::Factory
