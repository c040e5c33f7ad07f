#include "grab_statistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double kNsPerMs = 1e6, kNsPerUs = 1e3;

std::optional<double> difference(std::optional<int64_t> later, std::optional<int64_t> earlier, double unit) {
    if (!later || !earlier) return std::nullopt;
    return static_cast<double>(*later - *earlier) / unit;
}

/// When a frame came; to a library that does not tell its event, when the callback began.
int64_t arrival(const FrameTiming& timing) { return timing.event_ns.value_or(timing.callback_ns); }

/// The usual time between two frames: the median where no id was skipped.
std::optional<double> period_ms(const std::vector<FrameFigures>& frames) {
    std::vector<double> intervals;
    for (const FrameFigures& frame : frames)
        if (frame.interval_ms && frame.timing.missing == 0) intervals.push_back(*frame.interval_ms);
    return intervals.empty() ? std::nullopt : std::optional(spread_of(std::move(intervals)).p50);
}

std::vector<FrameFigures> figures_of(const std::vector<FrameTiming>& timings, const DeviceClock& clock) {
    std::vector<FrameFigures> frames;
    frames.reserve(timings.size());
    for (const FrameTiming& timing : timings) {
        FrameFigures frame;
        frame.timing = timing;
        frame.time_s = static_cast<double>(arrival(timing) - arrival(timings.front())) / 1e9;
        if (!frames.empty()) {
            const FrameTiming& last = frames.back().timing;
            frame.interval_ms = difference(arrival(timing), arrival(last), kNsPerMs);
            frame.device_interval_ms = difference(timing.device_ns, last.device_ns, kNsPerMs);
        }
        if (timing.device_ns && clock.GetKind() != DeviceClock::Kind::kNone)
            frame.latency_ms = (static_cast<double>(timing.callback_ns) - clock.HostNs(*timing.device_ns)) / kNsPerMs;
        frame.delivery_us = difference(timing.callback_ns, timing.event_ns, kNsPerUs);
        frames.push_back(frame);
    }
    const std::optional<double> period = period_ms(frames);
    uint64_t repeats = 0;  // that came in the places of frames that are missing now
    for (FrameFigures& frame : frames) {
        const uint64_t periods = frame.timing.missing >= repeats ? frame.timing.missing - repeats + 1 : 1;
        if (frame.interval_ms && period) frame.jitter_ms = *frame.interval_ms - *period * static_cast<double>(periods);
        repeats = frame.timing.repeated ? repeats + 1 : 0;
    }
    return frames;
}

nlohmann::json number(const std::optional<double>& value) { return value ? nlohmann::json(*value) : nlohmann::json(); }

nlohmann::json to_json(const FrameFigures& frame) {
    nlohmann::json json{{"frame_id", frame.timing.frame_id},
                        {"time_s", frame.time_s},
                        {"missing", frame.timing.missing},
                        {"repeated", frame.timing.repeated},
                        {"incomplete", frame.timing.incomplete},
                        {"timestamp", frame.timing.ticks},
                        {"free", frame.timing.free}};
    for (const FigureKind& kind : figure_kinds()) {
        const std::optional<double> value = kind.of(frame);
        json[kind.key] = value && kind.digits == 0 ? nlohmann::json(static_cast<int64_t>(*value)) : number(value);
    }
    return json;
}

nlohmann::json to_json(const Spread& spread) {
    return {{"count", spread.count}, {"mean", spread.mean}, {"stdev", spread.stdev}, {"min", spread.min},
            {"p50", spread.p50},     {"p99", spread.p99},   {"max", spread.max}};
}

nlohmann::json to_json(const K_STREAM_STATISTICS& stream) {
    return {{"delivered", stream.delivered},
            {"incomplete", stream.incomplete},
            {"skipped", stream.skipped},
            {"discarded", stream.discarded},
            {"requeue_failures", stream.requeue_failures},
            {"lost", stream.lost},
            {"missing_ids", stream.missing_ids}};
}

}  // namespace

Spread spread_of(std::vector<double> values) {
    Spread spread;
    spread.count = values.size();
    if (values.empty()) return spread;
    std::sort(values.begin(), values.end());
    const auto count = static_cast<double>(values.size());
    spread.mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    double squares = 0;
    for (const double value : values) squares += (value - spread.mean) * (value - spread.mean);
    spread.stdev = values.size() > 1 ? std::sqrt(squares / (count - 1)) : 0;
    // The smallest value that at least so much of all are not above.
    const auto quantile = [&](double share) { return values[static_cast<std::size_t>(std::ceil(share * count)) - 1]; };
    spread.min = values.front();
    spread.p50 = quantile(0.5);
    spread.p99 = quantile(0.99);
    spread.max = values.back();
    return spread;
}

const std::vector<FigureKind>& figure_kinds() {
    static const std::vector<FigureKind> kKinds{
        {"interval_ms", "interval", "ms", 3, [](const FrameFigures& frame) { return frame.interval_ms; }},
        {"device_interval_ms", "device", "ms", 3, [](const FrameFigures& frame) { return frame.device_interval_ms; }},
        {"jitter_ms", "jitter", "ms", 3, [](const FrameFigures& frame) { return frame.jitter_ms; }},
        {"latency_ms", "latency", "ms", 3, [](const FrameFigures& frame) { return frame.latency_ms; }},
        {"delivery_us", "delivery", "us", 1, [](const FrameFigures& frame) { return frame.delivery_us; }},
        {"waiting", "waiting", "buffers", 0,
         [](const FrameFigures& frame) { return std::optional<double>(frame.timing.waiting); }},
        {"unwritten", "unwritten", "frames", 0,
         [](const FrameFigures& frame) { return std::optional<double>(static_cast<double>(frame.timing.unwritten)); }},
    };
    return kKinds;
}

GrabStatistics make_statistics(const std::vector<FrameTiming>& frames, const std::vector<ClockReading>& readings,
                               const std::optional<K_STREAM_STATISTICS>& stream) {
    const DeviceClock clock(readings, frames);
    GrabStatistics statistics;
    statistics.frames = figures_of(frames, clock);
    for (const FigureKind& kind : figure_kinds()) {
        std::vector<double> values;
        for (const FrameFigures& frame : statistics.frames)
            if (const std::optional<double> value = kind.of(frame)) values.push_back(*value);
        statistics.spreads.push_back(spread_of(std::move(values)));
    }
    for (const FrameTiming& frame : frames) {
        statistics.gaps += frame.missing != 0 ? 1 : 0;
        statistics.missing += frame.missing;
        statistics.repeated += frame.repeated ? 1 : 0;
        statistics.incomplete += frame.incomplete ? 1 : 0;
    }
    statistics.stream = stream;
    statistics.clock = clock.GetKind();
    statistics.clock_name = clock.Name();
    statistics.clock_uncertainty_us = clock.UncertaintyNs() / kNsPerUs;
    statistics.clock_drift_ppm = clock.DriftPpm();
    return statistics;
}

nlohmann::json to_json(const GrabStatistics& statistics) {
    nlohmann::json summary{{"frames", statistics.frames.size()},
                           {"gaps", statistics.gaps},
                           {"missing", statistics.missing},
                           {"repeated", statistics.repeated},
                           {"incomplete", statistics.incomplete}};
    for (std::size_t i = 0; i < statistics.spreads.size(); ++i)
        summary[figure_kinds()[i].key] = statistics.spreads[i].count != 0 ? to_json(statistics.spreads[i]) : nlohmann::json();
    summary["stream"] = statistics.stream ? to_json(*statistics.stream) : nlohmann::json();
    summary["clock"] = {{"kind", statistics.clock_name},
                        {"uncertainty_us", statistics.clock_uncertainty_us},
                        {"drift_ppm", statistics.clock_drift_ppm}};
    nlohmann::json frames = nlohmann::json::array();
    for (const FrameFigures& frame : statistics.frames) frames.push_back(to_json(frame));
    return {{"summary", std::move(summary)}, {"frames", std::move(frames)}};
}
