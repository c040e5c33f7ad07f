/// What programs wait on: conditions, and plain events for programs that have a wait of their own.
///
/// A condition is a pair of events. Its signal tells that the awaited thing happened and is used up by the wait that it ends; its
/// exit tells waiters to stop waiting and stays. Any thread may signal, wait and close; closing lets those who still wait go as
/// if the exit had been set.
#pragma once

#include <kiv/platform/event.h>
#include <kiv/types.h>

#include <memory>
#include <span>

namespace kiv {

struct Condition {
    platform::Event signal{platform::ResetMode::automatic};
    platform::Event exit{platform::ResetMode::manual};
};

/// How a wait ended, in the numbers that callers see.
namespace wait_result {
inline constexpr std::uint32_t timed_out = 0, failed = 0xFFFFFFFF;
}

/// Waits for the conditions in their order, the signal of each before its exit; result k + 1 says that event k of that row ended
/// the wait, and only that one is used up. 0 milliseconds wait without limit. Throws only what is no failure of the wait itself.
std::uint32_t wait_for_conditions(std::span<const std::shared_ptr<Condition>> conditions, std::uint32_t timeout_ms);

/// What to set when a registered event happens: the signal of a condition or a plain event. Only its address is kept; setting one
/// that is gone does nothing.
class EventTarget {
public:
    /// A live condition, else whatever the system takes for an event. Throws StatusError K_ST_INVALID_HANDLE for anything else,
    /// which is never dereferenced.
    static EventTarget At(void* target);
    explicit EventTarget(platform::Event& event) : event_(&event) {}

    void Set() const noexcept { platform::set_foreign_event(event_); }

private:
    explicit EventTarget(void* event) : event_(event) {}
    void* event_;
};

}  // namespace kiv
