/// The figures of a grab, frame by frame and as a whole: what `kiv grab --stats` and `--plot` show.
#pragma once

#include <kiv/image.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "device_clock.h"
#include "frame_timing.h"

/// How a figure is spread over the frames that have it. Quantiles are values that occurred.
struct Spread {
    std::size_t count = 0;
    double mean = 0, stdev = 0, min = 0, p50 = 0, p99 = 0, max = 0;
};
Spread spread_of(std::vector<double> values);

struct FrameFigures {
    FrameTiming timing;
    double time_s = 0;                         ///< since the first frame
    std::optional<double> interval_ms;         ///< since the frame before, by the host's clock, when the producer handed over
    std::optional<double> device_interval_ms;  ///< the same between the device's time stamps
    std::optional<double> jitter_ms;           ///< interval, less the usual one for each frame that it took
    std::optional<double> latency_ms;          ///< from the device's time stamp to the callback
    std::optional<double> delivery_us;         ///< from the producer's event to the callback
};

/// One of the figures, and how it is called.
struct FigureKind {
    const char* key;    ///< in JSON
    const char* title;  ///< over a column
    const char* unit;
    int digits;
    std::optional<double> (*of)(const FrameFigures& frame);
};
/// interval, device interval, jitter, latency, delivery, waiting, unwritten: the order in which they are shown.
const std::vector<FigureKind>& figure_kinds();

struct GrabStatistics {
    std::vector<FrameFigures> frames;
    std::vector<Spread> spreads;  ///< of each of figure_kinds()
    uint64_t gaps = 0;            ///< places where ids were skipped
    uint64_t missing = 0;         ///< ids that were
    uint64_t repeated = 0;
    uint64_t incomplete = 0;
    std::optional<K_STREAM_STATISTICS> stream;
    DeviceClock::Kind clock = DeviceClock::Kind::kNone;
    const char* clock_name = "none";
    double clock_uncertainty_us = 0;
    double clock_drift_ppm = 0;
};

GrabStatistics make_statistics(const std::vector<FrameTiming>& frames, const std::vector<ClockReading>& readings,
                               const std::optional<K_STREAM_STATISTICS>& stream);

/// The keys are documented in docs/kiv-tool.md.
nlohmann::json to_json(const GrabStatistics& statistics);
/// A line for each frame, then the summary.
void print_statistics(const GrabStatistics& statistics);
