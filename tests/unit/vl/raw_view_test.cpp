#include "format/raw_view.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/error.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t mono8 = 0x01080001;
constexpr std::uint32_t mono10p = 0x010A0046;
constexpr std::uint32_t mono12p = 0x010C0047;
constexpr std::uint32_t bayer_rg8 = 0x01080009;
constexpr std::uint32_t rgb8_planar = 0x02180021;
constexpr std::uint32_t yuv411 = 0x020C001E;

VL_STATUS status_of(std::uint64_t code, std::uint32_t width, std::uint32_t height, std::uint64_t padding, std::uint64_t size) {
    try {
        const std::uint8_t unread = 0;
        RawView(pixel_format(code), width, height, padding, &unread, size);
        return VL_ST_SUCCESS;
    } catch (const Error& error) {
        return error.Status();
    }
}

TEST(RawView, KnowsHowManyBytesAnImageTakes) {
    const struct {
        std::uint32_t code, width, height;
        std::uint64_t padding, bytes;
    } cases[] = {
        {mono8, 4, 3, 0, 12},   {bayer_rg8, 5, 2, 3, 13},  // the last line needs no padding
        {mono12p, 4, 3, 0, 18}, {mono12p, 3, 2, 0, 10},    // 36 bits: lines end on whole bytes
        {mono10p, 4, 2, 1, 11}, {rgb8_planar, 4, 2, 0, 24}, {rgb8_planar, 4, 2, 1, 29}, {yuv411, 8, 2, 0, 24},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(status_of(c.code, c.width, c.height, c.padding, c.bytes), VL_ST_SUCCESS) << std::hex << c.code;
        const std::uint8_t unread = 0;
        const RawView view(pixel_format(c.code), c.width, c.height, c.padding, &unread, c.bytes + 100);
        EXPECT_EQ(view.ImageBytes(), c.bytes) << std::hex << c.code;
    }
}

TEST(RawView, RefusesWhatDoesNotFit) {
    EXPECT_EQ(status_of(mono8, 4, 3, 0, 11), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(status_of(mono8, 4, 3, 1, 13), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(status_of(mono12p, 4, 3, 0, 17), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(status_of(mono8, 0, 3, 0, 100), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(status_of(mono8, 4, 0, 0, 100), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(status_of(yuv411, 6, 2, 0, 100), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(status_of(mono8, 0xFFFFFFFF, 0xFFFFFFFF, 0, 1), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(status_of(mono8, 4, 3, ~0ull, 100), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(status_of(mono8, 65535, 65535, 0xFFFFFFF, 0xFFFFFFFF), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(status_of(0x12345678, 4, 3, 0, 100), VL_ST_NOT_IMPLEMENTED);
    EXPECT_EQ(status_of(0x1'0000'0000ull + mono8, 4, 3, 0, 100), VL_ST_NOT_IMPLEMENTED);
}

// 3 pixels of 12 bits are 36 bits. With line ends on whole bytes two lines take 10 bytes, as one run of bits 9.
TEST(RawView, ReadsLinesThatBeginInsideAByteWhenTheBufferLeavesNoOtherReading) {
    const std::vector<std::uint8_t> run = {0x01, 0x20, 0x00, 0x03, 0x40, 0x00, 0x05, 0x60, 0x00};
    const std::vector<std::uint8_t> lines = {0x01, 0x20, 0x00, 0x03, 0x00, 0x04, 0x50, 0x00, 0x06, 0x00};
    for (const auto* bytes : {&run, &lines}) {
        const RawView view(pixel_format(mono12p), 3, 2, 0, bytes->data(), bytes->size());
        EXPECT_EQ(view.IsLineAligned(), bytes == &lines);
        std::vector<std::uint16_t> values(6);
        view.ReadLine(0, 0, values.data());
        view.ReadLine(1, 0, values.data() + 3);
        EXPECT_EQ(values, (std::vector<std::uint16_t>{1, 2, 3, 4, 5, 6}));
    }
}

TEST(RawView, StepsOverThePaddingOfLinesAndPlanes) {
    const std::vector<std::uint8_t> bytes = {1, 2, 0xEE, 3, 4, 0xEE, 5, 6, 0xEE, 7, 8, 0xEE, 9, 10, 0xEE, 11, 12};
    const RawView view(pixel_format(rgb8_planar), 2, 2, 1, bytes.data(), bytes.size());
    std::vector<std::uint16_t> blue(2);
    view.ReadLine(1, 2, blue.data());
    EXPECT_EQ(blue, (std::vector<std::uint16_t>{11, 12}));
}

}  // namespace
}  // namespace kiv::vl
