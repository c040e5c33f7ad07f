/// The events of a camera, as its nodes hear of them: the values are read inside the node callback, before the next event
/// replaces them.
#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "session.h"

struct DeviceEvent {
    std::chrono::system_clock::time_point time;  ///< when its nodes heard of it
    std::string name;                            ///< as in EventSelector; empty for a message that no node understands
    std::optional<int64_t> id;
    nlohmann::json values = nlohmann::json::object();  ///< of the event's data, by the nodes' names
};

/// From now on what happens is kept for take_event(). Throws when the camera has no node that hears of the event. For one camera
/// in a program: node callbacks know no context.
void listen_to(const Camera& camera, const std::string& event);
void add_event(DeviceEvent&& event);
/// The oldest event that was not taken yet; waits for one for the given time.
std::optional<DeviceEvent> take_event(std::chrono::milliseconds wait);
