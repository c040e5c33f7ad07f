#include "acquisition/condition.h"

#include <system_error>
#include <vector>

#include "transport/shared_handles.h"
#include "transport/status.h"

namespace kiv {

std::uint32_t wait_for_conditions(std::span<const std::shared_ptr<Condition>> conditions, std::uint32_t timeout_ms) {
    std::vector<platform::Event*> events;
    for (const auto& condition : conditions) events.insert(events.end(), {&condition->signal, &condition->exit});
    auto timeout = timeout_ms == 0 ? platform::infinite : platform::Milliseconds(timeout_ms);
    try {
        auto ended = platform::wait_any(events, timeout);
        return ended ? static_cast<std::uint32_t>(*ended + 1) : wait_result::timed_out;
    } catch (const std::system_error&) {
        return wait_result::failed;
    }
}

EventTarget EventTarget::At(void* target) {
    // The table first: an address of ours is nothing that the system could take for an event of its own.
    if (auto condition = shared_object(target, HandleKind::condition))
        return EventTarget(std::static_pointer_cast<Condition>(condition)->signal);
    if (!platform::is_foreign_event(target)) fail(K_ST_INVALID_HANDLE);
    return EventTarget(target);
}

}  // namespace kiv
