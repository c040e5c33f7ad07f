#include "acquisition/stream_thread.h"

#include <GenICam/exceptions.h>
#include <kiv/image.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/thread.h>

#include <chrono>

#include "acquisition/image_info.h"

namespace ImageLib {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t event_timeout_ms = 1000;
constexpr std::uint64_t without_end = ~std::uint64_t{0};
constexpr std::size_t longest_stream_id = 65536;

bool refused_for_its_form(GenTL::GC_ERROR status) {
    return status == GenTL::GC_ERR_NOT_IMPLEMENTED || status == GenTL::GC_ERR_INVALID_PARAMETER;
}

void report(const char* call, GenTL::GC_ERROR status) {
    kiv::platform::debug_print(std::string("CStreamThread: ") + call + " failed with status " + std::to_string(status) + "\n");
}

}  // namespace

void ImageCallback::operator()(K_IMAGE_INFO& info) const {
    if (!function) return;
    if (context)
        reinterpret_cast<K_IMAGE_CONTEXT_CALLBACK>(function)(context, &info);
    else
        reinterpret_cast<K_IMAGE_CALLBACK>(function)(&info);
}

CStreamThread::CStreamThread(GenICam::Factory::CCameraClass& camera)
    : producer_(camera.Producer()), device_(camera.DeviceHandle()) {}

CStreamThread::~CStreamThread() { Close(); }

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
    running_ = true;
    try {
        thread_ = std::thread([self = shared_from_this()] { self->StreamProcess(); });
    } catch (const std::system_error&) {
        running_ = false;
        CloseDataStream();
        return false;
    }
    bool answered = started_.Wait(5000ms);
    if (answered && started_well_) return true;
    running_ = false;
    CloseDataStream();
    // A producer that does not come back from its start keeps the thread; it finds running_ cleared when it does.
    answered ? thread_.join() : thread_.detach();
    return false;
}

bool CStreamThread::StartInProducer() {
    is_gige_ = producer_.IsGigE();
    auto status = producer_.GCRegisterEvent(stream_, GenTL::EVENT_NEW_BUFFER, &new_buffer_event_);
    if (status != GenTL::GC_ERR_SUCCESS) {
        report("GCRegisterEvent", status);
        return false;
    }
    GenTL::ACQ_START_FLAGS flags = is_gige_ ? 1 : 0;
    status = producer_.DSStartAcquisition(stream_, flags, without_end);
    if (flags != 0 && refused_for_its_form(status)) status = producer_.DSStartAcquisition(stream_, 0, without_end);
    if (status == GenTL::GC_ERR_SUCCESS) return true;
    report("DSStartAcquisition", status);
    producer_.GCUnregisterEvent(stream_, GenTL::EVENT_NEW_BUFFER);
    return false;
}

void CStreamThread::StreamProcess() {
    kiv::platform::set_thread_name("kiv-stream");
    started_well_ = kiv::answer_of([&] { return StartInProducer() ? K_ST_SUCCESS : K_ST_ERROR; }) == K_ST_SUCCESS;
    started_.Set();
    if (!started_well_) return;

    K_IMAGE_INFO info{};
    while (running_) {
        info.pass_state = 1;
        GenTL::EVENT_NEW_BUFFER_DATA filled{};
        std::size_t size = sizeof filled;
        auto status = kiv::answer_of([&] { return producer_.EventGetData(new_buffer_event_, &filled, &size, event_timeout_ms); });
        if (status == GenTL::GC_ERR_SUCCESS) {
            OneImage(filled, info);
        } else if (status != GenTL::GC_ERR_TIMEOUT && status != GenTL::GC_ERR_ABORT && running_) {
            // A producer whose device is gone may fail at once, for ever: without a pause that would take a whole core.
            std::this_thread::sleep_for(10ms);
        }
    }
    if (!closed_inside_) EndEvents();
    kiv::platform::debug_print(L">>> Terminated Stream Process Loop.\n");
}

void CStreamThread::OneImage(const GenTL::EVENT_NEW_BUFFER_DATA& filled, K_IMAGE_INFO& info) {
    auto described = kiv::answer_of([&] {
        return describe_buffer(producer_, stream_, filled.BufferHandle, *ring_, is_gige_, info) ? K_ST_SUCCESS : K_ST_NO_DATA;
    });
    if (described == K_ST_SUCCESS) {
        info.pass_state = 2;
        if (!running_) return;  // closing: the buffer is revoked, not queued again
        callback_(info);
        if (closed_inside_) return;
    }
    if (filled.BufferHandle) kiv::answer_of([&] { return producer_.DSQueueBuffer(stream_, filled.BufferHandle); });
}

void CStreamThread::Close() {
    if (!stream_) return;
    running_ = false;
    kiv::answer_of([&] { return producer_.DSStopAcquisition(stream_, GenTL::ACQ_STOP_FLAGS_KILL); });
    if (thread_.get_id() == std::this_thread::get_id()) {
        // Inside the callback: nobody else uses the stream now, and the loop leaves without touching it again.
        closed_inside_ = true;
        EndEvents();
        thread_.detach();
    } else {
        // Where the producer can end a wait the loop need not sit out its time.
        KillWait();
        if (thread_.joinable()) thread_.join();
    }
    GiveBack();
}

void CStreamThread::KillWait() {
    std::lock_guard lock(event_lock_);
    if (producer_.EventKill && new_buffer_event_) kiv::answer_of([&] { return producer_.EventKill(new_buffer_event_); });
}

void CStreamThread::EndEvents() {
    std::lock_guard lock(event_lock_);
    new_buffer_event_ = nullptr;
    kiv::answer_of([&] { return producer_.GCUnregisterEvent(stream_, GenTL::EVENT_NEW_BUFFER); });
}

void CStreamThread::GiveBack() {
    auto stream = stream_.load();
    kiv::answer_of([&] { return producer_.DSFlushQueue(stream, GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT); });
    kiv::answer_of([&] { return producer_.DSFlushQueue(stream, GenTL::ACQ_QUEUE_OUTPUT_DISCARD); });
    ring_->Revoke(stream);
    CloseDataStream();
}

}  // namespace ImageLib
