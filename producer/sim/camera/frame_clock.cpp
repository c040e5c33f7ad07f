#include "frame_clock.h"

#include <algorithm>
#include <limits>

namespace kivsim {
namespace {

constexpr size_t kTriggerQueue = 16;
constexpr uint64_t kEndless = std::numeric_limits<uint64_t>::max();

bool is_light_barrier(const TriggerSettings& trigger) { return trigger.source == static_cast<uint32_t>(TriggerSource::Line0); }

}  // namespace

void FrameClock::Start(uint64_t now, const Timing& timing) {
    acquiring_ = true;
    id_ = 0;
    frames_left_ = timing.mode == 0 ? kEndless : timing.mode == 1 ? 1 : timing.frame_count;
    burst_left_ = 0;
    last_start_.reset();
    earliest_ = now;
    for (auto& queue : waiting_) queue.clear();
}

void FrameClock::Stop() {
    acquiring_ = false;
    for (auto& queue : waiting_) queue.clear();
}

bool FrameClock::Fire(Trigger trigger, TriggerSource source, uint64_t now, const Timing& timing) {
    const auto& settings = trigger == Trigger::Frame ? timing.frame : timing.burst;
    auto& queue = waiting_[static_cast<size_t>(trigger)];
    const bool taken =
        acquiring_ && settings.on && settings.source == static_cast<uint32_t>(source) && queue.size() < kTriggerQueue;
    if (taken) queue.push_back(now + settings.delay_ns);
    return taken;
}

// the light barrier is dark during the first half of each part's period
std::optional<uint64_t> FrameClock::NextEdge(uint64_t earliest, const Timing& timing, uint32_t activation) {
    constexpr uint32_t falling = 1, any = 2;
    if (timing.part_ns == 0) return {};
    const uint64_t step = activation == any ? std::max<uint64_t>(timing.part_ns / 2, 1) : timing.part_ns;
    const uint64_t phase = activation == falling ? timing.part_ns / 2 : 0;
    return (earliest + step - 1 - std::min(phase, earliest)) / step * step + phase;
}

std::optional<uint64_t> FrameClock::NextStart(const Timing& timing) {
    const uint64_t free_at = last_start_ ? *last_start_ + timing.shortest_ns : earliest_;
    const uint64_t free_running = last_start_ ? *last_start_ + timing.period_ns : earliest_;
    auto triggered = [&](Trigger trigger, const TriggerSettings& settings) -> std::optional<uint64_t> {
        if (is_light_barrier(settings)) {
            const auto edge = NextEdge(free_at, timing, settings.activation);
            return edge ? std::optional(*edge + settings.delay_ns) : std::nullopt;
        }
        const auto& queue = waiting_[static_cast<size_t>(trigger)];
        return queue.empty() ? std::nullopt : std::optional(std::max(queue.front(), free_at));
    };

    if (timing.frame.on) {
        if (timing.burst.on && burst_left_ == 0 && !triggered(Trigger::Burst, timing.burst)) return {};
        return triggered(Trigger::Frame, timing.frame);
    }
    if (timing.burst.on && burst_left_ == 0) return triggered(Trigger::Burst, timing.burst);
    return free_running;
}

std::optional<uint64_t> FrameClock::NextDue(const Timing& timing) {
    if (!acquiring_) return {};
    const auto start = NextStart(timing);
    return start ? std::optional(*start + timing.exposure_ns) : std::nullopt;
}

FrameClock::Frame FrameClock::Take(uint64_t now, const Timing& timing) {
    const uint64_t latest = now > timing.exposure_ns ? now - timing.exposure_ns : 0;
    uint64_t start = NextStart(timing).value_or(latest);
    if (start + timing.period_ns < latest) start = latest;

    auto consume = [&](Trigger trigger) {
        auto& queue = waiting_[static_cast<size_t>(trigger)];
        if (!queue.empty()) queue.pop_front();
    };
    if (timing.frame.on) consume(Trigger::Frame);
    if (timing.burst.on && burst_left_ == 0) {
        consume(Trigger::Burst);
        burst_left_ = timing.burst_count;
    }
    if (burst_left_ > 0) --burst_left_;

    last_start_ = start;
    if (frames_left_ != kEndless && frames_left_ > 0 && --frames_left_ == 0) acquiring_ = false;
    return {++id_, start};
}

}  // namespace kivsim
