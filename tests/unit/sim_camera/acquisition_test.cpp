// When frames come: free running, triggered, counted, lost. The clock is asked directly where times matter; the camera where
// registers, threads and counters do.

#include <thread>

#include "frame_clock.h"
#include "sim_camera_fixture.h"

namespace kivsim {
namespace {

constexpr uint64_t ms = 1'000'000;

class Clock : public ::testing::Test {
protected:
    Clock() {
        timing.exposure_ns = 5 * ms;
        timing.shortest_ns = 10 * ms;
        timing.period_ns = 20 * ms;
        timing.frame.source = static_cast<uint32_t>(TriggerSource::Software);
        timing.burst.source = static_cast<uint32_t>(TriggerSource::Software);
    }
    Timing timing;
    FrameClock clock;
};

TEST_F(Clock, FreeRunningFramesKeepThePeriod) {
    EXPECT_FALSE(clock.NextDue(timing));
    clock.Start(100 * ms, timing);
    EXPECT_EQ(105 * ms, clock.NextDue(timing));
    const auto first = clock.Take(106 * ms, timing);
    EXPECT_EQ(1U, first.id);
    EXPECT_EQ(100 * ms, first.start_ns);
    EXPECT_EQ(125 * ms, clock.NextDue(timing)) << "a little delay does not shift the next frame";
    EXPECT_EQ(120 * ms, clock.Take(126 * ms, timing).start_ns);
    // a host that is slower than the camera slows it down
    EXPECT_EQ(495 * ms, clock.Take(500 * ms, timing).start_ns);
    EXPECT_EQ(520 * ms, clock.NextDue(timing));
    timing.period_ns = 50 * ms;
    EXPECT_EQ(550 * ms, clock.NextDue(timing)) << "a new rate counts at once";
    clock.Stop();
    EXPECT_FALSE(clock.NextDue(timing));
}

TEST_F(Clock, SingleAndMultiFrameEndByThemselves) {
    timing.mode = 1;
    clock.Start(0, timing);
    clock.Take(5 * ms, timing);
    EXPECT_FALSE(clock.Acquiring());
    timing.mode = 2;
    timing.frame_count = 3;
    clock.Start(0, timing);
    for (uint64_t i = 1; i <= 3; ++i) {
        ASSERT_TRUE(clock.NextDue(timing));
        EXPECT_EQ(i, clock.Take(*clock.NextDue(timing), timing).id);
    }
    EXPECT_FALSE(clock.NextDue(timing));
}

TEST_F(Clock, TriggersGiveOneFrameEachAfterTheirDelay) {
    timing.frame.on = true;
    timing.frame.delay_ns = 3 * ms;
    EXPECT_FALSE(clock.Fire(Trigger::Frame, TriggerSource::Software, 0, timing)) << "nothing is acquired";
    clock.Start(0, timing);
    EXPECT_FALSE(clock.NextDue(timing));
    EXPECT_FALSE(clock.Fire(Trigger::Frame, TriggerSource::Action0, 1 * ms, timing)) << "another source";
    EXPECT_TRUE(clock.Fire(Trigger::Frame, TriggerSource::Software, 7 * ms, timing));
    EXPECT_TRUE(clock.Fire(Trigger::Frame, TriggerSource::Software, 8 * ms, timing));
    EXPECT_EQ(15 * ms, clock.NextDue(timing));
    EXPECT_EQ(10 * ms, clock.Take(15 * ms, timing).start_ns);
    EXPECT_EQ(25 * ms, clock.NextDue(timing)) << "the read-out of the first comes before";
    clock.Take(25 * ms, timing);
    EXPECT_FALSE(clock.NextDue(timing));
    int taken = 0;
    while (taken < 100 && clock.Fire(Trigger::Frame, TriggerSource::Software, 30 * ms, timing)) ++taken;
    EXPECT_EQ(16, taken);
}

TEST_F(Clock, ABurstTriggerGivesAsManyFramesAsAskedFor) {
    timing.burst.on = true;
    timing.burst_count = 3;
    clock.Start(0, timing);
    EXPECT_FALSE(clock.NextDue(timing));
    clock.Fire(Trigger::Burst, TriggerSource::Software, 40 * ms, timing);
    uint64_t starts[3];
    for (auto& start : starts) start = clock.Take(*clock.NextDue(timing), timing).start_ns;
    EXPECT_EQ(40 * ms, starts[0]);
    EXPECT_EQ(60 * ms, starts[1]);
    EXPECT_EQ(80 * ms, starts[2]);
    EXPECT_FALSE(clock.NextDue(timing));
}

TEST_F(Clock, TheLightBarrierTriggersAtEachPart) {
    timing.frame.on = true;
    timing.frame.source = static_cast<uint32_t>(TriggerSource::Line0);
    timing.part_ns = 100 * ms;
    clock.Start(130 * ms, timing);
    EXPECT_EQ(205 * ms, clock.NextDue(timing));
    EXPECT_EQ(200 * ms, clock.Take(205 * ms, timing).start_ns);
    EXPECT_EQ(305 * ms, clock.NextDue(timing));
    timing.frame.activation = 1;
    EXPECT_EQ(255 * ms, clock.NextDue(timing)) << "falling edge";
    timing.part_ns = 0;
    EXPECT_FALSE(clock.NextDue(timing)) << "the belt stands";
    timing.part_ns = 100 * ms;
    timing.frame.source = static_cast<uint32_t>(TriggerSource::Line1);
    EXPECT_FALSE(clock.NextDue(timing)) << "nothing is connected";
}

class Acquisition : public SimCameraTest {
protected:
    Acquisition() {
        config.sensor_width = 64;
        config.sensor_height = 64;
    }
    bool NoFrameComes() { return camera->WaitForFrame(std::chrono::milliseconds(0)) == Camera::Wait::Timeout; }
};

TEST_F(Acquisition, FramesComeBetweenStartAndStopOnly) {
    Open();
    EXPECT_TRUE(NoFrameComes());
    Set("AcquisitionStart", 1);
    EXPECT_EQ(1U, Get("AcquisitionStatus") & 1);
    const auto first = Take(), second = Take();
    EXPECT_EQ(1U, first.info.frame_id);
    EXPECT_EQ(2U, second.info.frame_id);
    EXPECT_GE(second.info.timestamp_ns, first.info.timestamp_ns + 50 * ms) << "20 Hz";
    EXPECT_LE(second.info.timestamp_ns, Get("Timestamp"));
    Set("AcquisitionStop", 1);
    EXPECT_TRUE(NoFrameComes());
    Set("AcquisitionMode", 2);
    Set("AcquisitionFrameCount", 2);
    Set("AcquisitionStart", 1);
    EXPECT_EQ(1U, Take().info.frame_id) << "a new acquisition counts anew";
    Take();
    EXPECT_TRUE(NoFrameComes());
    EXPECT_EQ(0U, Get("AcquisitionStatus") & 1);
    Set("Width", 32);  // no longer locked
}

TEST_F(Acquisition, SoftwareTriggersAndSignals) {
    Open();
    Set("TriggerMode", 1);
    Set("AcquisitionStart", 1);
    EXPECT_EQ(3U, Get("AcquisitionStatus") & 3) << "waits for a trigger";
    EXPECT_TRUE(NoFrameComes());
    Set("TriggerSoftware", 1);
    Take();
    EXPECT_TRUE(NoFrameComes());
    Set("SoftwareSignalPulse", 1, 1);
    EXPECT_EQ(0U, Get("TriggersMissed")) << "nobody listens to that signal";
    Set("TriggerSource", 9);
    Set("SoftwareSignalPulse", 1, 1);
    Take();
    Set("TriggerSoftware", 1);
    EXPECT_EQ(1U, Get("TriggersMissed")) << "the trigger listens to the signal now";
    EXPECT_TRUE(NoFrameComes());
    Set("TriggerMode", 0);
    Take();
}

TEST_F(Acquisition, ActionsNeedTheKeysOfTheCamera) {
    Open();
    Set("TriggerMode", 1);
    Set("TriggerSource", 17);
    Set("ActionDeviceKey", 0x1234);
    Set("ActionGroupKey", 7, 1);
    Set("ActionGroupMask", 0x6, 1);
    Set("AcquisitionStart", 1);
    camera->Action(0x9999, 7, 2);
    camera->Action(0x1234, 8, 2);
    camera->Action(0x1234, 7, 1);
    EXPECT_TRUE(NoFrameComes());
    camera->Action(0x1234, 7, 2);
    Take();
}

TEST_F(Acquisition, WaitsEndWhenTheyAreWoken) {
    Open();
    camera->Wake();
    EXPECT_EQ(Camera::Wait::Woken, camera->WaitForFrame(std::chrono::seconds(20))) << "a wake before the wait is not lost";
    EXPECT_TRUE(NoFrameComes()) << "and counts once";
    auto result = Camera::Wait::Timeout;
    std::thread waiter([&] { result = camera->WaitForFrame(std::chrono::seconds(20)); });
    camera->Wake();
    waiter.join();
    EXPECT_EQ(Camera::Wait::Woken, result);
    // a start is noticed by a wait that is under way
    std::thread other([&] { result = camera->WaitForFrame(std::chrono::seconds(20)); });
    Set("AcquisitionStart", 1);
    other.join();
    EXPECT_EQ(Camera::Wait::Frame, result);
}

TEST_F(Acquisition, LostFramesAreCounted) {
    Open();
    Set("FrameRateEnable", 0);
    Set("CounterEventSource", 5);     // FrameStart
    Set("CounterResetSource", 1, 1);  // AcquisitionStart
    Set("CounterValue", 9, 1);
    Set("AcquisitionStart", 1);
    EXPECT_EQ(0U, Get("CounterValue", 1));
    EXPECT_EQ(9U, Get("CounterValueAtReset", 1));
    ASSERT_TRUE(FrameComes());
    const auto lost = camera->NextFrame({});
    EXPECT_EQ(1U, lost.frame_id);
    EXPECT_EQ(64U * 64, lost.size);
    EXPECT_EQ(2U, Take().info.frame_id);
    EXPECT_EQ(1U, Get("FramesSkipped"));
    EXPECT_EQ(1U, Get("FramesRendered"));
    EXPECT_EQ(2U, Get("CounterValue"));
    Set("CounterReset", 1);
    EXPECT_EQ(0U, Get("CounterValue"));
}

TEST_F(Acquisition, TheRateIsLimitedByExposureReadOutAndLink) {
    config.max_frame_rate = 100;
    Open();
    auto rate = [&] {
        const auto bits = static_cast<uint32_t>(Get("ResultingFrameRate"));
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return static_cast<double>(value);
    };
    EXPECT_NEAR(20, rate(), 0.01);
    Set("FrameRateEnable", 0);
    EXPECT_NEAR(100, rate(), 0.1);
    Set("Height", 32);
    EXPECT_NEAR(200, rate(), 0.1) << "half the rows";
    Set("ExposureTicks", 500'000);
    EXPECT_NEAR(20, rate(), 0.01);
    Set("ExposureTicks", 100);
    Set("TriggerMode", 0);
    Set("ThroughputLimitMode", 1);
    Set("ThroughputLimit", 1);
    EXPECT_NEAR(200, rate(), 0.1) << "64 x 32 bytes are 0.4 MB/s";
    Set("PixelFormat", 0x01100005);
    EXPECT_NEAR(200, rate(), 0.1);
}

TEST_F(Acquisition, AnotherProcessThatResetsTheCameraEndsTheAcquisition) {
    Open();
    Set("AcquisitionStart", 1);
    Camera other(config);
    other.PowerCycle();
    EXPECT_TRUE(NoFrameComes());
    EXPECT_EQ(0U, Get("AcquisitionStatus") & 1);
}

TEST_F(Acquisition, RegistersCanBeReadAndWrittenWhileFramesAreMade) {
    Open();
    Set("FrameRateEnable", 0);
    Set("AcquisitionStart", 1);
    std::thread host([&] {
        for (uint32_t i = 0; i < 500; ++i) {
            Set("ExposureTicks", 1000 + i);
            EXPECT_EQ(1000 + i, Get("ExposureTicks"));
            Set("LutEnable", i & 1);
        }
    });
    for (uint64_t i = 1; i <= 20; ++i) EXPECT_EQ(i, Take().info.frame_id);
    host.join();
}

}  // namespace
}  // namespace kivsim
