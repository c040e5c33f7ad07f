#include "acquisition/data_stream.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include <string>
#include <utility>

#include "features/node_value.h"

namespace GenICam::Factory {

namespace {

constexpr std::size_t longest_stream_id = 65536;
constexpr GenTL::ACQ_START_FLAGS house_start_flag = 1;

// 32 one-bits, not the standard's 64: callers and producers in the field count on this value for "no end".
std::uint64_t images_to_acquire(std::uint64_t asked) { return asked == 0 ? 0xFFFF'FFFFu : asked; }

}  // namespace

std::shared_ptr<CDataStreamClass> CDataStreamClass::On(CCameraClass& camera) {
    std::shared_ptr<CDataStreamClass> stream = std::make_unique<CDataStreamClass>(camera);
    if (!camera.Attach(stream)) {
        stream->camera_ = nullptr;
        kiv::fail(K_ST_INVALID_HANDLE);
    }
    return stream;
}

CDataStreamClass::CDataStreamClass(CCameraClass& camera)
    : producer_(camera.Producer()), device_(camera.DeviceHandle()), remote_device_(camera.ShareRemoteDevice()), camera_(&camera) {
    if (auto* map = camera.GetNodeMap()) parameters_locked_ = map->GetNode("TLParamsLocked");
}

CDataStreamClass::~CDataStreamClass() = default;

void CDataStreamClass::OpenedAs(GenTL::DS_HANDLE stream) {
    stream_ = stream;
    events_ = std::make_shared<kiv::ModuleEvents>(producer_, stream, kiv::ModuleEvents::Source::stream);
}

K_STATUS_CODES CDataStreamClass::Open(std::uint32_t index) {
    std::uint32_t count = 0;
    if (!producer_.DevGetNumDataStreams || producer_.DevGetNumDataStreams(device_, &count) != K_ST_SUCCESS || count == 0)
        return K_ST_NOT_AVAILABLE;
    std::size_t size = 25;
    if (!producer_.DevGetDataStreamID || producer_.DevGetDataStreamID(device_, index, nullptr, &size) != K_ST_SUCCESS ||
        size > longest_stream_id)
        return K_ST_INVALID_ID;
    std::string id(size + 1, '\0');
    if (producer_.DevGetDataStreamID(device_, index, id.data(), &size) != K_ST_SUCCESS) return K_ST_INVALID_ID;
    GenTL::DS_HANDLE opened = nullptr;
    if (!producer_.DevOpenDataStream || producer_.DevOpenDataStream(device_, id.c_str(), &opened) != K_ST_SUCCESS || !opened)
        return K_ST_INVALID_HANDLE;
    OpenedAs(opened);
    return K_ST_SUCCESS;
}

void CDataStreamClass::OpenMulticast(std::uint32_t index, std::uint32_t mode) {
    kiv::answer_of([&] { return LockParameters(false); });
    if (!producer_.DevCreateDataStreamMc) return;
    GenTL::DS_HANDLE opened = nullptr;
    if (producer_.DevCreateDataStreamMc(device_, index, &opened, mode) == K_ST_SUCCESS && opened) OpenedAs(opened);
}

void CDataStreamClass::BuildOwnNodeMap() {
    // Without a stream there is no module to ask, and a producer must not see a null handle for it.
    if (!stream_) kiv::fail(K_ST_INVALID_HANDLE);
    BuildNodeMap(producer_, stream_, "StreamPort");
    complete_ = true;
}

void CDataStreamClass::Check() const {
    if (!complete_) kiv::fail(K_ST_INVALID_HANDLE);
}

K_STATUS_CODES CDataStreamClass::Start(std::uint32_t flags, std::uint64_t count) {
    kiv::answer_of([&] { return LockParameters(true); });
    auto start = producer_.DSStartAcquisition;
    if (!start) return K_ST_NOT_IMPLEMENTED;
    auto passed = producer_.IsGigE() ? static_cast<GenTL::ACQ_START_FLAGS>(flags) : GenTL::ACQ_START_FLAGS_DEFAULT;
    auto status = start(stream_, passed, images_to_acquire(count));
    // The flag is the house's own; to a producer that keeps to the standard there is none but the default.
    if (passed == house_start_flag && status == GenTL::GC_ERR_NOT_IMPLEMENTED)
        status = start(stream_, GenTL::ACQ_START_FLAGS_DEFAULT, images_to_acquire(count));
    return status;
}

K_STATUS_CODES CDataStreamClass::Stop() {
    auto stop = producer_.DSStopAcquisition;
    // Whatever the producer throws: parameters that stay locked would keep the camera from being set up again.
    auto status = kiv::answer_of([&] { return stop ? stop(stream_, GenTL::ACQ_STOP_FLAGS_DEFAULT) : K_ST_NOT_IMPLEMENTED; });
    return parameters_locked_ ? LockParameters(false) : status;
}

K_STATUS_CODES CDataStreamClass::LockParameters(bool lock) {
    if (!parameters_locked_) return K_ST_SUCCESS;
    return kiv::set_int64(*parameters_locked_, true, lock ? 1 : 0) ? K_ST_SUCCESS : K_ST_INVALID_PARAMETER;
}

void CDataStreamClass::Close() noexcept {
    std::lock_guard lock(close_lock_);
    auto* camera = std::exchange(camera_, nullptr);
    if (!camera) return;
    // The event threads first hear of it, then a wait of theirs is ended by the producer's close.
    if (events_) events_->AskToEnd();
    if (complete_.exchange(false) && producer_.DSClose) kiv::answer_of([&] { return producer_.DSClose(stream_); });
    if (events_) events_->End();
    Disconnect();
    camera->Detach(*this);
}

}  // namespace GenICam::Factory
