/// What a camera tells of its own accord, and how it remembers which of it was asked for.
#pragma once

#include <cstdint>
#include <functional>

namespace kivsim {

/// Numbers as in EventSelector.
enum class EventKind : uint32_t {
    FrameTrigger,
    FrameTriggerMissed,
    ExposureStart,
    ExposureEnd,
    Line0RisingEdge,
    Line0FallingEdge,
    Test
};

/// The number of an event on the wire, as in the EventID of its nodes.
constexpr uint16_t event_id(EventKind kind) { return static_cast<uint16_t>(0x9001 + static_cast<uint32_t>(kind)); }

struct CameraEvent {
    uint16_t id = 0;
    bool extended_ids = false;  ///< the camera's messages have 64-bit block ids
    uint64_t timestamp_ns = 0;  ///< device time
    uint64_t frame_id = 0;      ///< of the frame that it is about: the present or the next one
};

/// Called with the camera's lock held: it must not call the camera.
using EventSink = std::function<void(const CameraEvent&)>;

}  // namespace kivsim
