// What the settings do to the image.

#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "sim_camera_fixture.h"

namespace kivsim {
namespace {

class Images : public SimCameraTest {
protected:
    void OpenColor(uint32_t format) {
        config.color = true;
        Open();
        Set("PixelFormat", format);
    }
    void OpenMono12() {
        Open();
        Set("PixelFormat", kMono12);
    }
    // a patch of the belt between the lanes of parts
    static double Belt(const Image& image) {
        const auto& info = image.info;
        return image.Mean(0, info.height * 15 / 32, info.width, info.height * 17 / 32);
    }
    static double Deviation(const Image& a, const Image& b) {
        double sum = 0;
        const size_t count = size_t{a.info.width} * a.info.height;
        for (uint32_t y = 0; y < a.info.height; ++y)
            for (uint32_t x = 0; x < a.info.width; ++x) sum += std::pow(double(a.At(x, y)) - double(b.At(x, y)), 2);
        return std::sqrt(sum / static_cast<double>(count) / 2);
    }
};

TEST_F(Images, BrightnessFollowsExposureGainLightAndBlackLevel) {
    OpenMono12();
    HoldStill();
    Set("ExposureTicks", 20000);
    const double once = Belt(Grab());
    ASSERT_GT(once, 200);
    Set("ExposureTicks", 40000);
    EXPECT_NEAR(2 * once, Belt(Grab()), 2);
    Set("ExposureTicks", 20000);
    Set("Gain", 602);  // 6.02 dB: twice
    EXPECT_NEAR(2 * once, Belt(Grab()), 0.002 * once + 2);
    Set("Gain", 0);
    Set("LightLevel", 50);
    EXPECT_NEAR(once / 2, Belt(Grab()), 2);
    Set("LightLevel", 100);
    Set("BlackLevel", 100);
    EXPECT_NEAR(once + 100, Belt(Grab()), 1);
    Set("Gain", 3600);
    Set("ExposureTicks", 1000000);
    EXPECT_EQ(4095, Belt(Grab())) << "saturated, not wrapped";
}

TEST_F(Images, NoiseGrowsWithLightAsItsRootAndWithGain) {
    OpenMono12();
    HoldStill();
    Set("SceneFlags", 1);
    auto noise = [&] {
        // frames of one acquisition differ in their noise only
        Set("AcquisitionStart", 1);
        const auto a = Take(), b = Take();
        Set("AcquisitionStop", 1);
        return Deviation(a, b);
    };
    Set("ExposureTicks", 10000);
    const double dim = noise();
    Set("ExposureTicks", 40000);
    const double bright = noise();
    EXPECT_GT(dim, 1);
    EXPECT_NEAR(2, bright / dim, 0.2);
    Set("ExposureTicks", 10000);
    Set("Gain", 602);
    EXPECT_NEAR(2, noise() / dim, 0.1);
    // averaging four pixels halves it
    Set("Gain", 0);
    Set("BinningHorizontal", 2);
    Set("BinningVertical", 2);
    EXPECT_NEAR(0.5, noise() / dim, 0.05);
    Set("SceneFlags", 0);
    EXPECT_EQ(0, noise());
}

TEST_F(Images, TheRegionIsAPieceOfTheWholeImage) {
    OpenMono12();
    HoldStill();
    Set("SceneFlags", 2);
    const auto whole = Grab();
    Set("Width", 100);
    Set("Height", 60);
    Set("OffsetX", 44);
    Set("OffsetY", 30);
    const auto piece = Grab();
    EXPECT_EQ(44U, piece.info.offset_x);
    EXPECT_EQ(30U, piece.info.offset_y);
    ASSERT_EQ(100U * 60 * 2, piece.bytes.size());
    for (uint32_t y = 0; y < 60; ++y)
        for (uint32_t x = 0; x < 100; ++x) ASSERT_EQ(whole.At(x + 44, y + 30), piece.At(x, y)) << x << ", " << y;
}

TEST_F(Images, MirroringTurnsTheWholeImage) {
    OpenMono12();
    HoldStill();
    const auto plain = Grab();
    Set("ReadoutControl", 1);
    const auto x_mirrored = Grab();
    Set("ReadoutControl", 3);
    const auto turned = Grab();
    for (uint32_t y = 0; y < 240; y += 3) {
        for (uint32_t x = 0; x < 320; ++x) {
            ASSERT_EQ(plain.At(x, y), x_mirrored.At(319 - x, y));
            ASSERT_EQ(plain.At(x, y), turned.At(319 - x, 239 - y));
        }
    }
    // the region is counted on the mirrored image
    Set("Width", 100);
    Set("OffsetX", 20);
    const auto piece = Grab();
    for (uint32_t x = 0; x < 100; ++x) ASSERT_EQ(turned.At(x + 20, 80), piece.At(x, 80));
}

TEST_F(Images, BinningAveragesOrAdds) {
    OpenMono12();
    HoldStill();
    Set("ExposureTicks", 10000);
    const auto full = Grab();
    Set("BinningHorizontal", 2);
    Set("BinningVertical", 2);
    const auto averaged = Grab();
    Set("BinningHorizontalMode", 0);
    const auto added_in_rows = Grab();
    Set("BinningVerticalMode", 0);
    const auto added = Grab();
    ASSERT_EQ(160U, averaged.info.width);
    ASSERT_EQ(120U, averaged.info.height);
    for (uint32_t y = 0; y < 120; y += 5) {
        for (uint32_t x = 0; x < 160; ++x) {
            const double sum =
                full.At(2 * x, 2 * y) + full.At(2 * x + 1, 2 * y) + full.At(2 * x, 2 * y + 1) + full.At(2 * x + 1, 2 * y + 1);
            ASSERT_NEAR(sum / 4, averaged.At(x, y), 1.1);
            ASSERT_NEAR(std::min(sum / 2, 4095.0), added_in_rows.At(x, y), 2.1);
            ASSERT_NEAR(std::min(sum, 4095.0), added.At(x, y), 4.1);
        }
    }
}

TEST_F(Images, PackedFormatsHoldTheSamplesOfThePlainOnes) {
    Open();
    HoldStill();
    Set("PixelFormat", kMono12);
    const auto plain = Grab();
    Set("PixelFormat", kMono12p);
    const auto packed12 = Grab();
    Set("PixelFormat", kMono10p);
    const auto packed10 = Grab();
    ASSERT_EQ(320U * 240 * 3 / 2, packed12.info.size);
    ASSERT_EQ(320U * 240 * 10 / 8, packed10.info.size);
    auto sample = [](const Image& image, size_t index, size_t bits) {
        const size_t bit = index * bits;
        const unsigned word = image.Byte(bit / 8) | image.Byte(bit / 8 + 1) << 8;
        return word >> (bit % 8) & ((1U << bits) - 1);
    };
    for (size_t i = 0; i < 320 * 240; ++i) {
        const unsigned value = plain.At(static_cast<uint32_t>(i % 320), static_cast<uint32_t>(i / 320));
        ASSERT_EQ(value, sample(packed12, i, 12)) << i;
        ASSERT_EQ(value >> 2, sample(packed10, i, 10)) << i;
    }
}

TEST_F(Images, TheMosaicBeginsWithRedAndGreen) {
    OpenColor(kRgb8);
    Set("TestPattern", 9);  // colour bars
    const auto rgb = Grab();
    Set("PixelFormat", kBayerRG8);
    const auto bayer = Grab();
    Set("PixelFormat", kBgr8);
    const auto bgr = Grab();
    for (uint32_t y = 0; y < 4; ++y) {
        for (uint32_t x = 0; x < 320; ++x) {
            const size_t pixel = size_t{y} * 320 + x;
            ASSERT_EQ(rgb.Byte(3 * pixel + (x & 1) + (y & 1)), bayer.At(x, y)) << x << ", " << y;
            ASSERT_EQ(rgb.Byte(3 * pixel), bgr.Byte(3 * pixel + 2));
        }
    }
    Set("PixelFormat", kYuv422);
    const auto yuv = Grab();
    EXPECT_NEAR(240, yuv.Byte(0), 1);  // the first bar is white
    EXPECT_NEAR(128, yuv.Byte(1), 1);
    EXPECT_GT(yuv.Byte(320 * 2 * 11 / 16 + 3), 200U) << "the sixth bar is red: much V";
}

TEST_F(Images, TheSceneOfTheMosaicIsThatOfTheColorImage) {
    OpenColor(kBayerRG12);
    HoldStill();
    const auto bayer = Grab();
    Set("PixelFormat", kRgb8);
    const auto rgb = Grab();
    bool colorful = false;
    for (uint32_t y = 0; y < 240; ++y) {
        for (uint32_t x = 0; x < 320; ++x) {
            const size_t pixel = size_t{y} * 320 + x;
            ASSERT_EQ(rgb.Byte(3 * pixel + (x & 1) + (y & 1)), bayer.At(x, y) >> 4) << x << ", " << y;
            colorful = colorful || rgb.Byte(3 * pixel) > rgb.Byte(3 * pixel + 2) + 60;
        }
    }
    EXPECT_TRUE(colorful) << "brass is yellow";
    // the ratio of one colour changes that colour only
    Set("BalanceRatio", Get("BalanceRatio", 2) / 2, 2);
    const auto less_blue = Grab();
    for (size_t pixel = 0; pixel < 320 * 240; pixel += 7) {
        ASSERT_EQ(rgb.Byte(3 * pixel), less_blue.Byte(3 * pixel));
        if (rgb.Byte(3 * pixel + 2) < 255) {
            ASSERT_NEAR(rgb.Byte(3 * pixel + 2) / 2.0, less_blue.Byte(3 * pixel + 2), 1.1);
        }
    }
    Set("BalanceRatio", Get("BalanceRatio", 2) * 2, 2);
    Set("Gain", 602, 1);
    const auto more_red = Grab();
    ASSERT_NEAR(std::min(255.0, 2.0 * rgb.Byte(0)), more_red.Byte(0), 2);
    ASSERT_EQ(rgb.Byte(1), more_red.Byte(1));
}

TEST_F(Images, TestPatternsAreExact) {
    Open();
    Set("TestPattern", 3);
    const auto ramp = Grab();
    for (uint32_t x = 0; x < 320; ++x) ASSERT_EQ(x & 0xFF, ramp.At(x, 9));
    Set("TestPattern", 6);
    Set("AcquisitionStart", 1);
    const auto first = Take(), second = Take();
    Set("AcquisitionStop", 1);
    EXPECT_EQ((10 + first.info.frame_id) & 0xFF, first.At(5, 10));
    EXPECT_EQ(first.At(5, 11), second.At(5, 10));
    Set("TestPattern", 2);
    EXPECT_EQ(255, Belt(Grab()));
    Set("TestPattern", 10);
    const auto counter = Grab();
    EXPECT_GT(*std::max_element(counter.bytes.begin(), counter.bytes.end()), std::byte{200});
    EXPECT_EQ(16U, counter.At(0, 0));
}

TEST_F(Images, GammaAndTablesWorkOnTheNumbers) {
    OpenMono12();
    Set("TestPattern", 3);
    const auto ramp = Grab();
    SetFloat("Gamma", 2.0F);
    const auto squared = Grab();
    for (uint32_t x = 0; x < 256; ++x) ASSERT_NEAR(std::pow(ramp.At(x, 0) / 4095.0, 2) * 4095, squared.At(x, 0), 0.51);
    SetFloat("Gamma", 1.0F);
    for (uint32_t i = 0; i < 4096; i += 16) Set("Lut", 4095 - i, i);
    EXPECT_EQ(ramp.bytes, Grab().bytes) << "a table that is off does nothing";
    Set("LutEnable", 1);
    const auto negative = Grab();
    for (uint32_t x = 0; x < 256; ++x) ASSERT_EQ(4095 - ramp.At(x, 0), negative.At(x, 0));
}

TEST_F(Images, TablesOfColorsTouchTheirColorOnly) {
    OpenColor(kBayerRG12);
    Set("TestPattern", 2);
    for (uint32_t i = 0; i < 4096; ++i) Set("Lut", 5, 2 * 4096 + i);
    Set("LutEnable", 1, 2);
    const auto image = Grab();
    EXPECT_EQ(4095U, image.At(0, 0));
    EXPECT_EQ(5U, image.At(1, 0));
    EXPECT_EQ(5U, image.At(0, 1));
    EXPECT_EQ(4095U, image.At(1, 1));
}

TEST_F(Images, TheBeltMovesWithTimeAndSmearsWithExposure) {
    OpenMono12();
    HoldStill();
    const auto still = Grab();
    EXPECT_EQ(still.bytes, Grab().bytes);
    auto roughness = [](const Image& image) {
        double sum = 0;
        for (uint32_t y = 30; y < 210; ++y)
            for (uint32_t x = 1; x < 320; ++x) sum += std::fabs(double(image.At(x, y)) - double(image.At(x - 1, y)));
        return sum;
    };
    // twenty pixels during the exposure; the light is set so that the brightness is the same
    Set("BeltSpeed", 500);
    Set("ExposureTicks", 500000);
    Set("LightLevel", 10);
    const auto sharp = Grab();
    Set("SceneFlags", 4);
    const auto smeared = Grab();
    EXPECT_NE(sharp.bytes, still.bytes);
    EXPECT_LT(roughness(smeared), 0.5 * roughness(sharp));
}

TEST_F(Images, VignettingDarkensTheCorners) {
    OpenMono12();
    HoldStill();
    const auto plain = Grab();
    Set("SceneFlags", 2);
    const auto lens = Grab();
    EXPECT_NEAR(0.70, lens.Mean(0, 0, 8, 8) / plain.Mean(0, 0, 8, 8), 0.03);
    EXPECT_NEAR(1.00, lens.Mean(156, 116, 164, 124) / plain.Mean(156, 116, 164, 124), 0.01);
}

TEST_F(Images, AutomaticExposureReachesTheTargetAndSwitchesOff) {
    OpenMono12();
    Set("BeltSpeed", 0);
    Set("ExposureTicks", 2000);
    Set("AutoTarget", 40);
    Set("ExposureAutoLimits", 1'000'000, 1);
    Set("FrameRateEnable", 0);
    Set("ExposureAuto", 1);
    Set("AcquisitionStart", 1);
    int frames = 0;
    while (Get("ExposureAuto") != 0 && frames < 60) {
        Take();
        ++frames;
    }
    EXPECT_LT(frames, 60);
    const auto image = Take();
    EXPECT_NEAR(0.40 * 4095, image.Mean(0, 0, 320, 240) - 32, 0.05 * 4095);
    // out of reach: the longest exposure, then the gain
    Set("LightLevel", 1);
    Set("ExposureAutoLimits", 60'000, 1);
    Set("GainAuto", 2);
    Set("ExposureAuto", 2);
    for (int i = 0; i < 12; ++i) Take();
    EXPECT_EQ(60'000U, Get("ExposureTicks"));
    EXPECT_GT(Get("Gain"), 2000U);
    EXPECT_EQ(2U, Get("ExposureAuto"));
}

TEST_F(Images, AutomaticWhiteBalanceMakesTheSceneGrey) {
    OpenColor(kBayerRG12);
    Set("BeltSpeed", 0);
    Set("BalanceRatio", 1024, 0);
    Set("BalanceRatio", 3000, 2);
    Set("FrameRateEnable", 0);
    Set("BalanceWhiteAuto", 1);
    Set("AcquisitionStart", 1);
    for (int i = 0; i < 30 && Get("BalanceWhiteAuto") != 0; ++i) Take();
    EXPECT_EQ(0U, Get("BalanceWhiteAuto"));
    const auto image = Take();
    double mean[3] = {}, count[3] = {};
    for (uint32_t y = 0; y < 240; ++y) {
        for (uint32_t x = 0; x < 320; ++x) {
            mean[(x & 1) + (y & 1)] += image.At(x, y);
            ++count[(x & 1) + (y & 1)];
        }
    }
    EXPECT_NEAR(1, (mean[0] / count[0]) / (mean[1] / count[1]), 0.06);
    EXPECT_NEAR(1, (mean[2] / count[2]) / (mean[1] / count[1]), 0.06);
}

TEST_F(Images, ABufferThatIsTooSmallGetsWhatFits) {
    Open();
    Set("TestPattern", 4);
    Set("AcquisitionStart", 1);
    std::vector<std::byte> buffer(320 * 10 + 7, std::byte{0xEE});
    ASSERT_TRUE(FrameComes());
    const auto info = camera->NextFrame(std::span(buffer).first(320 * 10 + 5));
    EXPECT_EQ(320U * 240, info.size);
    EXPECT_EQ(std::byte{9}, buffer[320 * 10 - 1]);
    EXPECT_EQ(std::byte{10}, buffer[320 * 10 + 4]);
    EXPECT_EQ(std::byte{0xEE}, buffer[320 * 10 + 5]);
}

TEST_F(Images, FilesArePlayedUnchangedInTheOrderOfTheirNames) {
    std::filesystem::create_directories(folder / "play");
    auto write = [&](const char* name, const std::string& header, auto value) {
        std::ofstream file(folder / "play" / name, std::ios::binary);
        file << header;
        for (int i = 0; i < 320 * 240; ++i) value(file, i);
    };
    write("b.pgm", "P5\n# a remark\n320 240\n255\n", [](std::ostream& out, int i) { out.put(static_cast<char>(i * 7)); });
    write("a.ppm", "P6 320 240 255\n", [](std::ostream& out, int i) { out << char(i) << char(i / 2) << char(200); });
    std::ofstream(folder / "play" / "c.pgm") << "P5 320 240 255\nshort";
    std::ofstream(folder / "play" / "notes.txt") << "not a picture";
    config.image_folder = (folder / "play").string();
    config.color = true;
    Open();
    Set("PixelFormat", kRgb8);
    Set("AcquisitionStart", 1);
    const auto a = Take(), b = Take(), c = Take(), again = Take();
    for (size_t i = 0; i < 320 * 240; ++i) {
        ASSERT_EQ(i & 0xFF, a.Byte(3 * i));
        ASSERT_EQ(i / 2 & 0xFF, a.Byte(3 * i + 1));
        ASSERT_EQ(200U, a.Byte(3 * i + 2));
        ASSERT_EQ(i * 7 & 0xFF, b.Byte(3 * i + 1));
    }
    EXPECT_EQ(std::byte{0}, *std::max_element(c.bytes.begin(), c.bytes.end())) << "a broken file is black";
    EXPECT_EQ(a.bytes, again.bytes);
}

TEST_F(Images, PngAndTiffArePlayedToo) {
    std::filesystem::create_directories(folder / "play");
    constexpr uint32_t width = 300, height = 100;  // smaller than the sensor: shown in the middle
    std::vector<uint8_t> colors(width * height * 3);
    for (size_t i = 0; i < colors.size(); ++i) colors[i] = static_cast<uint8_t>(i % 251);
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = width;
    png.height = height;
    png.format = PNG_FORMAT_RGB;
    ASSERT_TRUE(png_image_write_to_file(&png, (folder / "play" / "1.png").string().c_str(), 0, colors.data(), 0, nullptr));
    auto write_tiff = [&](const char* name, uint16_t samples, uint16_t bits, auto row_of_file) {
        TIFF* tiff = TIFFOpen((folder / "play" / name).string().c_str(), "w");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        for (uint32_t y = 0; y < height; ++y) TIFFWriteScanline(tiff, row_of_file(y), y, 0);
        TIFFClose(tiff);
    };
    std::vector<uint16_t> deep(width * height);
    for (size_t i = 0; i < deep.size(); ++i) deep[i] = static_cast<uint16_t>(i * 16);
    write_tiff("2.tif", 3, 8, [&](uint32_t y) { return &colors[size_t{y} * width * 3]; });
    write_tiff("3.TIFF", 1, 16, [&](uint32_t y) { return &deep[size_t{y} * width]; });

    config.image_folder = (folder / "play").string();
    config.color = true;
    Open();
    Set("PixelFormat", kRgb8);
    Set("AcquisitionStart", 1);
    const auto from_png = Take(), from_tiff = Take(), from_deep = Take();
    EXPECT_EQ(from_png.bytes, from_tiff.bytes);
    EXPECT_EQ(0U, from_png.Byte(0));
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const size_t shown = (size_t{y + 70} * 320 + x + 10) * 3, file = size_t{y} * width + x;
            for (size_t c = 0; c < 3; ++c) ASSERT_EQ(colors[file * 3 + c], from_png.Byte(shown + c)) << x << ", " << y;
            ASSERT_NEAR(deep[file] / 257.0, from_deep.Byte(shown), 1.01);
        }
    }
}

}  // namespace
}  // namespace kivsim
