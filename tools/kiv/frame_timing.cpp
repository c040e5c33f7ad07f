#include "frame_timing.h"

#include <chrono>

#include "node.h"

namespace {

constexpr uint64_t kLastOf16Bits = 0xFFFF;
// BUFFER_INFO_CMD of GenTL
constexpr int32_t kIsIncomplete = 7, kTimestampNs = 28;

}  // namespace

uint64_t missing_between(uint64_t last_id, uint64_t id) {
    if (id > last_id) return id - last_id - 1;
    const bool wrapped = last_id <= kLastOf16Bits && last_id - id > kLastOf16Bits / 2 && id != 0;
    return wrapped ? kLastOf16Bits - last_id + id - 1 : 0;
}

int64_t steady_ns() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Value>
std::optional<Value> FrameProbe::Ask(int32_t command) const {
    Value value{};
    uint32_t size = sizeof value;
    if (K_Image_GetBufferInfo(stream_, command, &value, &size) != K_ST_SUCCESS) return std::nullopt;
    return value;
}

FrameTiming FrameProbe::Measure(const K_IMAGE_INFO& image) {
    FrameTiming timing;
    timing.callback_ns = steady_ns();
    timing.frame_id = image.frame_id;
    timing.ticks = image.timestamp;
    timing.waiting = image.await_delivery;
    timing.free = image.queued_buffers;
    if (last_id_) {
        timing.missing = missing_between(*last_id_, image.frame_id);
        // 0 from a camera that does not count
        timing.repeated = image.frame_id == *last_id_ && image.frame_id != 0;
    }
    last_id_ = image.frame_id;
    uint64_t event = 0;
    if (K_Image_GetEventTime(stream_, &event) == K_ST_SUCCESS) timing.event_ns = static_cast<int64_t>(event);
    timing.incomplete = Ask<uint8_t>(kIsIncomplete).value_or(0) != 0;
    if (image.timestamp == 0) return timing;
    if (const auto stamp = Ask<uint64_t>(kTimestampNs))
        timing.device_ns = static_cast<int64_t>(*stamp);
    else if (tick_ns_ > 0)
        timing.device_ns = static_cast<int64_t>(static_cast<double>(image.timestamp) * tick_ns_);
    return timing;
}

double nanoseconds_per_tick(const Camera& camera) {
    std::optional<int64_t> frequency = camera.Integer("GevTimestampTickFrequency");
    void* device = nullptr;
    NODE_HANDLE node = nullptr;
    int64_t value = 0;
    if (!frequency && K_Camera_GetLocalDeviceHandle(camera.Get(), &device) == K_ST_SUCCESS &&
        K_GenTL_GetNodeByName(device, "DeviceTimestampFrequency", &node) == K_ST_SUCCESS &&
        K_Node_GetValueInt64(node, true, &value) == K_ST_SUCCESS)
        frequency = value;
    return frequency && *frequency > 0 ? 1e9 / static_cast<double>(*frequency) : 0;
}
