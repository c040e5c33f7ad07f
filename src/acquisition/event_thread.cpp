#include "acquisition/event_thread.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/thread.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <system_error>

namespace kiv {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t event_timeout_ms = 10;
constexpr auto longest_start = 1000ms, longest_collection = 1000ms, longest_end = 5000ms;
// A producer whose module is gone may fail at once, for ever: without a pause that would take a whole core.
constexpr auto pause_after_failure = 10ms;

}  // namespace

void EventMailbox::Store(std::span<const std::byte> data) {
    std::lock_guard lock(lock_);
    size_ = std::min(data.size(), capacity);
    std::ranges::copy(data.first(size_), data_.begin());
    std::fill(data_.begin() + static_cast<std::ptrdiff_t>(size_), data_.end(), std::byte{});
    acknowledged_.Reset();
}

void EventMailbox::Collect(std::span<std::byte> out) {
    std::lock_guard lock(lock_);
    std::copy_n(data_.begin(), std::min(out.size(), capacity), out.begin());
    acknowledged_.Set();
}

std::size_t EventMailbox::Size() const {
    std::lock_guard lock(lock_);
    return size_;
}

/// All that the thread touches. The entry point stands by itself and the module's code is held: the binding may be gone before a
/// producer comes back.
struct EventThread::Loop {
    Loop(const Job& job, std::shared_ptr<EventMailbox> its_mailbox)
        : get(job.producer.EventGetData),
          event(job.event),
          target(job.target),
          data_size(std::min(job.data_size, EventMailbox::capacity)),
          above_normal(job.above_normal),
          code(job.producer.Code()),
          mailbox(std::move(its_mailbox)) {}

    ProducerEntry<GenTL::PEventGetData> get;
    GenTL::EVENT_HANDLE event;
    EventTarget target;
    std::size_t data_size;
    bool above_normal;
    std::shared_ptr<const void> code;
    std::shared_ptr<EventMailbox> mailbox;
    platform::Event started{platform::ResetMode::automatic};
    platform::Event stopped{platform::ResetMode::automatic};

    void Run() {
        platform::set_thread_name("kiv-event");
        if (above_normal) platform::raise_thread_priority();
        started.Set();
        while (mailbox->IsServed()) answer_of([&] { return OneEvent(), K_ST_SUCCESS; });
        stopped.Set();
    }

    void OneEvent() {
        std::array<std::byte, EventMailbox::capacity> data;
        std::size_t size = data_size;
        auto status = answer_of([&] { return get ? get(event, data.data(), &size, event_timeout_ms) : K_ST_NOT_IMPLEMENTED; });
        if (status == K_ST_TIMEOUT) return;
        if (status != K_ST_SUCCESS) {
            mailbox->exit_.Wait(pause_after_failure);
            return;
        }
        // What comes after the thread was asked to end is nobody's any more: neither target nor caller are waiting.
        if (!mailbox->IsServed()) return;
        mailbox->Store(std::span(data).first(std::min(size, data_size)));
        target.Set();
        platform::Event* const ends[] = {&mailbox->acknowledged_, &mailbox->exit_};
        platform::wait_any(ends, longest_collection);
    }
};

EventThread::EventThread(const Job& job)
    : mailbox_(std::make_shared<EventMailbox>()), loop_(std::make_shared<Loop>(job, mailbox_)) {}

EventThread::~EventThread() { End(); }

K_STATUS_CODES EventThread::Start() {
    try {
        thread_ = std::thread([loop = loop_] { loop->Run(); });
    } catch (const std::system_error&) {
        platform::debug_print(L"ERROR starting Event Thread.\n");
        return K_ST_INVALID_HANDLE;
    }
    return loop_->started.Wait(longest_start) ? K_ST_SUCCESS : K_ST_TIMEOUT;
}

void EventThread::AskToEnd() noexcept { mailbox_->exit_.Set(); }

bool EventThread::End() noexcept {
    AskToEnd();
    if (!thread_.joinable()) return true;
    bool ended = answer_of([&] { return loop_->stopped.Wait(longest_end) ? K_ST_SUCCESS : K_ST_TIMEOUT; }) == K_ST_SUCCESS;
    ended ? thread_.join() : thread_.detach();
    return ended;
}

}  // namespace kiv
