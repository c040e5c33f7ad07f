#include "acquisition/image_stream.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include "features/node_value.h"

namespace ImageLib {

using GenICam::Factory::CCameraClass;

std::shared_ptr<CImageStream> CImageStream::On(CCameraClass& camera) {
    auto stream = std::make_shared<CImageStream>(camera);
    if (!camera.Attach(stream)) {
        stream->camera_ = nullptr;
        kiv::fail(K_ST_INVALID_HANDLE);
    }
    stream->LockParameters(true);
    return stream;
}

CImageStream::CImageStream(CCameraClass& camera) : producer_(camera.Producer()), camera_(&camera) {
    if (auto* map = camera.GetNodeMap()) parameters_locked_ = map->GetNode("TLParamsLocked");
}

CImageStream::~CImageStream() { End(); }

void CImageStream::Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback) {
    auto thread = std::make_shared<CStreamThread>(*camera_, display_);
    if (thread->Open(stream_index, buffer_size, multicast, callback)) thread_ = std::move(thread);
}

void CImageStream::BuildOwnNodeMap() {
    // Without a stream there is no module to ask, and a producer must not see a null handle for it.
    auto stream = Stream();
    if (!stream) kiv::fail(K_ST_INVALID_HANDLE);
    BuildNodeMap(producer_, stream, "StreamPort");
}

void CImageStream::End() noexcept {
    // Not under the lock: it waits for a callback, which may be about to end the stream itself.
    if (thread_) thread_->Close();
    std::lock_guard lock(end_lock_);
    auto* camera = camera_.load();
    if (!camera) return;
    if (camera->WaitForNodeMap() == GenICam::Factory::CModuleNodeMap::Occupant::another)
        kiv::platform::debug_print("CImageStream: TLParamsLocked: another thread does not leave the node map.\n");
    else
        LockParameters(false);
    Disconnect();
    camera_ = nullptr;
    camera->Detach(*this);
}

void CImageStream::LockParameters(bool lock) noexcept {
    if (!parameters_locked_) return;
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
