#include "acquisition/gige_event_thread.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/thread.h>

#include <chrono>
#include <string>
#include <utility>

#include "acquisition/event_registration.h"
#include "transport/keep_forever.h"

namespace kiv {

namespace {

using namespace std::chrono_literals;
using GenICam::Factory::CCameraClass;

constexpr auto longest_stop = 5000ms;
// How long one wait for a message lasts; shorter where nothing but its own time ends it.
constexpr std::uint64_t wait_ms = 1000, wait_without_kill_ms = 100;
// For a message that is there already.
constexpr std::uint64_t collect_ms = 10;

}  // namespace

GigEEventThread::GigEEventThread(CCameraClass& camera)
    : remote_(camera.ShareRemoteDevice()),
      adapter_(remote_->GetNodeMap()),
      producer_(camera.Producer()),
      device_(camera.DeviceHandle()) {}

GigEEventThread::~GigEEventThread() {
    // The thread shares this object: it has ended, or it is what destroys it.
    if (!thread_.joinable()) return;
    IsThread() ? thread_.detach() : thread_.join();
}

bool GigEEventThread::Start() {
    if (thread_.joinable()) return false;
    running_ = true;
    try {
        thread_ = std::thread([self = shared_from_this()] { self->Run(); });
        return true;
    } catch (const std::system_error& error) {
        platform::debug_print(std::string("GigEEventThread: no thread: ") + error.what() + "\n");
        running_ = false;
        return false;
    }
}

void GigEEventThread::Run() {
    platform::set_thread_name("kiv-gige-event");
    thread_id_ = std::this_thread::get_id();
    try {
        Loop();
        Unregister(true);
    } catch (const ImageLib::ProducerGate::Shut&) {
        // The camera is gone, or is about to be.
    }
    if (gate_.IsShut()) platform::debug_print("GigEEventThread: the event thread has ended after its camera.\n");
    ended_.Set();
}

void GigEEventThread::Loop() {
    GenTL::EVENT_HANDLE registered = nullptr;
    auto status = gate_.Through(
        [&] { return producer_.GCRegisterEvent(device_, static_cast<GenTL::EVENT_TYPE>(event_kind::messages), &registered); });
    if (status != GenTL::GC_ERR_SUCCESS) return;  // a producer without event messages
    {
        std::lock_guard lock(event_lock_);
        event_ = registered;
    }
    bool more_is_there = false;
    while (running_) {
        const auto asked = std::chrono::steady_clock::now();
        std::size_t size = message_.size();
        status = Read(registered, more_is_there, size);
        more_is_there = false;
        if (status == GenTL::GC_ERR_SUCCESS) {
            Deliver(size);
            if (running_) more_is_there = MoreIsThere(registered);
        } else if (status == GenTL::GC_ERR_BUFFER_TOO_SMALL) {
            // Longer than any packet: it would stay in front of all others.
            gate_.Through([&] { return producer_.EventGetData(registered, nullptr, &size, 0); });
        } else if (std::chrono::steady_clock::now() - asked < 1ms && running_) {
            // A producer whose device is gone may fail at once, for ever: without a pause that would take a whole core.
            std::this_thread::sleep_for(10ms);
        }
    }
}

K_STATUS_CODES GigEEventThread::Read(GenTL::EVENT_HANDLE event, bool more_is_there, std::size_t& size) {
    return gate_.Through([&] {
        const auto wait = more_is_there ? collect_ms : producer_.EventKill ? wait_ms : wait_without_kill_ms;
        return producer_.EventGetData(event, message_.data(), &size, wait);
    });
}

bool GigEEventThread::MoreIsThere(GenTL::EVENT_HANDLE event) {
    std::uint64_t count = 0;
    auto ask = [&](std::size_t size) {
        GenTL::INFO_DATATYPE type = 0;
        return gate_.Through([&] { return producer_.EventGetInfo(event, GenTL::EVENT_NUM_IN_QUEUE, &type, &count, &size); });
    };
    auto status = ask(queue_count_size_);
    // The count is 64-bit in the standard: a producer that keeps to it is asked again, and from then on in its form at once.
    if (queue_count_size_ == 4 && status != GenTL::GC_ERR_SUCCESS) {
        status = ask(8);
        if (status == GenTL::GC_ERR_SUCCESS) queue_count_size_ = 8;
    }
    return status == GenTL::GC_ERR_SUCCESS && count > 0;
}

void GigEEventThread::Deliver(std::size_t size) {
    if (size > message_.size()) return;
    try {
        adapter_.DeliverMessage(message_.data(), static_cast<std::uint32_t>(size));
    } catch (const GenICam::GenericException& error) {
        platform::debug_print(std::string("GigEEventThread: ") + error.GetDescription() + "\n");
    } catch (...) {
        platform::debug_print("GigEEventThread: a node callback threw an exception.\n");
    }
}

void GigEEventThread::Unregister(bool through_gate) {
    {
        std::lock_guard lock(event_lock_);
        if (!std::exchange(event_, nullptr)) return;
    }
    auto unregister = [&] { return producer_.GCUnregisterEvent(device_, static_cast<GenTL::EVENT_TYPE>(event_kind::messages)); };
    through_gate ? gate_.Through(unregister) : answer_of(unregister);
}

bool GigEEventThread::Stop() noexcept {
    running_ = false;
    if (!thread_.joinable()) return true;
    if (IsThread()) {
        // Inside a node callback: the thread leaves when it has returned, and finds its way to the producer closed.
        Unregister(false);
        gate_.ShutNow();
        thread_.detach();
        return true;
    }
    {
        std::lock_guard lock(event_lock_);
        if (event_ && producer_.EventKill) answer_of([&] { return producer_.EventKill(event_); });
    }
    if (ended_.Wait(longest_stop)) {
        thread_.join();
        return true;
    }
    platform::debug_print("GigEEventThread: the event thread does not end and is left to itself.\n");
    answer_of([&] { return keep_forever(producer_.Code()), K_ST_SUCCESS; });
    gate_.ShutNow();
    Unregister(false);
    thread_.detach();
    return false;
}

void start_gige_events(CCameraClass& camera) noexcept {
    answer_of([&]() -> K_STATUS_CODES {
        if (!camera.GetNodeMap()) return K_ST_NO_DATA;
        auto thread = std::make_shared<GigEEventThread>(camera);
        if (!thread->Start()) return K_ST_ERROR;
        // A camera that is closing already does not want one.
        if (!camera.Attach(thread)) thread->Stop();
        return K_ST_SUCCESS;
    });
}

}  // namespace kiv
