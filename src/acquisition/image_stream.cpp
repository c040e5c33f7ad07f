#include "acquisition/image_stream.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include "features/node_value.h"

namespace ImageLib {

using GenICam::Factory::CCameraClass;

CImageStream::CImageStream(CCameraClass& camera) : producer_(camera.Producer()), camera_(&camera) {
    if (auto* map = camera.GetNodeMap()) parameters_locked_ = map->GetNode("TLParamsLocked");
    if (!camera.Attach(*this)) camera_ = nullptr;
    LockParameters(true);
}

CImageStream::~CImageStream() {
    if (camera_) camera_->Detach(*this);
    CloseThread();
    LockParameters(false);
    node_map_.reset();
}

void CImageStream::Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback) {
    if (!camera_) return;
    auto thread = std::make_shared<CStreamThread>(*camera_);
    if (thread->Open(stream_index, buffer_size, multicast, callback)) thread_ = std::move(thread);
}

void CImageStream::BuildOwnNodeMap() {
    // Without a stream there is no module to ask, and a producer must not see a null handle for it.
    auto stream = Stream();
    if (!stream) kiv::fail(K_ST_INVALID_HANDLE);
    BuildNodeMap(producer_, stream, "StreamPort");
}

void CImageStream::CloseThread() {
    if (thread_) thread_->Close();
    thread_.reset();
}

void CImageStream::CameraCloses() {
    CloseThread();
    LockParameters(false);
    parameters_locked_ = nullptr;
    node_map_.reset();
    camera_ = nullptr;
}

void CImageStream::LockParameters(bool lock) noexcept {
    if (!parameters_locked_ || !camera_) return;
    try {
        kiv::set_int64(*parameters_locked_, true, lock ? 1 : 0);
    } catch (const GenICam::GenericException& error) {
        kiv::platform::debug_print(std::string("CImageStream: TLParamsLocked: ") + error.GetDescription() + "\n");
    }
}

std::uint32_t payload_size(CCameraClass& camera) {
    auto* map = camera.GetNodeMap();
    auto* node = map ? map->GetNode("PayloadSize") : nullptr;
    std::int64_t bytes = 0;
    if (!node || !kiv::get_int64(*node, true, bytes) || bytes < 0 || bytes > 0xFFFFFFFF) return 0;
    return static_cast<std::uint32_t>(bytes);
}

}  // namespace ImageLib
