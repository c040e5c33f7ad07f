/// The events that exist right now, by address: what makes a stranger's pointer recognisable without following it.
#pragma once

#include <mutex>
#include <unordered_set>

#include "kiv/platform/event.h"

namespace kiv::platform {

class LiveEvents {
public:
    /// The table of the process. Made by the first event, so that it outlives every static one.
    static LiveEvents& Instance();

    void Add(Event* event);
    /// Waits for a Set of that event that is on its way.
    void Remove(Event* event) noexcept;
    Event* Find(const void* address) noexcept;
    bool Set(const void* address) noexcept;

private:
    std::mutex lock_;
    std::unordered_set<const void*> addresses_;
};

}  // namespace kiv::platform
