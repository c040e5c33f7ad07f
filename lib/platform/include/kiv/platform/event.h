/// Events: one bit that threads (or, by name, processes) set, reset and wait for.
///
/// An auto-reset event releases exactly one waiter and is unset by that; a manual-reset event releases all until Reset().
/// Setting an event that is set changes nothing. What a thread wrote before Set() is seen by the one that the wait released.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace kiv::platform {

using Milliseconds = std::chrono::milliseconds;

/// A time-out that never comes; every negative one means the same.
inline constexpr Milliseconds infinite{-1};

enum class ResetMode { automatic, manual };

class Event {
public:
    /// Throws std::system_error when the system has no event left to give.
    explicit Event(ResetMode mode, bool set = false);
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// The event of that name, made when it does not exist; an existing one keeps its mode. A name lives as long as any
    /// process holds its event and belongs to the current user. Throws std::system_error, std::invalid_argument for a name
    /// that is empty or longer than 180 bytes.
    static std::unique_ptr<Event> CreateNamed(const std::string& name, ResetMode mode);
    /// The event of that name, or null when no process holds one. Throws as CreateNamed does.
    static std::unique_ptr<Event> OpenNamed(const std::string& name);

    void Set() noexcept;
    void Reset() noexcept;
    /// Whether a wait would end at once. Consumes nothing.
    bool IsSet() const noexcept;
    /// Waits until the event is set (and unsets it, when it is an auto-reset one). False: the time ran out. 0 does not wait.
    bool Wait(Milliseconds timeout = infinite);

    /// The system's own handle, for waits that this header does not offer: a file descriptor to poll for reading, or a HANDLE.
    std::intptr_t NativeHandle() const noexcept { return handle_; }
    /// The file descriptor that is readable while the event is set, for loops of the caller's own. Nothing where the system's
    /// events are no files.
    std::optional<int> FileDescriptor() const noexcept;

private:
    friend std::optional<std::size_t> wait_any(std::span<Event* const> events, Milliseconds timeout);
    Event(std::intptr_t handle, ResetMode mode, std::string name_file);
    bool TryTake() noexcept;

    std::intptr_t handle_;
    ResetMode mode_;
    std::string name_file_;                  // where the name stands, when the system keeps names in files
    std::atomic<std::uint32_t> signals_{0};  // carries the memory order from Set() to the released waiter
};

/// At most this many events can be waited for at once.
inline constexpr std::size_t max_wait_events = 64;

/// Waits until one of the events is set; answers its index, or nothing when the time ran out. Of several set events the lowest
/// index wins and is the only one that is consumed. Throws std::invalid_argument for no or too many events.
std::optional<std::size_t> wait_any(std::span<Event* const> events, Milliseconds timeout);

/// The live Event at that address, or null. The answer holds as long as nobody deletes the event.
Event* find_live_event(const void* address) noexcept;

/// Events that a caller of the library hands in as a bare pointer: the address of a live Event or, where the system itself
/// has event handles, such a handle. Anything else is recognised as not being one and is never dereferenced.
bool is_foreign_event(const void* target) noexcept;
/// Sets it; false when `target` is no event (any more).
bool set_foreign_event(void* target) noexcept;

}  // namespace kiv::platform
