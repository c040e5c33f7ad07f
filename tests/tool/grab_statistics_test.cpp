// kiv grab --stats, --plot and --chunks: the figures against faults that are known, the picture's pixels, the values' files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

namespace {

/// One camera with faults that come at regular frames.
struct FaultyBench : Bench {
    explicit FaultyBench(const json& faults) {
        const json camera{{"serial", "A1"}, {"width", 64}, {"height", 64}, {"frame_rate", 200}, {"faults", faults}};
        SetCameras(json::array({{{"cameras", json::array({camera})}}}));
    }
};

/// How many pixels of a PNG file have a colour, 0xRRGGBB.
class Picture {
public:
    explicit Picture(const std::string& file) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&image, file.c_str()) == 0) throw std::runtime_error(image.message);
        image.format = PNG_FORMAT_RGB;
        width = image.width;
        height = image.height;
        pixels_.resize(PNG_IMAGE_SIZE(image));
        if (png_image_finish_read(&image, nullptr, pixels_.data(), 0, nullptr) == 0) throw std::runtime_error(image.message);
    }
    int Count(uint32_t colour) const {
        int count = 0;
        for (std::size_t i = 0; i < pixels_.size(); i += 3)
            count += (pixels_[i] << 16 | pixels_[i + 1] << 8 | pixels_[i + 2]) == static_cast<int>(colour);
        return count;
    }
    uint32_t width = 0, height = 0;

private:
    std::vector<uint8_t> pixels_;
};

TEST(KivGrabStatistics, TellGapsIncompleteFramesAndLatencies) {
    FaultyBench bench(json{{"drop_every", 10}, {"incomplete_every", 7}});
    const Result run =
        bench.Kiv({"grab", "0", "-n", "30", "--stats=json", "--plot", bench.In("p.png"), "--plot-size", "800x600"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const json report = run.Json(), summary = report["statistics"]["summary"], frames = report["statistics"]["frames"];
    EXPECT_EQ(report["frames"], 30);
    EXPECT_TRUE(report["folder"].is_null());
    uint64_t missing = 0, incomplete = 0, last = 0;
    double time = 0;
    for (const json& frame : frames) {
        const uint64_t id = frame["frame_id"];
        if (last != 0) {
            EXPECT_EQ(frame["missing"], id - last - 1);
            missing += id - last - 1;
            time += frame["interval_ms"].get<double>();
            EXPECT_GT(frame["device_interval_ms"], 0);
        }
        EXPECT_EQ(frame["incomplete"], id % 7 == 0) << id;
        incomplete += id % 7 == 0;
        last = id;
        EXPECT_GT(frame["latency_ms"], 0) << "the simulated camera tells its clock";
        EXPECT_GE(frame["delivery_us"], 0);
        EXPECT_NEAR(frame["time_s"].get<double>(), time / 1000, 1e-6);
    }
    EXPECT_EQ(frames.size(), 30 + incomplete);
    EXPECT_GE(missing, 3u);
    EXPECT_EQ(summary["missing"], missing);
    EXPECT_EQ(summary["incomplete"], incomplete);
    EXPECT_EQ(summary["stream"]["incomplete"], incomplete);
    EXPECT_EQ(summary["clock"]["kind"], "read");
    EXPECT_EQ(summary["latency_ms"]["count"], frames.size());
    EXPECT_LE(summary["latency_ms"]["p50"], summary["latency_ms"]["p99"]);
    const Picture plot(bench.In("p.png"));
    EXPECT_EQ(plot.width, 800u);
    EXPECT_EQ(plot.height, 600u);
    EXPECT_GT(plot.Count(0x2062B0), 500) << "the curves";
    EXPECT_GT(plot.Count(0xFFCDCD), 500) << "where frames are missing";
    EXPECT_GT(plot.Count(0xFF6E00), 50) << "the incomplete ones";
}

TEST(KivGrabStatistics, ComeAsATableAndKeepIncompleteImagesOnRequest) {
    FaultyBench bench(json{{"incomplete_every", 2}});
    const Result run = bench.Kiv({"grab", "0", "-n", "4", "-o", bench.In("shots"), "--keep-incomplete", "--stats", "--manifest"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("frame id      time  interval"), HasSubstr("  incomplete\n"),
                               HasSubstr("4 frames: 0 missing in 0 gaps, 0 repeated, 2 incomplete"), HasSubstr("4 of 4 frames")));
    const json frames = json::parse(bench.Read("shots/frames.json"))["frames"];
    ASSERT_EQ(frames.size(), 4u);
    for (const json& frame : frames) EXPECT_EQ(frame["incomplete"], frame["frame_id"].get<uint64_t>() % 2 == 0);
}

TEST(KivGrabChunks, StandBesideTheImages) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"set", "0", "Width=160", "Gain=3"}).exit, 0);
    const auto settings = [&bench] {
        EXPECT_EQ(bench.Kiv({"save", "0", bench.In("settings.xml"), "--mode", "streamable"}).exit, 0);
        return bench.Read("settings.xml");
    };
    const std::string before = settings();
    EXPECT_THAT(before, AllOf(HasSubstr("ChunkModeActive"), HasSubstr("ChunkEnable")));
    const Result run = bench.Kiv({"grab", "0", "-n", "5", "-o", bench.In("shots"), "--chunks=FrameID,Width,Gain,Timestamp"});
    ASSERT_EQ(run.exit, 0) << run.err;
    uint64_t last = 0;
    for (int i = 1; i <= 5; ++i) {
        const std::string name = "frame_00000" + std::to_string(i);
        const json values = json::parse(bench.Read("shots/" + name + ".json"));
        EXPECT_EQ(values["file"], name + ".png");
        const json chunks = values["chunks"];
        EXPECT_EQ(chunks.size(), 4u) << chunks;
        EXPECT_EQ(chunks["ChunkFrameID"], values["frame_id"]);
        EXPECT_EQ(chunks["ChunkTimestamp"], values["timestamp"]);
        EXPECT_EQ(chunks["ChunkWidth"], 160);
        EXPECT_EQ(chunks["ChunkGain"], 3.0);
        EXPECT_GT(chunks["ChunkFrameID"].get<uint64_t>(), last);
        last = chunks["ChunkFrameID"];
    }
    EXPECT_EQ(settings(), before);
    EXPECT_THAT(bench.Kiv({"grab", "0", "-o", bench.In("shots"), "--chunks=FrameId"}).err, HasSubstr("Did you mean FrameID?"));
    EXPECT_EQ(bench.Kiv({"grab", "0", "--stats", "--chunks"}).exit, 2);
}

TEST(KivGrabFormats, AreWhatTheirFilesBeginWith) {
    Bench bench;
    const struct {
        const char *format, *file;
        std::string begin;
    } cases[]{{"bmp", "frame_000001.bmp", "BM"},
              {"png", "frame_000001.png", "\x89PNG"},
              {"jpeg", "frame_000001.jpg", "\xFF\xD8\xFF"},
              {"raw", "frame_000001.raw", "\x89KIVR"}};
    for (const auto& one : cases) {
        const Result run = bench.Kiv({"grab", "0", "-o", bench.In("shots"), "--format", one.format, "--quality", "best"});
        ASSERT_EQ(run.exit, 0) << run.err;
        EXPECT_EQ(bench.Read("shots/" + std::string(one.file)).substr(0, one.begin.size()), one.begin) << one.format;
    }
    const auto jpeg_size = [&](const char* quality) {
        EXPECT_EQ(bench.Kiv({"grab", "0", "-o", bench.In("q"), "--format", "jpeg", "--jpeg-quality", quality}).exit, 0);
        return bench.Read("q/frame_000001.jpg").size();
    };
    EXPECT_LT(2 * jpeg_size("10"), jpeg_size("95"));
    EXPECT_THAT(bench.Kiv({"grab", "0", "-o", "x", "--format", "gif"}).err, HasSubstr("\"gif\" is none of bmp, jpeg"));
}

}  // namespace
