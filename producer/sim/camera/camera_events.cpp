// The events of the camera: which are wanted, and when they happen.

#include <algorithm>

#include "camera_core.h"

namespace kivsim {
namespace {

constexpr uint64_t kOff = 0, kOnce = 2;
constexpr int kEdgesAtOnce = 64;  // a host that was away for long gets the last of them

}  // namespace

bool CameraCore::Tells(EventKind kind) const {
    return sink_ && registers_.Uint(Reg::EventNotification, static_cast<uint32_t>(kind)) != kOff;
}

void CameraCore::Tell(EventKind kind, uint64_t when, uint64_t frame) {
    if (!Tells(kind)) return;
    const auto index = static_cast<uint32_t>(kind);
    if (registers_.Uint(Reg::EventNotification, index) == kOnce) registers_.SetUint(Reg::EventNotification, kOff, index);
    sink_({event_id(kind), registers_.Uint(Reg::ExtendedIds) != 0, registers_.DeviceTime(when), frame});
}

bool CameraCore::TellsOfFrames() const {
    return Tells(EventKind::ExposureStart) || Tells(EventKind::ExposureEnd) || Tells(EventKind::FrameTrigger);
}

/// Begin of the next exposure that was not told yet.
std::optional<uint64_t> CameraCore::NextExposure() {
    if (!Tells(EventKind::ExposureStart) || exposure_told_ == clock_.LastId() + 1) return {};
    const auto timing = read_timing(registers_);
    const auto due = clock_.NextDue(timing);
    return due ? std::optional(*due - std::min(*due, timing.exposure_ns)) : std::nullopt;
}

// The light barrier rises with each part and falls half-way to the next.
std::optional<uint64_t> CameraCore::NextEdge(uint64_t after) const {
    const bool rising = Tells(EventKind::Line0RisingEdge), falling = Tells(EventKind::Line0FallingEdge);
    const uint64_t period = read_timing(registers_).part_ns, half = period / 2;
    if ((!rising && !falling) || half == 0) return {};
    const uint64_t edge = after / period * period;
    std::optional<uint64_t> next;
    for (const uint64_t candidate : {edge + half, edge + period, edge + period + half}) {
        const bool is_rising = candidate % period == 0;
        if (candidate > after && (is_rising ? rising : falling) && !next) next = candidate;
    }
    return next;
}

std::optional<uint64_t> CameraCore::NextEvent(uint64_t now) {
    const auto exposure = NextExposure(), edge = NextEdge(now);
    if (exposure && edge) return std::min(*exposure, *edge);
    return exposure ? exposure : edge;
}

void CameraCore::TellWhatHappened(uint64_t now) {
    const auto exposure = NextExposure();
    if (exposure && *exposure <= now) {
        exposure_told_ = clock_.LastId() + 1;
        Tell(EventKind::ExposureStart, *exposure, exposure_told_);
    }
    const uint64_t period = read_timing(registers_).part_ns;
    const uint64_t oldest = now - std::min(now, period * kEdgesAtOnce);
    for (auto edge = NextEdge(std::max(edges_told_, oldest)); edge && *edge <= now; edge = NextEdge(*edge))
        Tell(*edge % period == 0 ? EventKind::Line0RisingEdge : EventKind::Line0FallingEdge, *edge, clock_.LastId());
    edges_told_ = now;
}

}  // namespace kivsim
