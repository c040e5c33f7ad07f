/// A named event of the library's own, for callers who want to cancel a probe and have no events of the system.
#pragma once

#include <kiv/platform/event.h>

#include "transport/live_handles.h"

namespace kiv {

class CancelEvent {
public:
    /// Throws std::invalid_argument for a name that no event can have.
    explicit CancelEvent(const char* name)
        : event_(platform::Event::CreateNamed(name, platform::ResetMode::manual)), live_(this, HandleKind::cancel_event) {}

    void Set() noexcept { event_->Set(); }

private:
    std::unique_ptr<platform::Event> event_;
    LiveHandle live_;
};

}  // namespace kiv
