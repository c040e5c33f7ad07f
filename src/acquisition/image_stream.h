/// The object behind a THRD_HANDLE: a stream thread on a camera, and the stream module's own node map.
#pragma once

#include <GenApi/i_node.h>

#include <memory>

#include "acquisition/stream_thread.h"
#include "camera/module_node_map.h"

namespace ImageLib {

class CImageStream final : public GenICam::Factory::CModuleNodeMap, private GenICam::Factory::CCameraAttachment {
public:
    /// Locks the camera's transport-layer parameters, where it has that feature.
    explicit CImageStream(GenICam::Factory::CCameraClass& camera);
    ~CImageStream() override;

    /// A thread that cannot be opened leaves a stream without one: Stream() is null.
    void Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback);
    /// The stream module's own node map; throws like CModuleNodeMap::BuildNodeMap.
    void BuildOwnNodeMap();

    /// Throws StatusError K_ST_INVALID_HANDLE once the camera is closed: its producer may be gone, too.
    GenICam::Factory::CTLWrapper& Producer() const {
        if (!camera_) kiv::fail(K_ST_INVALID_HANDLE);
        return producer_;
    }
    GenTL::DS_HANDLE Stream() const { return thread_ ? thread_->Stream() : nullptr; }

private:
    void CameraCloses() override;
    void CloseThread();
    void LockParameters(bool lock) noexcept;

    GenICam::Factory::CTLWrapper& producer_;
    GenICam::Factory::CCameraClass* camera_;
    GenApi::INode* parameters_locked_ = nullptr;
    std::shared_ptr<CStreamThread> thread_;
    kiv::LiveHandle live_{this, kiv::HandleKind::thread};
};

/// The camera's PayloadSize, 0 when it does not tell.
std::uint32_t payload_size(GenICam::Factory::CCameraClass& camera);

}  // namespace ImageLib
