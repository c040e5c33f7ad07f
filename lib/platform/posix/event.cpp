#include "kiv/platform/event.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "common/live_events.h"
#include "posix/named_pipe_event.h"

namespace kiv::platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds longest_timeout = std::chrono::hours(24 * 365 * 100);  // more does not fit into the clock's unit

int make_eventfd(bool set) {
    const int number = eventfd(set ? 1 : 0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (number < 0) throw std::system_error(errno, std::generic_category(), "cannot make an event");
    return number;
}

/// Unsets the event; true when it was set. The kernel gives what is there to one reader only.
bool drain(int number) noexcept {
    std::array<char, 4096> bytes;  // an eventfd has 8; a named event at most one for each setter that came at the same moment
    for (;;) {
        if (read(number, bytes.data(), bytes.size()) > 0) return true;
        if (errno != EINTR) return false;
    }
}

bool is_readable(int number) noexcept {
    pollfd look{number, POLLIN, 0};
    return poll(&look, 1, 0) > 0 && (look.revents & POLLIN) != 0;
}

/// What poll() is to wait for, rounded up so that it does not spin during the last part of a millisecond.
int poll_time(bool forever, Clock::time_point deadline) {
    if (forever) return -1;
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 24 * 3600 * 1000));
}

}  // namespace

Event::Event(ResetMode mode, bool set) : Event(make_eventfd(set), mode, std::string()) {}

Event::Event(std::intptr_t handle, ResetMode mode, std::string name_file)
    : handle_(handle), mode_(mode), name_file_(std::move(name_file)) {
    LiveEvents::Instance().Add(this);
}

Event::~Event() {
    LiveEvents::Instance().Remove(this);
    const int number = static_cast<int>(handle_);
    if (name_file_.empty())
        close(number);
    else
        close_named_pipe(number, name_file_);
}

std::unique_ptr<Event> Event::CreateNamed(const std::string& name, ResetMode mode) {
    NamedPipe pipe = create_named_pipe(name, mode);
    return std::unique_ptr<Event>(new Event(pipe.pipe.Release(), pipe.mode, std::move(pipe.file)));
}

std::unique_ptr<Event> Event::OpenNamed(const std::string& name) {
    auto pipe = open_named_pipe(name);
    if (!pipe) return nullptr;
    return std::unique_ptr<Event>(new Event(pipe->pipe.Release(), pipe->mode, std::move(pipe->file)));
}

void Event::Set() noexcept {
    signals_.fetch_add(1, std::memory_order_release);
    const int number = static_cast<int>(handle_);
    if (!name_file_.empty() && is_readable(number)) return;  // another mark would only fill the pipe
    const std::uint64_t one = 1;
    while (write(number, &one, sizeof one) < 0 && errno == EINTR) continue;
}

void Event::Reset() noexcept { drain(static_cast<int>(handle_)); }

bool Event::IsSet() const noexcept {
    if (!is_readable(static_cast<int>(handle_))) return false;
    signals_.load(std::memory_order_acquire);
    return true;
}

bool Event::TryTake() noexcept {
    const int number = static_cast<int>(handle_);
    if (!(mode_ == ResetMode::manual ? is_readable(number) : drain(number))) return false;
    signals_.load(std::memory_order_acquire);
    return true;
}

std::optional<int> Event::FileDescriptor() const noexcept { return static_cast<int>(handle_); }

bool Event::Wait(Milliseconds timeout) {
    Event* const only[] = {this};
    return wait_any(only, timeout).has_value();
}

std::optional<std::size_t> wait_any(std::span<Event* const> events, Milliseconds timeout) {
    if (events.empty() || events.size() > max_wait_events)
        throw std::invalid_argument("a wait needs 1 to 64 events, not " + std::to_string(events.size()));
    std::array<pollfd, max_wait_events> watched;
    std::ranges::transform(events, watched.begin(), [](Event* event) {
        return pollfd{static_cast<int>(event->NativeHandle()), POLLIN, 0};
    });
    const bool forever = timeout < Milliseconds::zero() || timeout > longest_timeout;
    const auto deadline = forever ? Clock::time_point::max() : Clock::now() + timeout;
    for (;;) {
        const int ready = poll(watched.data(), events.size(), poll_time(forever, deadline));
        if (ready < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "cannot wait for events");
        // In order, and each one asked again: another waiter may have been faster.
        for (std::size_t i = 0; ready > 0 && i < events.size(); ++i)
            if (events[i]->TryTake()) return i;
        // A descriptor that somebody closed under us would be reported at once, for ever.
        const auto invalid = [](const pollfd& each) { return (each.revents & POLLNVAL) != 0; };
        if (ready > 0 && std::any_of(watched.begin(), watched.begin() + events.size(), invalid))
            throw std::system_error(EBADF, std::generic_category(), "cannot wait for events");
        if (!forever && Clock::now() >= deadline) return std::nullopt;
    }
}

bool is_foreign_event(const void* target) noexcept { return find_live_event(target) != nullptr; }

bool set_foreign_event(void* target) noexcept { return LiveEvents::Instance().Set(target); }

}  // namespace kiv::platform
