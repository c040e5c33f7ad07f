// What can be done with images once they are there: pixels, tables, histograms, geometry, exposures, chains.
#include <VL.h>
#include <gmock/gmock.h>
#include <kiv/platform/text.h>

#include <cmath>
#include <functional>

#include "scratch.h"

namespace kiv::vl::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Rgb = std::array<std::uint16_t, 3>;

Rgb pixel(VL_IMAGE_HANDLE image, std::uint32_t x, std::uint32_t y) {
    Rgb rgb{};
    EXPECT_EQ(vlGetPixel(image, x, y, &rgb[0], &rgb[1], &rgb[2]), VL_ST_SUCCESS) << vlGetLastErrorText();
    return rgb;
}

class OwnedLut {
public:
    OwnedLut(std::uint32_t in, std::uint32_t out, std::uint32_t channels) {
        EXPECT_EQ(vlMallocLUT(in, out, channels, &handle_), VL_ST_SUCCESS);
    }
    ~OwnedLut() { vlFreeLUT(handle_); }
    OwnedLut(const OwnedLut&) = delete;
    OwnedLut& operator=(const OwnedLut&) = delete;
    operator VL_LUT_HANDLE() const { return handle_; }
    std::uint32_t At(std::uint32_t index, std::int32_t channel = VL_CHANNEL_RED) const {
        std::uint32_t value = 0;
        EXPECT_EQ(vlGetLUTValue(handle_, channel, index, &value), VL_ST_SUCCESS) << vlGetLastErrorText();
        return value;
    }

private:
    VL_LUT_HANDLE handle_ = nullptr;
};

TEST(Pixels, AreReadAndWrittenInTheSixteenBitScale) {
    const struct {
        std::uint64_t type;
        Rgb written, read;
    } cases[] = {
        {VL_IMAGE_BGR8, {0x12FF, 0x3400, 0xFFFF}, {0x1212, 0x3434, 0xFFFF}},
        {VL_IMAGE_BGRA8, {0x12FF, 0x3400, 0xFFFF}, {0x1212, 0x3434, 0xFFFF}},
        {VL_IMAGE_BGR16, {0x12FF, 0x3400, 0xFFFF}, {0x12FF, 0x3400, 0xFFFF}},
        {VL_IMAGE_MONO8, {0xFFFF, 0, 0}, {76 * 257, 76 * 257, 76 * 257}},
        {VL_IMAGE_MONO16, {0, 0xFFFF, 0}, {38469, 38469, 38469}},
    };
    for (const auto& c : cases) {
        const OwnedImage image(3, 2, c.type);
        ASSERT_EQ(vlSetPixel(image, 2, 1, c.written[0], c.written[1], c.written[2]), VL_ST_SUCCESS);
        EXPECT_EQ(pixel(image, 2, 1), c.read) << std::hex << c.type;
        EXPECT_EQ(pixel(image, 1, 1), (Rgb{0, 0, 0}));
        Rgb mean{};
        ASSERT_EQ(vlGetAverage(image, 1, 0, 3, 2, &mean[0], &mean[1], &mean[2]), VL_ST_SUCCESS);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(mean[i], (c.read[i] + 2) / 4);
        std::uint16_t none = 0;
        EXPECT_EQ(vlGetPixel(image, 3, 0, &none, &none, &none), VL_ST_INVALID_PARAMETER);
        EXPECT_EQ(vlSetPixel(image, 0, 2, 1, 1, 1), VL_ST_INVALID_PARAMETER);
        for (const auto& [l, t, r, b] : {std::array{0u, 0u, 4u, 1u}, {1u, 0u, 1u, 2u}, {0u, 2u, 3u, 1u}, {0u, 0u, 3u, 3u}})
            EXPECT_EQ(vlGetAverage(image, l, t, r, b, &none, &none, &none), VL_ST_INVALID_PARAMETER);
    }
}

TEST(Pixels, OfRawBuffersAreAsTheCameraStoredThem) {
    Bytes mono12p = {0xBC, 0x3A, 0x12, 0xFF, 0xFF, 0xFF};
    Bytes uyvy = {10, 20, 30, 40};
    Bytes planes = {1, 2, 3, 4, 5, 6};
    const struct {
        std::uint64_t code;
        std::uint32_t height, x, y;
        Bytes& data;
        std::vector<std::uint16_t> wanted;
    } cases[] = {{0x010C0047, 2, 1, 0, mono12p, {0x123}},
                 {0x0210001F, 1, 1, 0, uyvy, {40, 10, 30}},
                 {0x02180021, 1, 1, 0, planes, {2, 4, 6}}};
    for (const auto& c : cases) {
        const auto raw = record(c.code, 2, c.height, c.data);
        std::vector<std::uint16_t> values(4);
        std::uint32_t count = 0;
        ASSERT_EQ(vlGetPixelEx(&raw, c.x, c.y, values.data(), &count), VL_ST_SUCCESS) << vlGetLastErrorText();
        values.resize(count);
        EXPECT_EQ(values, c.wanted);
        EXPECT_EQ(vlGetPixelEx(&raw, 2, 0, values.data(), &count), VL_ST_INVALID_PARAMETER);
    }
}

TEST(Luts, FollowTheirCurves) {
    const OwnedLut lut(8, 12, 3);
    EXPECT_EQ(lut.At(0), 0u);
    EXPECT_EQ(lut.At(255), 4095u);
    ASSERT_EQ(vlCreateGammaLUT(lut, 0.5), VL_ST_SUCCESS);
    EXPECT_EQ(lut.At(64), static_cast<std::uint32_t>(std::lround(std::sqrt(64 / 255.0) * 4095)));
    ASSERT_EQ(vlApplyGammaToLUT(lut, 2), VL_ST_SUCCESS);
    EXPECT_NEAR(lut.At(64), 64 / 255.0 * 4095, 2);
    ASSERT_EQ(vlCreateLinearLUT(lut, -2, 1.5), VL_ST_SUCCESS);
    EXPECT_EQ(lut.At(0), 4095u);
    EXPECT_EQ(lut.At(255), 0u);
    EXPECT_EQ(lut.At(102), static_cast<std::uint32_t>(std::lround(0.7 * 4095)));
    const VL_KNEE_POINT knees[] = {{0.2, 0.6}, {0.4, 0.8}};
    ASSERT_EQ(vlCreateKneeLUT(lut, knees, 2), VL_ST_SUCCESS);
    EXPECT_EQ(lut.At(0), 0u);
    EXPECT_EQ(lut.At(51), static_cast<std::uint32_t>(std::lround(0.6 * 4095)));
    EXPECT_NEAR(lut.At(76), (0.6 + (76 / 255.0 - 0.2)) * 4095, 1);
    EXPECT_EQ(lut.At(255), 4095u);

    ASSERT_EQ(vlSetLUTValue(lut, VL_CHANNEL_BLUE, 7, 9), VL_ST_SUCCESS);
    EXPECT_EQ(lut.At(7, VL_CHANNEL_BLUE), 9u);
    EXPECT_NE(lut.At(7, VL_CHANNEL_RED), 9u);
    const OwnedLut narrow(8, 8, 1);
    ASSERT_EQ(vlCreateLinearLUT(lut, 0.5, 0), VL_ST_SUCCESS);
    ASSERT_EQ(vlConvertLUT(lut, narrow), VL_ST_SUCCESS);
    EXPECT_EQ(narrow.At(200), 100u);

    std::uint32_t value = 0;
    VL_LUT_HANDLE none = nullptr;
    const VL_KNEE_POINT back[] = {{0.5, 0.1}, {0.4, 0.2}};
    const VL_KNEE_POINT outside[] = {{0.5, 1.1}};
    const VL_STATUS refused[] = {
        vlMallocLUT(7, 8, 1, &none),      vlMallocLUT(8, 17, 1, &none),        vlMallocLUT(8, 8, 2, &none),
        vlCreateGammaLUT(lut, 0),         vlCreateGammaLUT(lut, std::nan("")), vlCreateLinearLUT(lut, INFINITY, 0),
        vlCreateKneeLUT(lut, back, 2),    vlCreateKneeLUT(lut, outside, 1),    vlCreateKneeLUT(lut, knees, 0),
        vlGetLUTValue(lut, 3, 0, &value), vlGetLUTValue(lut, 0, 256, &value),  vlSetLUTValue(lut, 0, 0, 4096),
        vlSetLUTValue(lut, 0, 256, 1),    vlCreateKneeLUT(lut, nullptr, 1),
    };
    for (std::size_t i = 0; i < std::size(refused); ++i) EXPECT_EQ(refused[i], VL_ST_INVALID_PARAMETER) << "case " << i;
    EXPECT_EQ(vlFreeLUT(nullptr), VL_ST_INVALID_HANDLE);
}

TEST(Luts, WorkOnEveryDepthAndChannel) {
    const OwnedLut lut(8, 16, 3);
    ASSERT_EQ(vlCreateLinearLUT(lut, -1, 1), VL_ST_SUCCESS);
    ASSERT_EQ(vlSetLUTValue(lut, VL_CHANNEL_RED, 30, 0xABCD), VL_ST_SUCCESS);
    OwnedImage bgr(1, 1, VL_IMAGE_BGR8);
    bgr.Fill({10, 20, 30});
    const OwnedImage deep(1, 1, VL_IMAGE_BGR16), grey(1, 1, VL_IMAGE_MONO8);
    ASSERT_EQ(vlLUT(bgr, lut, deep), VL_ST_SUCCESS);
    EXPECT_EQ(pixel(deep, 0, 0), (Rgb{0xABCD, 235 * 257, 245 * 257}));
    ASSERT_EQ(vlLUT(bgr, lut, bgr), VL_ST_SUCCESS);
    EXPECT_EQ(bgr.Data(), (Bytes{245, 235, 0xAB}));
    ASSERT_EQ(vlLUT(deep, lut, bgr), VL_ST_SUCCESS);
    EXPECT_EQ(bgr.Data(), (Bytes{10, 20, 255 - 0xAB}));
    EXPECT_EQ(vlLUT(bgr, lut, grey), VL_ST_INVALID_PARAMETER);
}

TEST(Luts, AreKeptInTextFiles) {
    const ScratchFolder folder;
    const std::string path = folder / "Kurve ü.lut";
    const std::wstring wide_path = std::filesystem::path(folder / "Kurve ").wstring() + L"\u00fc.lut";
    const OwnedLut lut(8, 10, 3);
    ASSERT_EQ(vlCreateGammaLUT(lut, 0.45), VL_ST_SUCCESS);
    ASSERT_EQ(vlSetLUTValue(lut, VL_CHANNEL_GREEN, 3, 1023), VL_ST_SUCCESS);
    ASSERT_EQ(vlSaveLUTA(lut, kiv::platform::local_from_utf8(path).c_str()), VL_ST_SUCCESS) << vlGetLastErrorText();
    VL_LUT_HANDLE loaded = nullptr;
    ASSERT_EQ(vlLoadLUTW(wide_path.c_str(), &loaded), VL_ST_SUCCESS) << vlGetLastErrorText();
    for (std::uint32_t i = 0; i < 256; ++i)
        for (std::int32_t c : {0, 1, 2}) {
            std::uint32_t value = 0;
            ASSERT_EQ(vlGetLUTValue(loaded, c, i, &value), VL_ST_SUCCESS);
            ASSERT_EQ(value, lut.At(i, c));
        }
    vlFreeLUT(loaded);

    std::string good = "VL-LUT 1\nbits 8 8\nchannels 1\n";
    for (int i = 0; i < 256; ++i) good += std::to_string(i) + "\n";
    const auto status_of = [&](const std::string& text) {
        write_file(path, Bytes(text.begin(), text.end()));
        VL_LUT_HANDLE handle = nullptr;
        const VL_STATUS status = vlLoadLUTA(path.c_str(), &handle);
        if (status == VL_ST_SUCCESS) vlFreeLUT(handle);
        return status;
    };
    const auto changed = [&](const char* from, const char* to) {
        std::string text = good;
        return text.replace(text.find(from), std::strlen(from), to);
    };
    EXPECT_EQ(status_of(good), VL_ST_SUCCESS);
    EXPECT_EQ(status_of(changed("channels", "# a remark\n\n\tchannels ")), VL_ST_SUCCESS);
    for (const auto& bad :
         {std::string(), good.substr(0, good.size() - 4), good + "0\n", changed("LUT 1", "LUT 2"), changed("8 8", "8 18"),
          changed("channels 1", "channels 2"), changed("channels 1", "channels 3"), changed("\n77\n", "\n256\n"),
          changed("\n77\n", "\n-7\n"), changed("\n77\n", "\n7x\n"), changed("\n77\n", "\n7 7\n")})
        EXPECT_EQ(status_of(bad), VL_ST_INVALID_DATA) << bad.substr(0, 40);
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("line 81"));
    VL_LUT_HANDLE handle = nullptr;
    EXPECT_EQ(vlLoadLUTA((folder / "missing").c_str(), &handle), VL_ST_IO);
}

TEST(Histograms, CountByTheUpperBitsAndAddUp) {
    VL_HISTOGRAM_HANDLE histogram = nullptr;
    ASSERT_EQ(vlMallocHistogram(4, &histogram), VL_ST_SUCCESS);
    const auto count = [&](std::int32_t channel, std::uint32_t bin) {
        std::uint64_t value = 99;
        EXPECT_EQ(vlGetHistogramValue(histogram, channel, bin, &value), VL_ST_SUCCESS);
        return value;
    };
    OwnedImage bgr(2, 1, VL_IMAGE_BGR8), grey(1, 1, VL_IMAGE_MONO16);
    bgr.Fill({0x10, 0x1F, 0xF0, 0x10, 0x20, 0xFF});
    grey.Fill({0xFF, 0xFF});
    ASSERT_EQ(vlCreateHistogram(histogram, bgr), VL_ST_SUCCESS);
    ASSERT_EQ(vlCreateHistogram(histogram, grey), VL_ST_SUCCESS);
    EXPECT_EQ(count(VL_CHANNEL_RED, 15), 3u);
    EXPECT_EQ(count(VL_CHANNEL_GREEN, 1), 1u);
    EXPECT_EQ(count(VL_CHANNEL_GREEN, 2), 1u);
    EXPECT_EQ(count(VL_CHANNEL_BLUE, 1), 2u);
    EXPECT_EQ(count(VL_CHANNEL_ALL, 15), 5u);
    ASSERT_EQ(vlClearHistogram(histogram), VL_ST_SUCCESS);
    EXPECT_EQ(count(VL_CHANNEL_ALL, 15), 0u);
    std::uint64_t value = 0;
    EXPECT_EQ(vlGetHistogramValue(histogram, 0, 16, &value), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlGetHistogramValue(histogram, 3, 0, &value), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlFreeHistogram(histogram), VL_ST_SUCCESS);
    EXPECT_EQ(vlClearHistogram(histogram), VL_ST_INVALID_HANDLE);
    for (std::uint32_t bits : {0u, 17u}) EXPECT_EQ(vlMallocHistogram(bits, &histogram), VL_ST_INVALID_PARAMETER);
}

TEST(Geometry, MovesPixelsExactly) {
    OwnedImage image(3, 2, VL_IMAGE_MONO8), same(3, 2, VL_IMAGE_MONO8), turned(2, 3, VL_IMAGE_MONO8);
    image.Fill({1, 2, 3, 4, 5, 6});
    const struct {
        VL_FLIP flip;
        Bytes wanted;
    } flips[] = {
        {VL_FLIP_HORIZONTAL, {3, 2, 1, 6, 5, 4}}, {VL_FLIP_VERTICAL, {4, 5, 6, 1, 2, 3}}, {VL_FLIP_BOTH, {6, 5, 4, 3, 2, 1}}};
    for (const auto& c : flips) {
        ASSERT_EQ(vlFlip(image, same, c.flip), VL_ST_SUCCESS);
        EXPECT_EQ(same.Data(), c.wanted);
    }
    ASSERT_EQ(vlFlip(same, same, VL_FLIP_BOTH), VL_ST_SUCCESS);
    EXPECT_EQ(same.Data(), image.Data());
    const struct {
        double degrees;
        OwnedImage& target;
        Bytes wanted;
    } turns[] = {{90, turned, {4, 1, 5, 2, 6, 3}},
                 {-90, turned, {3, 6, 2, 5, 1, 4}},
                 {630, turned, {3, 6, 2, 5, 1, 4}},
                 {180, same, {6, 5, 4, 3, 2, 1}},
                 {720, same, {1, 2, 3, 4, 5, 6}}};
    for (const auto& c : turns) {
        ASSERT_EQ(vlRotate(image, c.target, c.degrees), VL_ST_SUCCESS);
        EXPECT_EQ(c.target.Data(), c.wanted) << c.degrees;
    }
    const OwnedImage other(3, 2, VL_IMAGE_MONO16);
    EXPECT_EQ(vlFlip(image, other, VL_FLIP_BOTH), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlFlip(image, turned, VL_FLIP_BOTH), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlFlip(image, same, 3), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlRotate(image, image, 90), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlRotate(image, same, NAN), VL_ST_INVALID_PARAMETER);
}

// A bright spot right of the middle comes below it when it is turned clockwise, wherever the angle.
TEST(Geometry, TurnsClockwiseAroundTheMiddle) {
    const OwnedImage image(41, 41, VL_IMAGE_MONO8);
    for (std::uint32_t y = 18; y < 23; ++y)
        for (std::uint32_t x = 33; x < 38; ++x) vlSetPixel(image, x, y, 0xFFFF, 0xFFFF, 0xFFFF);
    for (double degrees : {30.0, 45.0, 90.0, 200.5}) {
        std::uint32_t width = 0, height = 0;
        ASSERT_EQ(vlGetRotatedSize(image, degrees, &width, &height), VL_ST_SUCCESS);
        width += width % 2 == 0;
        height += height % 2 == 0;
        const OwnedImage target(width, height, VL_IMAGE_MONO8);
        ASSERT_EQ(vlRotate(image, target, degrees), VL_ST_SUCCESS);
        const double angle = degrees * std::acos(-1.0) / 180;
        const auto x = static_cast<std::uint32_t>(std::lround(width / 2 + 15 * std::cos(angle)));
        const auto y = static_cast<std::uint32_t>(std::lround(height / 2 + 15 * std::sin(angle)));
        EXPECT_GT(pixel(target, x, y)[0], 0xF000) << degrees;
        EXPECT_EQ(pixel(target, 0, 0)[0], 0) << degrees;
    }
}

/// Four bands, each brighter than the one before, with a pattern of blocks in each. 1 is white at an exposure of 1.
double light_at(std::uint32_t x, std::uint32_t y) {
    constexpr double bands[] = {0.1, 0.8, 0.9, 3.2};
    const std::uint32_t block = (x / 4 * 73856093u) ^ (y / 4 * 19349663u);
    return bands[x / 64 % 4] * (0.75 + (block * 2654435761u >> 28) / 30.0);
}

void expose(const OwnedImage& image, double exposure, std::uint32_t shift = 0) {
    const auto info = image.Info();
    for (std::uint32_t y = 0; y < info.height; ++y)
        for (std::uint32_t x = 0; x < info.width; ++x) {
            const double light = light_at((x + shift) % info.width, y) * exposure;
            const auto value = static_cast<std::uint16_t>(std::min(light, 1.0) * 65535);
            vlSetPixel(image, x, y, value, value, value);
        }
}

/// How much a band of an image differs within itself, in the 16-bit scale.
int contrast(VL_IMAGE_HANDLE image, std::uint32_t band) {
    int darkest = 65535, brightest = 0;
    for (std::uint32_t y = 24; y < 56; ++y)
        for (std::uint32_t x = 64 * band + 24; x < 64 * band + 40; ++x) {
            darkest = std::min<int>(darkest, pixel(image, x, y)[1]);
            brightest = std::max<int>(brightest, pixel(image, x, y)[1]);
        }
    return brightest - darkest;
}

TEST(Exposures, AreAnalysedAndCombined) {
    for (std::uint64_t type : {VL_IMAGE_MONO8, VL_IMAGE_MONO16, VL_IMAGE_BGR8, VL_IMAGE_BGR16}) {
        const OwnedImage once(256, 80, type), half(256, 80, type), eighth(256, 80, type);
        expose(once, 1);
        expose(half, 0.5);
        expose(eighth, 0.125);
        const VL_IMAGE_HANDLE series[] = {once, half, eighth};
        VL_HDR_EXPOSURE found[3];
        ASSERT_EQ(vlHDRAnalyzeImages(series, 3, found), VL_ST_SUCCESS) << vlGetLastErrorText();
        EXPECT_EQ(found[0].exposure, 1);
        EXPECT_NEAR(found[1].exposure, 0.5, 0.03);
        EXPECT_NEAR(found[2].exposure, 0.125, 0.01);
        int white = 0;
        for (std::uint32_t y = 0; y < 80; ++y)
            for (std::uint32_t x = 0; x < 256; ++x) white += light_at(x, y) > 63.0 / 64;
        EXPECT_NEAR(found[0].too_bright, white / (256.0 * 80), 0.01);
        EXPECT_EQ(found[2].too_bright, 0);
        EXPECT_EQ(found[1].shift_x, 0);
        EXPECT_EQ(found[1].shift_y, 0);
        EXPECT_EQ(contrast(once, 3), 0) << "a band that one exposure alone cannot show";
        for (std::uint32_t bits : {8u, 16u}) {
            OwnedImage result;
            ASSERT_EQ(vlMallocHDR(once, bits, result.Out()), VL_ST_SUCCESS);
            const double times[] = {1, 0.5, 0.125};
            for (const double* exposures : {times, static_cast<const double*>(nullptr)}) {
                ASSERT_EQ(vlCombineImagesHDR(series, 3, exposures, VL_HDR_LINEAR, result), VL_ST_SUCCESS) << vlGetLastErrorText();
                for (std::uint32_t x = 2; x < 256; x += 16)
                    EXPECT_NEAR(pixel(result, x, 30)[1] / 65535.0, light_at(x, 30) / 4, 0.03) << x << " " << bits;
            }
            ASSERT_EQ(vlCombineImagesHDR(series, 3, nullptr, VL_HDR_FUSION, result), VL_ST_SUCCESS) << vlGetLastErrorText();
            for (std::uint32_t band : {0u, 1u, 2u, 3u}) EXPECT_GT(contrast(result, band), 1000) << band;
        }
        expose(half, 0.5, 5);
        ASSERT_EQ(vlHDRAnalyzeImages(series, 2, found), VL_ST_SUCCESS) << vlGetLastErrorText();
        EXPECT_EQ(found[1].shift_x, 5);
        const OwnedImage small(16, 16, type);
        const VL_IMAGE_HANDLE uneven[] = {once, small};
        const double zero[] = {1, 0, 1};
        EXPECT_EQ(vlHDRAnalyzeImages(series, 1, found), VL_ST_INVALID_PARAMETER);
        EXPECT_EQ(vlHDRAnalyzeImages(uneven, 2, found), VL_ST_INVALID_PARAMETER);
        EXPECT_EQ(vlCombineImagesHDR(series, 3, zero, VL_HDR_LINEAR, half), VL_ST_INVALID_PARAMETER);
        EXPECT_EQ(vlCombineImagesHDR(series, 3, nullptr, 2, half), VL_ST_INVALID_PARAMETER);
    }
}

TEST(Chains, DoOneOperationAfterTheOther) {
    const struct {
        const char* operations;
        Bytes wanted;
    } cases[] = {
        {"", {0, 50, 100, 200}},
        {"invert", {255, 205, 155, 55}},
        {"flip horizontal; invert  # and back\ninvert", {50, 0, 200, 100}},
        {"rotate 180", {200, 100, 50, 0}},
        {"gain 2;offset -0.2", {0, 49, 149, 204}},
        {"linear 2, 0", {0, 100, 200, 255}},
        {"knee 0.5 1", {0, 100, 200, 255}},
        {"offset -0.2; stretch", {0, 0, 84, 255}},
        {"threshold 0.3", {0, 0, 255, 255}},
        {"colour; mono; depth 16; depth 8", {0, 50, 100, 200}},
        {"crop 1 0 1 2; scale 2 2", {50, 50, 200, 200}},
        {"gamma 1; whitebalance; scale 1; sharpen 0", {0, 50, 100, 200}},
    };
    for (const auto& c : cases) {
        OwnedImage image(2, 2, VL_IMAGE_MONO8);
        image.Fill({0, 50, 100, 200});
        ASSERT_EQ(vlImageProcessing(image, c.operations, image), VL_ST_SUCCESS) << c.operations << ": " << vlGetLastErrorText();
        EXPECT_EQ(image.Data(), c.wanted) << c.operations;
    }
    Bytes data(64 * 48);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i / 64 % 2 == i % 2 ? 100 : 50);
    const auto raw = record(0x01080009, 64, 48, data);
    OwnedImage image;
    ASSERT_EQ(
        vlImageProcessingEx(&raw, "demosaic best; whitebalance; rotate 90; blur 1.5; median 3; equalize; scale 0.5", image.Out()),
        VL_ST_SUCCESS)
        << vlGetLastErrorText();
    EXPECT_EQ(image.Info().width, 24u);
    EXPECT_EQ(image.Info().height, 32u);
    EXPECT_EQ(image.Info().pixel_type, VL_IMAGE_BGR8);
}

TEST(Chains, RefuseWhatTheyDoNotKnowAndChangeNothing) {
    OwnedImage image(2, 2, VL_IMAGE_MONO8);
    image.Fill({0, 50, 100, 200});
    for (const char* bad : {"invert; sparkle", "gamma", "gamma 0", "gamma x", "gamma 1 2", "gain 1 2", "flip up",
                            "rotate 90; crop 1 1 2 2", "crop 0 0 0 1", "scale 0", "scale 65536 1", "median 4", "blur 1e9",
                            "invert; lut \"missing", "knee 0.5", "depth 12", "offset 2", "gamma 1,5,", "invert; scale 2"}) {
        EXPECT_EQ(vlImageProcessing(image, bad, image), VL_ST_INVALID_PARAMETER) << bad;
        EXPECT_EQ(image.Data(), (Bytes{0, 50, 100, 200})) << bad;
    }
    EXPECT_EQ(vlImageProcessing(image, "sparkle", image), VL_ST_INVALID_PARAMETER);
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("\"sparkle\""));
    EXPECT_EQ(vlImageProcessing(image, "invert; lut /no/such.lut", image), VL_ST_IO);
    EXPECT_EQ(vlImageProcessing(image, nullptr, image), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlImageProcessing(image, std::string(100'000, ';').c_str(), image), VL_ST_INVALID_PARAMETER);
}

TEST(Parallel, GivesWhatOneThreadGives) {
    Bytes data(1000 * 701);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i * i >> 7);
    const auto raw = record(0x01080008, 1000, 701, data);
    for (VL_DEMOSAIC quality : {VL_DEMOSAIC_BILINEAR, VL_DEMOSAIC_EDGE_AWARE, VL_DEMOSAIC_BEST}) {
        const OwnedImage alone(1000, 701, VL_IMAGE_BGR8), together(1000, 701, VL_IMAGE_BGR8);
        ASSERT_EQ(vlEnableParallelProcessing(0), VL_ST_SUCCESS);
        ASSERT_EQ(vlFromRAWtoImageEx(&raw, alone, quality, 5000, 4096, 3000, -500, nullptr), VL_ST_SUCCESS);
        ASSERT_EQ(vlEnableParallelProcessing(1), VL_ST_SUCCESS);
        ASSERT_EQ(vlFromRAWtoImageEx(&raw, together, quality, 5000, 4096, 3000, -500, nullptr), VL_ST_SUCCESS);
        EXPECT_TRUE(alone.Data() == together.Data()) << quality;
    }
    EXPECT_EQ(vlEnableParallelProcessing(2), VL_ST_INVALID_PARAMETER);
}

}  // namespace
}  // namespace kiv::vl::test
