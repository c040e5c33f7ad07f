// How kiv grab makes figures of time stamps: the camera's clock beside the host's, gaps, jitter, quantiles.

#include "grab_statistics.h"

#include <gtest/gtest.h>

namespace {

constexpr int64_t kMs = 1'000'000;

FrameTiming frame(uint64_t id, int64_t device_ns, int64_t callback_ns) {
    FrameTiming timing;
    timing.frame_id = id;
    timing.device_ns = device_ns;
    timing.event_ns = callback_ns;
    timing.callback_ns = callback_ns;
    return timing;
}

/// 10 ms apart, of a clock that is 50 ppm slow; every third takes the shortest time of 2 ms, others up to 8 ms more.
std::vector<FrameTiming> drifting_frames(int64_t device_epoch) {
    std::vector<FrameTiming> frames;
    for (int64_t i = 0; i < 3000; ++i) {
        const int64_t host = 77'000'000 * kMs + i * 10 * kMs, device = device_epoch + i * 10 * kMs - i * 500;
        frames.push_back(frame(static_cast<uint64_t>(i + 1), device, host + 2 * kMs + i * 7 % 3 * 4 * kMs));
    }
    return frames;
}

TEST(DeviceClock, WithoutReadingsFollowsTheFastestFramesThroughADrift) {
    // An epoch of 1970 leaves a double no digits for microseconds.
    for (const int64_t epoch : {INT64_C(0), INT64_C(1'800'000'000'000'000'000)}) {
        const std::vector<FrameTiming> frames = drifting_frames(epoch);
        const GrabStatistics statistics = make_statistics(frames, {}, std::nullopt);
        EXPECT_EQ(statistics.clock, DeviceClock::Kind::kSmallest);
        EXPECT_NEAR(statistics.clock_drift_ppm, 50, 0.1);
        for (std::size_t i = 0; i < frames.size(); ++i)
            ASSERT_NEAR(*statistics.frames[i].latency_ms, static_cast<double>(i * 7 % 3 * 4), 0.002) << i;
    }
}

TEST(DeviceClock, TakesATransientForNoDrift) {
    std::vector<FrameTiming> frames;
    for (int64_t i = 0; i < 10; ++i)
        frames.push_back(frame(static_cast<uint64_t>(i), i * 10 * kMs, i * 10 * kMs + (10 - i) * kMs));
    const DeviceClock clock({}, frames);
    EXPECT_EQ(clock.DriftPpm(), 0);
    EXPECT_NEAR(clock.HostNs(0), 1.0 * kMs, 1) << "the last frame was the fastest";
}

TEST(DeviceClock, BelievesReadingsUnlessTheFramesContradict) {
    const std::vector<FrameTiming> frames = drifting_frames(5 * kMs);
    const int64_t host = 77'000'000 * kMs, later = 40'000 * kMs;
    std::vector<ClockReading> readings{{5 * kMs, host, 3000}, {5 * kMs + later - 2'000'000, host + later, 4000}};
    const GrabStatistics good = make_statistics(frames, readings, std::nullopt);
    EXPECT_EQ(good.clock, DeviceClock::Kind::kRead);
    EXPECT_NEAR(good.clock_drift_ppm, 50, 0.1);
    EXPECT_EQ(good.clock_uncertainty_us, 4);
    EXPECT_NEAR(good.spreads[3].min, 2, 0.001);
    EXPECT_NEAR(good.spreads[3].max, 10, 0.001);
    for (ClockReading& reading : readings) reading.host_ns += 3 * kMs;  // frames would come before they were taken
    EXPECT_EQ(make_statistics(frames, readings, std::nullopt).clock, DeviceClock::Kind::kSmallest);
    std::vector<FrameTiming> unstamped = frames;
    for (FrameTiming& one : unstamped) one.device_ns.reset();
    EXPECT_EQ(make_statistics(unstamped, readings, std::nullopt).clock, DeviceClock::Kind::kNone);
}

TEST(FrameIds, TellWhatIsMissingAlsoPast16Bits) {
    const struct {
        uint64_t last, id, missing;
    } cases[]{{1, 2, 0}, {1, 5, 3}, {5, 5, 0}, {9, 1, 0}, {65535, 1, 0}, {65530, 3, 7}, {65535, 0, 0}, {1u << 20, 1, 0}};
    for (const auto& one : cases) EXPECT_EQ(missing_between(one.last, one.id), one.missing) << one.last << " " << one.id;
}

TEST(Figures, CountGapsAndRepeatsIntoTheJitter) {
    std::vector<FrameTiming> frames;
    for (const int64_t at : {0, 10, 20, 30, 60, 71, 80, 90}) frames.push_back(frame(static_cast<uint64_t>(at), 0, at * kMs));
    frames[4].missing = 2;  // 30 to 60: three periods
    frames[6].repeated = true;
    frames[7].missing = 1;  // in whose place the repeated one came
    const GrabStatistics statistics = make_statistics(frames, {}, std::nullopt);
    const double jitter[]{0, 0, 0, 0, 1, -1, 0};
    for (std::size_t i = 0; i < std::size(jitter); ++i) EXPECT_NEAR(*statistics.frames[i + 1].jitter_ms, jitter[i], 1e-9) << i;
    EXPECT_EQ(statistics.gaps, 2u);
    EXPECT_EQ(statistics.missing, 3u);
    EXPECT_FALSE(statistics.frames[0].interval_ms);
}

TEST(Figures, HaveQuantilesThatOccurred) {
    std::vector<double> values;
    for (int i = 200; i >= 1; --i) values.push_back(i);
    const Spread spread = spread_of(values);
    EXPECT_EQ(spread.min, 1);
    EXPECT_EQ(spread.p50, 100);
    EXPECT_EQ(spread.p99, 198);
    EXPECT_EQ(spread.max, 200);
    EXPECT_DOUBLE_EQ(spread.mean, 100.5);
    EXPECT_NEAR(spread.stdev, 57.879, 0.001);
    EXPECT_EQ(spread_of({5}).stdev, 0);
    EXPECT_EQ(spread_of({}).count, 0u);
}

}  // namespace
