/// What a device module sends when its camera tells something: the camera's own event of the standard, and with GigE Vision three
/// kinds beyond it. And what modules tell of themselves.
///
///     EVENT_REMOTE_DEVICE, 1000   the message as it stands on the wire, big endian: 0x42, flags, 0x00C2 (0x00C0 without
///                                 data), length, request id; then of each event size, event id, channel, block id, time
///                                 stamp, and as data the frame id in 8 bytes
///     1001                        a record of 556 bytes, or as many as the camera was asked for: how many the device has sent,
///     bytes of the message (4 bytes each), device
///                                 time (8), then the message, filled up with zeros; numbers as the machine has them
///     1004                        the event id in 4 bytes
///     EVENT_FEATURE_INVALIDATE    the name of the feature
///     EVENT_FEATURE_CHANGE        the name of the feature, a zero, its value as a text
///     EVENT_MODULE                the event's number in 8 bytes
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_events.h"
#include "info.h"

namespace kivsim {

namespace event_kind {
constexpr GenTL::EVENT_TYPE message = 1000, record = 1001, number = 1004;
}

constexpr size_t largest_message = 548;  ///< that a device may send
constexpr size_t least_record = 556;
constexpr size_t longest_change = 128;  ///< of a feature: its name and its value

/// The packets of GigE Vision for events; numbers as in SimEventForm.
enum class EventForm : uint32_t { EventData, Event };

/// At least one event; all have ids of the same length.
std::string event_message(std::span<const CameraEvent> events, EventForm form, uint16_t request_id);
/// Of a module's own event.
std::string module_event(uint64_t id);
std::string event_record(const CameraEvent& event, std::string_view message, uint32_t sequence, size_t size);

/// "Gain" tells of an EVENT_FEATURE_INVALIDATE, "Gain=3" of an EVENT_FEATURE_CHANGE.
struct FeatureEvent {
    GenTL::EVENT_TYPE kind;
    std::string data;
};
FeatureEvent feature_event(std::string_view change);

/// Takes apart what stands in a queue of that kind. Throws INVALID_PARAMETER when it is none of it.
Info device_event_info(GenTL::EVENT_TYPE kind, std::string_view data, GenTL::EVENT_DATA_INFO_CMD command);

/// The kinds that a device offers besides EVENT_ERROR.
std::vector<GenTL::EVENT_TYPE> device_event_kinds();
/// Most bytes that one event of that kind has; 0 for a kind that is none of these.
size_t device_event_size(GenTL::EVENT_TYPE kind);

}  // namespace kivsim
