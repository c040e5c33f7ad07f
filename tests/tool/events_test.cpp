// kiv events: what the cameras of both producers tell, and that their settings are as before when it has ended.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

namespace {

/// A camera A1 on either producer, unplugged while the file "unplugged" exists.
struct EventBench : Bench {
    explicit EventBench(bool gige) {
        const json camera{{"serial", "A1"}, {"width", 64}, {"height", 64}, {"frame_rate", 200}, {"unplug_file", "unplugged"}};
        const json interfaces = json::array({{{"cameras", json::array({camera})}}});
        SetCameras(gige ? json::array() : interfaces);
        Write("gige.json", json{{"interfaces", gige ? interfaces : json::array()}}.dump());
        SetVariable("KIV_SIM_GEV_CONFIG", In("gige.json"));
    }

    /// Notifications of all events included.
    std::string Settings() {
        EXPECT_EQ(Kiv({"save", "A1", In("settings.xml"), "--mode", "streamable"}).exit, 0);
        return Read("settings.xml");
    }
};

class KivEvents : public testing::TestWithParam<bool> {
protected:
    EventBench bench{GetParam()};
};

TEST_P(KivEvents, ComeWithTheirDataWhileTheCameraAcquires) {
    const std::string before = bench.Settings();
    const Result run = bench.Kiv(
        {"events", "A1", "--select", "ExposureStart", "ExposureEnd", "--acquire", "-n", "8", "--timeout", "30", "--json"});
    ASSERT_EQ(run.exit, 0) << run.err;
    std::istringstream stream(run.out);
    std::vector<json> events;
    for (std::string line; std::getline(stream, line);) events.push_back(json::parse(line));
    ASSERT_EQ(events.size(), 8u);
    int64_t last_time = 0, last_frame = 0;
    for (const json& event : events) {
        const bool is_end = event["event"] == "ExposureEnd";
        EXPECT_EQ(event["id"], is_end ? 0x9004 : 0x9003);
        const std::string prefix = is_end ? "EventExposureEnd" : "EventExposureStart";
        const int64_t time = event["values"][prefix + "Timestamp"], frame = event["values"][prefix + "FrameID"];
        EXPECT_GT(time, last_time);
        EXPECT_EQ(frame, is_end ? last_frame : last_frame + 1) << "an exposure ends before the next one starts";
        last_time = time;
        last_frame = frame;
    }
    EXPECT_THAT(before, HasSubstr("EventNotification"));
    EXPECT_EQ(bench.Settings(), before);
    EXPECT_EQ(bench.Kiv({"get", "A1", "TLParamsLocked", "--value"}).out, "0\n");
}

TEST_P(KivEvents, EndOnCtrlCAndWhenTheCameraIsGone) {
    if (!kiv_test::Process::CanInterrupt()) GTEST_SKIP() << "no console here to press Ctrl-C on";
    const std::string before = bench.Settings();
    for (const bool unplugs : {false, true}) {
        const std::string out = unplugs ? "run4.out" : "run2.out";
        const auto running = bench.Start({"events", "A1", "--exec", "TestEventGenerate"});
        ASSERT_TRUE(eventually([&] { return bench.Read(out).find(" Test 0x9007 ") != std::string::npos; }));
        if (!unplugs) {
            running->PressCtrlC();
            EXPECT_EQ(running->Wait().exit, 130);
            EXPECT_EQ(bench.Settings(), before);
            continue;
        }
        bench.Write("unplugged", "");
        const Result run = running->Wait();
        EXPECT_EQ(run.exit, 1);
        EXPECT_THAT(run.err, AllOf(HasSubstr("EventNotification and 6 other settings could not be given back"),
                                   HasSubstr("kiv: K_Event_GetData")));
    }
}

INSTANTIATE_TEST_SUITE_P(Producers, KivEvents, testing::Bool(),
                         [](const auto& gige) { return gige.param ? "GigEVision" : "Other"; });

TEST(KivEventsErrors, NameWhatIsMissing) {
    EventBench bench(false);
    const Result typo = bench.Kiv({"events", "A1", "--select", "ExposurEnd"});
    EXPECT_EQ(typo.exit, 1);
    EXPECT_THAT(typo.err, HasSubstr("Did you mean ExposureEnd?"));
    const Result silent = bench.Kiv({"events", "A1", "--select", "ExposureEnd", "-n", "1", "--timeout", "0.2"});
    EXPECT_EQ(silent.exit, 1);
    EXPECT_THAT(silent.err, AllOf(HasSubstr("no event came for 0.2 s"), HasSubstr("--acquire")));
}

}  // namespace
