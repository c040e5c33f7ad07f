#include "acquisition/stream_thread.h"

#include <kiv/log/log.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/thread.h>

#include <chrono>

#include "acquisition/stream_loop.h"
#include "features/pixel_formats.h"
#include "transport/keep_forever.h"

namespace ImageLib {

namespace {

using namespace std::chrono_literals;

constexpr auto longest_start = 5000ms;
constexpr auto longest_call = 5000ms;
constexpr std::uint64_t without_end = ~std::uint64_t{0};
constexpr std::size_t longest_stream_id = 65536;

bool refused_for_its_form(GenTL::GC_ERROR status) {
    return status == GenTL::GC_ERR_NOT_IMPLEMENTED || status == GenTL::GC_ERR_INVALID_PARAMETER;
}

/// The one line of a stream that needs no looking at its calls.
void tell_end(const K_STREAM_STATISTICS& seen) noexcept try {
    if (!kiv::log::wanted(kiv::log::Category::gen_tl, kiv::log::Level::info)) return;
    const auto number = [](std::uint64_t count, const char* what) { return std::to_string(count) + what; };
    kiv::log::write(kiv::log::Category::gen_tl, kiv::log::Level::info,
                    "image stream ends: " + number(seen.delivered, " images, ") +
                        number(seen.incomplete, " of them incomplete; ") + number(seen.lost, " lost, ") +
                        number(seen.missing_ids, " missing in the sequence, ") + number(seen.skipped, " skipped"));
} catch (const std::bad_alloc&) {  // then without it
}

void report(const char* call, GenTL::GC_ERROR status) {
    kiv::platform::debug_print(std::string("CStreamThread: ") + call + " failed with status " + std::to_string(status) + "\n");
}

}  // namespace

void ImageCallback::operator()(K_IMAGE_INFO& info) const noexcept {
    try {
        if (context)
            reinterpret_cast<K_IMAGE_CONTEXT_CALLBACK>(function)(context, &info);
        else
            reinterpret_cast<K_IMAGE_CALLBACK>(function)(&info);
    } catch (...) {
        kiv::platform::debug_print("CStreamThread: the image callback threw an exception.\n");
    }
}

CStreamThread::CStreamThread(GenICam::Factory::CCameraClass& camera, std::shared_ptr<DisplayControl> display)
    : camera_(camera),
      producer_(camera.Producer()),
      device_(camera.DeviceHandle()),
      remote_(camera.ShareRemoteDevice()),
      display_(std::move(display)) {}

CStreamThread::~CStreamThread() {
    // The loop shares this object: it has ended, or it is what destroys it.
    if (!thread_.joinable()) return;
    IsLoop() ? thread_.detach() : thread_.join();
}

bool CStreamThread::OpenDataStream(std::uint32_t stream_index, std::uint32_t multicast) {
    GenTL::DS_HANDLE opened = nullptr;
    if (producer_.DevCreateDataStreamMc) {
        auto status = producer_.DevCreateDataStreamMc(device_, stream_index, &opened, multicast);
        if (status != GenTL::GC_ERR_SUCCESS) return report("DevCreateDataStreamMc", status), false;
        stream_ = opened;
        return opened != nullptr;
    }
    std::size_t size = 0;
    auto status = producer_.DevGetDataStreamID(device_, 0, nullptr, &size);
    if (status != GenTL::GC_ERR_SUCCESS || size > longest_stream_id) return report("DevGetDataStreamID", status), false;
    std::string id(size + 1, '\0');
    status = producer_.DevGetDataStreamID(device_, 0, id.data(), &size);
    if (status != GenTL::GC_ERR_SUCCESS) return report("DevGetDataStreamID", status), false;
    status = producer_.DevOpenDataStream(device_, id.c_str(), &opened);
    if (status != GenTL::GC_ERR_SUCCESS) return report("DevOpenDataStream", status), false;
    stream_ = opened;
    return opened != nullptr;
}

void CStreamThread::CloseDataStream() {
    if (auto stream = stream_.exchange(nullptr)) kiv::answer_of([&] { return producer_.DSClose(stream); });
}

bool CStreamThread::Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback) {
    if (stream_ || !OpenDataStream(stream_index, multicast)) return false;
    ring_.emplace(producer_, buffer_size);
    if (ring_->Fill(stream_) == 0) {
        kiv::platform::debug_print("CStreamThread: the producer took none of the buffers of " + std::to_string(buffer_size) +
                                   " bytes.\n");
        CloseDataStream();
        return false;
    }
    callback_ = callback;
    is_gige_ = producer_.IsGigE();
    kiv::pixel_formats(camera_);  // filled here: the loop then looks up only, and does not need the node map for it
    if (StartLoop()) return true;
    running_ = false;
    CloseDataStream();
    return false;
}

bool CStreamThread::StartLoop() {
    running_ = true;
    try {
        thread_ = std::thread([self = shared_from_this()] { self->StreamProcess(); });
    } catch (const std::system_error& error) {
        kiv::platform::debug_print(std::string("CStreamThread: no thread: ") + error.what() + "\n");
        return false;
    }
    if (started_.Wait(longest_start)) {
        if (!started_well_) Join();
        return started_well_;
    }
    kiv::platform::debug_print("CStreamThread: the producer does not come back from its start.\n");
    running_ = false;
    gate_.ShutNow();
    Abandon();
    return false;
}

bool CStreamThread::StartInProducer() {
    auto status = gate_.Through([&] { return producer_.GCRegisterEvent(stream_, GenTL::EVENT_NEW_BUFFER, &new_buffer_event_); });
    if (status != GenTL::GC_ERR_SUCCESS) {
        new_buffer_event_ = nullptr;
        report("GCRegisterEvent", status);
        return false;
    }
    auto start = [&](GenTL::ACQ_START_FLAGS flags) {
        return gate_.Through([&] { return producer_.DSStartAcquisition(stream_, flags, without_end); });
    };
    status = start(is_gige_ ? 1 : 0);
    if (is_gige_ && refused_for_its_form(status)) status = start(0);
    if (status == GenTL::GC_ERR_SUCCESS) return true;
    report("DSStartAcquisition", status);
    EndInProducer(By::gate);
    return false;
}

void CStreamThread::StreamProcess() {
    kiv::platform::set_thread_name("kiv-stream");
    loop_id_ = std::this_thread::get_id();
    // Callbacks that run inside the node map may close the camera.
    const auto remote = remote_;
    try {
        started_well_ = StartInProducer();
        started_.Set();
        if (!started_well_) return ended_.Set();
        Loop(*this, *remote).Run();
        if (gate_.Through([&] { return remote->Chunks().Detach(); }) != K_ST_SUCCESS)
            kiv::platform::debug_print(L"Error with K_Camera_DetachChunkData in CStreamThread::StreamProcess.\n");
        EndInProducer(By::gate);
    } catch (const ProducerGate::Shut&) {
        // Whoever shut the gate has given everything back, or is about to.
    }
    kiv::platform::debug_print(L">>> Terminated Stream Process Loop.\n");
    ended_.Set();
}

void CStreamThread::Close() {
    if (!stream_) return;
    StopInProducer();
    if (!IsLoop()) WaitForLoop();
    GiveBack();
    if (!IsLoop()) Join();
}

void CStreamThread::StopInProducer() {
    running_ = false;
    // A second close waits here: the stream must not be closed before this one is through.
    std::call_once(stopped_, [&] {
        kiv::answer_of([&] { return producer_.DSStopAcquisition(stream_, GenTL::ACQ_STOP_FLAGS_KILL); });
        // Where the producer can end a wait the loop need not sit out its time.
        std::lock_guard lock(event_lock_);
        if (producer_.EventKill && new_buffer_event_ && !IsLoop())
            kiv::answer_of([&] { return producer_.EventKill(new_buffer_event_); });
    });
}

void CStreamThread::WaitForLoop() {
    auto seen = gate_.Look();
    while (!ended_.Wait(longest_call)) {
        if (gate_.ShutIfStillInside(seen)) return Abandon();
        seen = gate_.Look();
    }
}

void CStreamThread::Abandon() {
    kiv::platform::debug_print("CStreamThread: a thread that the producer does not let go of is left to itself.\n");
    kiv::answer_of([&] { return kiv::keep_forever(producer_.Code()), K_ST_SUCCESS; });
    std::lock_guard lock(join_lock_);
    abandoned_ = true;
    if (thread_.joinable()) thread_.detach();
}

void CStreamThread::EndInProducer(By way) {
    GenTL::EVENT_HANDLE ended = nullptr;
    {
        std::lock_guard lock(event_lock_);
        ended = std::exchange(new_buffer_event_, nullptr);
    }
    if (!ended) return;
    auto unregister = [&] { return producer_.GCUnregisterEvent(stream_, GenTL::EVENT_NEW_BUFFER); };
    way == By::gate ? gate_.Through(unregister) : kiv::answer_of(unregister);
}

void CStreamThread::GiveBack() {
    std::lock_guard lock(close_lock_);
    if (std::exchange(given_back_, true)) return;
    AskLost();
    tell_end(statistics_.Snapshot());
    EndInProducer(By::hand);
    // From here on the loop, in whose callback this may be, must not come back to the stream.
    if (IsLoop()) gate_.ShutNow();
    // A thread that was left to itself may be inside the chunks' map: they stay as they are until the map goes.
    if (!abandoned_) remote_->Chunks().Detach();
    remote_.reset();
    auto stream = stream_.load();
    kiv::answer_of([&] { return producer_.DSFlushQueue(stream, GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT); });
    kiv::answer_of([&] { return producer_.DSFlushQueue(stream, GenTL::ACQ_QUEUE_OUTPUT_DISCARD); });
    ring_->Revoke(stream);
    CloseDataStream();
    // A callback may still look at its image, and a producer that never came back write into it.
    if (!IsLoop() && !abandoned_) ring_.reset();
}

void CStreamThread::Join() {
    std::lock_guard lock(join_lock_);
    if (thread_.joinable()) thread_.join();
}

void CStreamThread::AskLost() {
    if (!stream_) return;
    std::uint64_t lost = 0;
    std::size_t size = sizeof lost;
    GenTL::INFO_DATATYPE type = 0;
    auto status =
        kiv::answer_of([&] { return producer_.DSGetInfo(stream_, GenTL::STREAM_INFO_NUM_UNDERRUN, &type, &lost, &size); });
    if (status == GenTL::GC_ERR_SUCCESS) statistics_.lost = lost;
}

K_STREAM_STATISTICS CStreamThread::Statistics() {
    std::lock_guard lock(close_lock_);
    if (!given_back_) AskLost();
    return statistics_.Snapshot();
}

K_STATUS_CODES CStreamThread::BufferInfo(GenTL::BUFFER_INFO_CMD command, void* result, std::size_t* size) {
    if (!IsLoop() || !current_) return K_ST_NOT_AVAILABLE;
    GenTL::INFO_DATATYPE type = 0;
    try {
        return gate_.Through([&] { return producer_.DSGetBufferInfo(stream_, current_, command, &type, result, size); });
    } catch (const ProducerGate::Shut&) {
        return K_ST_ABORT;
    }
}

K_STATUS_CODES CStreamThread::EventTime(std::uint64_t& nanoseconds) const {
    if (!IsLoop() || !current_) return K_ST_NOT_AVAILABLE;
    const auto since_epoch = std::chrono::duration_cast<std::chrono::nanoseconds>(event_time_.time_since_epoch());
    nanoseconds = static_cast<std::uint64_t>(since_epoch.count());
    return K_ST_SUCCESS;
}

}  // namespace ImageLib
