/// The thread that serves one registered event: it pulls the event's data from the producer, keeps them in a mailbox, sets the
/// caller's target, and waits until the data are collected, but for no longer than a second: a caller who never collects slows
/// it to one event a second and blocks nothing.
///
/// The thread shares all that it touches. A producer that does not come back from a call costs the thread and nothing else.
#pragma once

#include <kiv/platform/event.h>

#include <array>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

#include "acquisition/condition.h"
#include "transport/tl_wrapper.h"

namespace kiv {

/// The data of the last event, between the thread that stores them and the caller who collects them.
class EventMailbox {
public:
    static constexpr std::size_t capacity = 1024;

    /// Replaces what is there, filled up with zeros; more than the capacity is cut. An acknowledgement that came before is void.
    void Store(std::span<const std::byte> data);
    /// Copies the first out.size() bytes and acknowledges.
    void Collect(std::span<std::byte> out);
    /// Bytes of the last event.
    std::size_t Size() const;
    /// False once the thread was asked to end.
    bool IsServed() const { return !exit_.IsSet(); }

private:
    friend class EventThread;
    mutable std::mutex lock_;
    std::array<std::byte, capacity> data_{};
    std::size_t size_ = 0;
    platform::Event acknowledged_{platform::ResetMode::automatic};
    platform::Event exit_{platform::ResetMode::manual};
};

class EventThread {
public:
    struct Job {
        const GenICam::Factory::CTLWrapper& producer;
        GenTL::EVENT_HANDLE event;
        EventTarget target;
        std::size_t data_size;  ///< that is asked of the producer, at most the mailbox's capacity
        bool above_normal;
    };

    explicit EventThread(const Job& job);
    /// Ends the thread.
    ~EventThread();
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /// Starts the thread and waits up to a second until it runs: K_ST_TIMEOUT when it does not (it may still come),
    /// K_ST_INVALID_HANDLE when there is no thread to be had.
    K_STATUS_CODES Start();
    void AskToEnd() noexcept;
    /// Asks it to end and waits up to five seconds until it has: it is inside a call of the producer for about ten milliseconds
    /// at a time. False: it is left to itself.
    bool End() noexcept;

    const std::shared_ptr<EventMailbox>& Mailbox() const { return mailbox_; }

private:
    struct Loop;
    std::shared_ptr<EventMailbox> mailbox_;
    std::shared_ptr<Loop> loop_;
    std::thread thread_;
};

}  // namespace kiv
