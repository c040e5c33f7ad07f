/// The object behind a THRD_HANDLE: a stream thread on a camera, and the stream module's own node map.
#pragma once

#include <GenApi/i_node.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "acquisition/stream_thread.h"
#include "camera/module_node_map.h"

namespace ImageLib {

/// Shared by the handle, the camera, and every call that is inside. End() may come from any of them, and from the stream thread.
class CImageStream final : public GenICam::Factory::CModuleNodeMap,
                           public GenICam::Factory::CCameraAttachment,
                           public std::enable_shared_from_this<CImageStream> {
public:
    /// Locks the camera's transport-layer parameters, where it has that feature. Throws StatusError K_ST_INVALID_HANDLE for a
    /// camera that is closing.
    static std::shared_ptr<CImageStream> On(GenICam::Factory::CCameraClass& camera);
    explicit CImageStream(GenICam::Factory::CCameraClass& camera);  ///< for On()
    ~CImageStream() override;

    /// A thread that cannot be opened leaves a stream without one: Stream() is null.
    void Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback);
    /// The stream module's own node map; throws like CModuleNodeMap::BuildNodeMap.
    void BuildOwnNodeMap();
    /// Ends the thread and unlocks the parameters. On return nobody uses the camera any more.
    void End() noexcept;

    /// Throws StatusError K_ST_INVALID_HANDLE once the camera is closed: its producer may be gone, too.
    GenICam::Factory::CTLWrapper& Producer() const {
        if (!camera_.load()) kiv::fail(K_ST_INVALID_HANDLE);
        return producer_;
    }
    GenTL::DS_HANDLE Stream() const { return thread_ ? thread_->Stream() : nullptr; }
    /// Null for a stream without a thread. Stays after the end.
    CStreamThread* Thread() const { return thread_.get(); }
    DisplayControl& Display() const { return *display_; }

private:
    void CameraCloses() override { End(); }
    void LockParameters(bool lock) noexcept;

    GenICam::Factory::CTLWrapper& producer_;
    GenApi::INode* parameters_locked_ = nullptr;  // the camera's
    std::shared_ptr<DisplayControl> display_ = std::make_shared<DisplayControl>();
    std::shared_ptr<CStreamThread> thread_;
    std::mutex end_lock_;                                  // held while the camera is left
    std::atomic<GenICam::Factory::CCameraClass*> camera_;  // null once it is left
};

/// The camera's PayloadSize, 0 when it does not tell.
std::uint32_t payload_size(GenICam::Factory::CCameraClass& camera);

}  // namespace ImageLib
