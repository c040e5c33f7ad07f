#include "device_clock.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Where cameras have their clock.
struct ClockFeatures {
    const char* latch;
    const char* value;
    bool is_ticks;  ///< else nanoseconds
};
constexpr std::array kClocks{ClockFeatures{"TimestampLatch", "TimestampLatchValue", false},
                             ClockFeatures{"GevTimestampControlLatch", "GevTimestampValue", true}};
constexpr int kReadings = 8;
/// What no quartz is off by, but an estimate over a moment is.
constexpr double kLargestDrift = 200e-6;
constexpr double kLongestLatencyNs = 60e9;

struct Point {
    double x, y;
};

/// The lower side of the points' convex hull; they come in ascending order of x.
std::vector<Point> lower_hull(const std::vector<Point>& points) {
    std::vector<Point> hull;
    for (const Point& p : points) {
        const auto is_above = [&] {
            const Point &a = hull[hull.size() - 2], &b = hull.back();
            return (b.x - a.x) * (p.y - a.y) <= (b.y - a.y) * (p.x - a.x);
        };
        while (hull.size() >= 2 && is_above()) hull.pop_back();
        hull.push_back(p);
    }
    return hull;
}

}  // namespace

std::optional<ClockReading> read_device_clock(const Camera& camera) {
    for (const ClockFeatures& clock : kClocks) {
        const double tick_ns = clock.is_ticks ? nanoseconds_per_tick(camera) : 1;
        if (tick_ns <= 0 || camera.FindNode(clock.latch) == nullptr) continue;
        std::optional<ClockReading> best;
        for (int i = 0; i < kReadings; ++i) {
            const int64_t before = steady_ns();
            if (K_Camera_ExecuteCommand(camera.Get(), clock.latch) != K_ST_SUCCESS) break;
            const int64_t after = steady_ns();
            const std::optional<int64_t> value = camera.Integer(clock.value);
            if (!value) break;
            const ClockReading reading{static_cast<int64_t>(static_cast<double>(*value) * tick_ns), before + (after - before) / 2,
                                       (after - before + 1) / 2};
            if (!best || reading.uncertainty_ns < best->uncertainty_ns) best = reading;
        }
        if (best) return best;
    }
    return std::nullopt;
}

DeviceClock::DeviceClock(const std::vector<ClockReading>& readings, const std::vector<FrameTiming>& frames) {
    const bool has_stamps =
        std::any_of(frames.begin(), frames.end(), [](const FrameTiming& frame) { return frame.device_ns.has_value(); });
    if (!has_stamps) return;
    if (!readings.empty()) FromReadings(readings);
    if (kind_ == Kind::kNone || !IsCredible(frames)) FromFrames(frames);
}

const char* DeviceClock::Name() const {
    constexpr std::array kNames{"none", "read", "smallest"};
    return kNames[static_cast<std::size_t>(kind_)];
}

double DeviceClock::HostNs(int64_t device_ns) const {
    return static_cast<double>(host_base_) + static_cast<double>(device_ns - device_base_) * (1 + slope_) + offset_;
}

void DeviceClock::FromReadings(const std::vector<ClockReading>& readings) {
    const ClockReading &first = readings.front(), &last = readings.back();
    kind_ = Kind::kRead;
    device_base_ = first.device_ns;
    host_base_ = first.host_ns;
    uncertainty_ns_ = static_cast<double>(std::max(first.uncertainty_ns, last.uncertainty_ns));
    const auto device_span = static_cast<double>(last.device_ns - first.device_ns);
    if (device_span > 0) slope_ = static_cast<double>(last.host_ns - first.host_ns) / device_span - 1;
}

bool DeviceClock::IsCredible(const std::vector<FrameTiming>& frames) const {
    // Time stamps may be of another clock than the one that can be latched.
    return std::all_of(frames.begin(), frames.end(), [this](const FrameTiming& frame) {
        if (!frame.device_ns) return true;
        const double latency = static_cast<double>(frame.callback_ns) - HostNs(*frame.device_ns);
        return latency >= -uncertainty_ns_ && latency < kLongestLatencyNs;
    });
}

void DeviceClock::FromFrames(const std::vector<FrameTiming>& frames) {
    std::vector<Point> points;
    kind_ = Kind::kSmallest;
    slope_ = offset_ = uncertainty_ns_ = 0;
    for (const FrameTiming& frame : frames) {
        if (!frame.device_ns) continue;
        if (points.empty()) device_base_ = *frame.device_ns, host_base_ = frame.callback_ns;
        const auto device = static_cast<double>(*frame.device_ns - device_base_);
        if (!points.empty() && device <= points.back().x) continue;  // a frame that came twice, or a clock that was reset
        points.push_back({device, static_cast<double>(frame.callback_ns - host_base_) - device});
    }
    const auto lower = [](const Point& a, const Point& b) { return a.y < b.y; };
    offset_ = std::min_element(points.begin(), points.end(), lower)->y;
    if (points.size() < 3) return;
    // Of all lines with no point below them, the one that is nearest to the points lies on the hull's edge under their middle.
    double middle = 0;
    for (const Point& point : points) middle += point.x / static_cast<double>(points.size());
    const std::vector<Point> hull = lower_hull(points);
    const auto right =
        std::upper_bound(hull.begin(), hull.end(), middle, [](double x, const Point& point) { return x < point.x; });
    if (right == hull.begin() || right == hull.end()) return;
    const Point &a = *std::prev(right), &b = *right;
    const double slope = (b.y - a.y) / (b.x - a.x);
    if (std::abs(slope) > kLargestDrift) return;
    slope_ = slope;
    offset_ = a.y - slope * a.x;
}
