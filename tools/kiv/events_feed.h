/// The way of a camera's event messages from its producer to its nodes. The library goes it by itself for producers that offer
/// messages the GigE Vision way; for others this does what any program can: it takes them from the device's event and hands them
/// to the node map.
#pragma once

#include <GenApi/event_adapter.h>

#include <memory>
#include <optional>
#include <vector>

#include "session.h"

class EventFeed {
public:
    /// Throws when the producer hands on no events of its cameras.
    explicit EventFeed(const Camera& camera);
    ~EventFeed();
    EventFeed(const EventFeed&) = delete;
    EventFeed& operator=(const EventFeed&) = delete;

    /// Hands on what is there, and waits for up to 10 ms. Throws when no more can come, as after unplugging.
    void Poll();

private:
    using Condition = std::unique_ptr<K_CONDITION, Closer<K_Event_CloseCondition>>;
    using Event = std::unique_ptr<K_EVENT, Closer<K_Event_Close>>;

    K_STATUS_CODES Register(uint32_t kind);
    void Deliver(uint32_t size);

    const Camera& camera_;
    Condition target_;
    Event event_;
    uint32_t kind_ = 0;
    std::optional<GenApi::CEventAdapterGEV> adapter_;  ///< empty where the library does it
    std::vector<uint8_t> message_;
};
