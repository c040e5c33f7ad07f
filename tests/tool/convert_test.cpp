// kiv convert: raw files with and without a header, and what is wrong with those that cannot be converted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::HasSubstr;

namespace {

constexpr std::size_t kHeader = 80;

/// Two raw files of the colour camera, 320 x 240, 12 bits: shots/frame_000001.raw and _2, the first also without its header.
class KivConvert : public testing::Test {
protected:
    KivConvert() {
        EXPECT_EQ(bench.Kiv({"set", "0", "PixelFormat=BayerRG12p"}).exit, 0);
        EXPECT_EQ(bench.Kiv({"grab", "0", "-n", "2", "-o", bench.In("shots"), "--format", "raw"}).exit, 0);
        bench.Write("bare.bin", bench.Read("shots/frame_000001.raw").substr(kHeader));
    }
    Words Command(const Words& more) const {
        Words words{"convert"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    /// Width, height, bits and colour type of a PNG file.
    std::vector<int> Png(const std::string& file) const {
        const std::string bytes = bench.Read(file);
        const auto at = [&](std::size_t i) { return static_cast<uint8_t>(bytes.at(i)); };
        return {at(18) << 8 | at(19), at(22) << 8 | at(23), at(24), at(25)};
    }

    Bench bench;
    const std::string first = bench.In("shots/frame_000001.raw"), second = bench.In("shots/frame_000002.raw");
    const Words bare{"--width", "320", "--height", "240", "--pixel-format", "bayerrg12P"};
};

TEST_F(KivConvert, WritesEachFileIntoTheFolderAndGoesOnAfterAFailure) {
    const std::string broken = bench.Write("broken.raw", bench.Read("shots/frame_000001.raw").substr(0, 1000));
    const Result run = bench.Kiv(Command({first, broken, second, "-o", bench.In("out"), "--json"}));
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, HasSubstr("broken.raw"));
    const json files = run.Json()["files"];
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(files[0]["output"], bench.In("out/frame_000001.png"));
    EXPECT_EQ(files[0]["pixel_format"], "BayerRG12p");
    EXPECT_TRUE(files[1].contains("error"));
    EXPECT_EQ(Png("out/frame_000002.png"), (std::vector<int>{320, 240, 16, 2}));
    EXPECT_FALSE(exists(bench.In("out/broken.png")));
}

TEST_F(KivConvert, ReadsFilesWithoutAHeaderAsTheUserSays) {
    ASSERT_EQ(bench.Kiv(Command({first, "-o", bench.In("a.png"), "--quality", "best"})).exit, 0);
    Words words = Command({bench.In("bare.bin"), "-o", bench.In("b.png"), "--quality", "best"});
    words.insert(words.end(), bare.begin(), bare.end());
    ASSERT_EQ(bench.Kiv(words).exit, 0);
    EXPECT_EQ(bench.Read("a.png"), bench.Read("b.png"));
    // The header itself is what can be skipped as well, and given back.
    bench.Write("shifted.bin", "12345" + bench.Read("bare.bin") + "more");
    words = Command({bench.In("shifted.bin"), "-o", bench.In("c.raw"), "--skip", "5"});
    words.insert(words.end(), bare.begin(), bare.end());
    const Result run = bench.Kiv(words);
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("only the first 115200 are the image"));
    EXPECT_EQ(bench.Read("c.raw").substr(kHeader), bench.Read("bare.bin"));
}

TEST_F(KivConvert, WorksThroughOperationsAndFormats) {
    ASSERT_EQ(
        bench.Kiv(Command({first, "-o", bench.In("a.png"), "--white-balance", "--process", "mono; depth 8; scale 0.5"})).exit, 0);
    EXPECT_EQ(Png("a.png"), (std::vector<int>{160, 120, 8, 0}));
    for (const auto& [format, extension, begin] : std::vector<std::array<std::string, 3>>{
             {"jpeg", "jpg", "\xFF\xD8"}, {"tiff", "tif", "II*"}, {"bmp", "bmp", "BM"}, {"raw", "raw", "\x89KIVR"}}) {
        ASSERT_EQ(bench.Kiv(Command({second, "-o", bench.In("out"), "--format", format, "--jpeg-quality", "50"})).exit, 0);
        EXPECT_THAT(bench.Read("out/frame_000002." + extension), testing::StartsWith(begin));
    }
    EXPECT_EQ(bench.Read("out/frame_000002.raw"), bench.Read("shots/frame_000002.raw"));
}

TEST_F(KivConvert, SaysWhatIsWrong) {
    bench.Write("other/frame_000001.raw", bench.Read("bare.bin"));
    const std::string bin = bench.In("bare.bin"), out = bench.In("x.png");
    const struct {
        Words words;
        int exit;
        std::string text;
    } cases[] = {
        {{bin, "-o", out}, 1, "has no header"},
        {{bench.In("none.raw"), "-o", out}, 1, "none.raw"},
        {{bin, "-o", out, "--width", "320"}, 2, "belong together"},
        {{first, "-o", out, "--skip", "1"}, 2, "without a header"},
        {{bin, "-o", out, "--width", "320", "--height", "241", "--pixel-format", "Mono16"}, 1, "pixels of Mono16 take 154240"},
        {{bin, "-o", out, "--width", "320", "--height", "240", "--pixel-format", "Mono13"}, 2, "Mono13"},
        {{first, bench.In("other/frame_000001.raw"), "-o", bench.In("out")}, 2, "would both become"},
        {{first, "-o", bench.In("shots"), "--format", "raw"}, 1, "its own source"},
        {{first, "-o", out, "--format", "tiff"}, 2, "the name of the file png"},
        {{first, "-o", out, "--process", "mirror"}, 1, "mirror"},
        {{first, "-o", bench.In("none/x.png")}, 1, "x.png"},
    };
    for (const auto& row : cases) {
        const Result run = bench.Kiv(Command(row.words));
        EXPECT_EQ(run.exit, row.exit) << row.text;
        EXPECT_THAT(run.err, HasSubstr(row.text));
    }
    EXPECT_FALSE(exists(out));
}

}  // namespace
