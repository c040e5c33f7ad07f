#include "common/live_events.h"

#include <memory>

namespace kiv::platform {

LiveEvents& LiveEvents::Instance() {
    // Never destroyed: threads that the process does not wait for may still end their events while it exits.
    static LiveEvents& table = *std::make_unique<LiveEvents>().release();
    return table;
}

void LiveEvents::Add(Event* event) {
    std::lock_guard guard(lock_);
    addresses_.insert(event);
}

void LiveEvents::Remove(Event* event) noexcept {
    std::lock_guard guard(lock_);
    addresses_.erase(event);
}

Event* LiveEvents::Find(const void* address) noexcept {
    std::lock_guard guard(lock_);
    if (!addresses_.contains(address)) return nullptr;
    return static_cast<Event*>(const_cast<void*>(address));
}

bool LiveEvents::Set(const void* address) noexcept {
    std::lock_guard guard(lock_);  // held while setting: the event cannot go away meanwhile
    if (!addresses_.contains(address)) return false;
    static_cast<Event*>(const_cast<void*>(address))->Set();
    return true;
}

Event* find_live_event(const void* address) noexcept { return LiveEvents::Instance().Find(address); }

}  // namespace kiv::platform
