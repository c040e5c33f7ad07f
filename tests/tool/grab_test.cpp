// kiv grab: files, counts, and every way in which a grab can end.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <set>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

namespace {

Words grab(const Bench& bench, const Words& more) {
    Words words{"grab", "0", "-o", bench.In("shots")};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::set<std::string> files(const Bench& bench) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(bench.In("shots")))
        names.insert(entry.path().filename().string());
    return names;
}

uint32_t big_endian(const std::string& bytes, std::size_t at) {
    uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<uint8_t>(bytes.at(at + i));
    return value;
}

TEST(KivGrab, WritesAsManyPngFilesAsAskedForInTheCamerasSize) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"set", "0", "Width=160", "Height=120"}).exit, 0);
    const Result run = bench.Kiv(grab(bench, {"-n", "3", "--json"}));
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(files(bench), (std::set<std::string>{"frame_000001.png", "frame_000002.png", "frame_000003.png"}));
    const std::string png = bench.Read("shots/frame_000003.png");
    EXPECT_EQ(png.substr(1, 3), "PNG");
    EXPECT_EQ(big_endian(png, 16), 160u);
    EXPECT_EQ(big_endian(png, 20), 120u);
    const json summary = run.Json();
    EXPECT_EQ(summary["frames"], 3);
    EXPECT_EQ(summary["ending"], "complete");
    EXPECT_EQ(summary["width"], 160);
    EXPECT_EQ(summary["failed"], 0);
    EXPECT_EQ(summary["incomplete"], 0);
    EXPECT_GE(summary["first_frame_s"], 0.0);
}

TEST(KivGrab, WritesRawFilesWithEveryByteOfTheImage) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"set", "0", "PixelFormat=BayerRG12p"}).exit, 0);
    ASSERT_EQ(bench.Kiv(grab(bench, {"-n", "2", "--format", "raw"})).exit, 0);
    EXPECT_EQ(bench.Read("shots/frame_000002.raw").size(), 80u + 320 * 240 * 12 / 8);
}

TEST(KivGrab, WritesTiffFilesAndAManifestWithFrameIdsInOrder) {
    Bench bench;
    ASSERT_EQ(bench.Kiv(grab(bench, {"-n", "20", "--format", "tiff", "--manifest"})).exit, 0);
    EXPECT_THAT(bench.Read("shots/frame_000001.tif"), testing::AnyOf(testing::StartsWith("II*"), testing::StartsWith("MM")));
    const json frames = json::parse(bench.Read("shots/frames.json"))["frames"];
    ASSERT_EQ(frames.size(), 20u);
    for (std::size_t i = 1; i < frames.size(); ++i) {
        EXPECT_GT(frames[i]["frame_id"], frames[i - 1]["frame_id"]);
        EXPECT_GT(frames[i]["timestamp"], frames[i - 1]["timestamp"]);
        EXPECT_TRUE(files(bench).count(frames[i]["file"]));
    }
}

TEST(KivGrab, CountsEveryFrameThatASlowWriterCosts) {
    Bench bench;
    const Result run = bench.Kiv(grab(bench, {"-n", "60", "--queue", "1", "--writers", "1", "--manifest", "--json"}));
    ASSERT_EQ(run.exit, 0) << run.err;
    const json summary = run.Json();
    const json frames = json::parse(bench.Read("shots/frames.json"))["frames"];
    const uint64_t passed = frames.back()["frame_id"].get<uint64_t>() - frames.front()["frame_id"].get<uint64_t>() + 1;
    EXPECT_EQ(passed, 60 + summary["missing"].get<uint64_t>());
    EXPECT_EQ(summary["queue"]["peak"], 1);
}

TEST(KivGrab, TellsOfImagesThatAnEarlierGrabLeft) {
    Bench bench;
    ASSERT_EQ(bench.Kiv(grab(bench, {"-n", "4"})).exit, 0);
    const Result run = bench.Kiv(grab(bench, {"-n", "1"}));
    EXPECT_THAT(run.out, AllOf(HasSubstr("1 of 1 frames"), HasSubstr("3 images of an earlier grab")));
}

TEST(KivGrab, EndsWithAReasonWhenNoImageComes) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"set", "0", "TriggerMode=On"}).exit, 0);
    const Result run = bench.Kiv(grab(bench, {"-n", "3", "--timeout", "0.3", "--json"}));
    EXPECT_EQ(run.exit, 5);
    EXPECT_EQ(run.Json()["ending"], "timeout");
    EXPECT_EQ(run.Json()["frames"], 0);
    EXPECT_THAT(run.err, AllOf(HasSubstr("no image came for 0.3 s"), HasSubstr("TriggerMode is On")));
}

TEST(KivGrab, OfACameraThatIsUnpluggedKeepsWhatCameBefore) {
    Bench bench;
    const auto running = bench.Start(grab(bench, {"-n", "1000000", "--format", "raw", "--timeout", "1", "--json"}));
    ASSERT_TRUE(eventually([&] { return exists(bench.In("shots/frame_000005.raw")); }));
    bench.Write("unplugged", "");
    const Result run = running->Wait();
    EXPECT_EQ(run.exit, 5) << run.err;
    EXPECT_GE(run.Json()["frames"], 5);
    EXPECT_EQ(run.Json()["frames"], files(bench).size());
}

TEST(KivGrab, EndsCleanlyOnCtrlC) {
    if (!kiv_test::Process::CanInterrupt()) GTEST_SKIP() << "no console here to press Ctrl-C on";
    Bench bench;
    const auto running = bench.Start(grab(bench, {"-n", "1000000", "--format", "raw"}));
    ASSERT_TRUE(eventually([&] { return exists(bench.In("shots/frame_000002.raw")); }));
    running->PressCtrlC();
    const Result run = running->Wait();
    EXPECT_EQ(run.exit, 130) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("(interrupted)"), HasSubstr("fps")));
    EXPECT_EQ(bench.Kiv({"get", "0", "TLParamsLocked", "--value"}).out, "0\n");
}

TEST(KivGrab, NamesTheFileThatCannotBeWritten) {
    Bench bench;
    std::filesystem::create_directories(bench.In("shots/frame_000002.png"));
    const Result run = bench.Kiv(grab(bench, {"-n", "5", "--json"}));
    EXPECT_EQ(run.exit, 5);
    EXPECT_THAT(run.err, HasSubstr("frame_000002.png"));
    EXPECT_EQ(run.Json()["ending"], "failed");
    EXPECT_GE(run.Json()["failed"], 1);
    bench.Write("file", "");
    EXPECT_EQ(bench.Kiv({"grab", "0", "-o", bench.In("file/below")}).exit, 1);
}

}  // namespace
