// kiv probe: what it prints of the cameras on serial ports.
#include <gmock/gmock.h>

#include "kiv_process.h"
#include "support/serial_camera.h"

namespace {

using namespace tool_test;
using nlohmann::json;
using testing::HasSubstr;

TEST(KivProbe, PrintsATableOrJson) {
    kiv_test::SerialCamera first, second;
    second.SetText(0x44, "Longer name");
    second.SetRate(115200, 0x10);
    Bench bench;
    bench.SetVariable("KIV_CAMERA_LINK_PORTS", first.Path() + ";" + second.Path());
    const Result table = bench.Kiv({"probe"});
    EXPECT_EQ(table.exit, 0) << table.err;
    EXPECT_THAT(table.out, testing::AllOf(testing::StartsWith("PORT"), HasSubstr("COM_Port#" + first.Path()),
                                          HasSubstr("  KIV-SIM-1    9600    9600 19200 38400"),
                                          HasSubstr("  Longer name  115200  9600 19200"), HasSubstr("#Kiv_Ltd#Line#KIV_SIM_1#")));
    const json cameras = bench.Kiv({"probe", "--json"}).Json()["cameras"];
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[1]["port"], "COM_Port#" + second.Path());
    EXPECT_EQ(cameras[1]["model"], "Longer name");
    EXPECT_EQ(cameras[1]["baud_rate"], 115200);
    EXPECT_EQ(cameras[1]["supported_baud_rates"], json({9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600}));
    EXPECT_THAT(cameras[1]["device_id"].get<std::string>(), HasSubstr("#Longer_name#"));
}

TEST(KivProbe, EndsWithThreeWhenThereIsNoPortOrNoCamera) {
    Bench bench;
    const Result no_port = bench.Kiv({"probe"});
    EXPECT_EQ(no_port.exit, 3);
    EXPECT_THAT(no_port.err, HasSubstr("no Camera Link serial port"));
    bench.SetVariable("KIV_CAMERA_LINK_PORTS", bench.In("nothing"));
    const Result no_camera = bench.Kiv({"probe", "--json"});
    EXPECT_EQ(no_camera.exit, 3);
    EXPECT_THAT(no_camera.Json()["cameras"], testing::IsEmpty());
    EXPECT_THAT(no_camera.err, HasSubstr("no camera answers"));
}

TEST(KivProbe, EndsInTheMiddleWithCtrlC) {
    if (!kiv_test::Process::CanInterrupt()) GTEST_SKIP() << "no console here to press Ctrl-C on";
    kiv_test::SerialCamera silent;
    silent.SetManners([](const auto&, const auto&) { return kiv_test::SerialReply(); });
    Bench bench;
    bench.SetVariable("KIV_CAMERA_LINK_PORTS", silent.Path());
    const auto running = bench.Start({"probe"});
    ASSERT_TRUE(eventually([&] { return silent.BytesHeard() > 0; }));
    running->PressCtrlC();
    const Result result = running->Wait();
    EXPECT_EQ(result.exit, 130);
    EXPECT_THAT(result.err, HasSubstr("not all ports"));
}

}  // namespace
