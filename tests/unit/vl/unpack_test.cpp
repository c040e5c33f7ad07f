#include "unpack/unpack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace kiv::vl {
namespace {

using Values = std::vector<std::uint16_t>;
using Bytes = std::vector<std::uint8_t>;

// On the heap and exactly as long as the data, so that the address sanitizer sees the first byte too many.
Values unpack_exactly(const PixelFormat& format, const Bytes& bytes, std::size_t first, std::size_t count) {
    const auto data = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), data.get());
    Values values(count);
    unpack(format, data.get(), first, count, values.data());
    return values;
}

TEST(Unpack, PutsEveryBitWhereTheLayoutHasIt) {
    const struct {
        std::uint32_t code;
        Bytes bytes;
        Values values;
    } cases[] = {
        {0x01080001, {0x00, 0x7F, 0xFF}, {0x00, 0x7F, 0xFF}},                                        // Mono8
        {0x01080002, {0x80, 0xFF, 0x00, 0x7F}, {0x00, 0x7F, 0x80, 0xFF}},                            // Mono8s
        {0x01100005, {0xBC, 0x0A, 0xBC, 0xFA}, {0xABC, 0xABC}},                                      // Mono12, dirty upper bits
        {0x01100007, {0xCD, 0xAB}, {0xABCD}},                                                        // Mono16
        {0x010C0047, {0xAB, 0xCD, 0xEF}, {0xDAB, 0xEFC}},                                            // Mono12p
        {0x010C0006, {0xAB, 0xCD, 0xEF}, {0xABD, 0xEFC}},                                            // Mono12Packed
        {0x010C0004, {0xAB, 0x21, 0xEF}, {0x2AD, 0x3BE}},                                            // Mono10Packed
        {0x010A0046, {0xFF, 0x03, 0xF0, 0x3F, 0x00}, {0x3FF, 0x000, 0x3FF, 0x000}},                  // Mono10p
        {0x010A0046, {0x01, 0x08, 0x30, 0x00, 0x01}, {0x001, 0x002, 0x003, 0x004}},                  // Mono10p
        {0x010E0104, {0xFF, 0x3F, 0x00, 0xF0, 0xFF, 0x03, 0x00}, {0x3FFF, 0x0000, 0x3FFF, 0x0000}},  // Mono14p
        {0x01010037, {0b1010'0110}, {0, 1, 1, 0, 0, 1, 0, 1}},                                       // Mono1p
        {0x01040039, {0x21, 0x43}, {1, 2, 3, 4}},                                                    // Mono4p
        {0x0220001D, {0x01, 0x08, 0x30, 0x00}, {0x001, 0x002, 0x003}},                               // RGB10p32
        {0x0220001C, {0b00'11'10'01, 0x80, 0x40, 0x20}, {0x201, 0x102, 0x083}},                      // RGB10V1Packed
        {0x02100035, {0x1F, 0x00, 0xE0, 0x07, 0x00, 0xF8}, {255, 0, 0, 0, 255, 0, 0, 0, 255}},       // RGB565p
        {0x02240034,                                                                                 // RGB12V1Packed
         {0x12, 0x63, 0x45, 0x78, 0xC9, 0xAB, 0xDE, 0x21, 0x34},
         {0x123, 0x456, 0x789, 0xABC, 0xDE1, 0x342}},
    };
    for (const auto& c : cases) {
        const auto& format = pixel_format(c.code);
        EXPECT_EQ(unpack_exactly(format, c.bytes, 0, c.values.size()), c.values) << format.name;
    }
}

// Writers by the definition of each packing: one component after the other, bit by bit.
void set_bit(Bytes& bytes, std::size_t bit, unsigned value) {
    bytes[bit / 8] |= static_cast<std::uint8_t>((value & 1) << bit % 8);
}

Bytes pack(const PixelFormat& format, const Values& values) {
    const bool pairs = format.packing != Packing::BitStream;
    Bytes bytes((values.size() * (pairs ? 12 : format.bits) + 7) / 8);
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (unsigned k = 0; k < format.bits; ++k) {
            const unsigned low_bits = format.bits - 8u;
            const std::size_t group = i / 2 * 24;
            const std::size_t low_place = group + 8 + i % 2 * 4 + k;
            const std::size_t high_place = group + i % 2 * 16 + (k - low_bits);
            const std::size_t bit = !pairs ? i * format.bits + k : k < low_bits ? low_place : high_place;
            set_bit(bytes, bit, values[i] >> k);
        }
    }
    return bytes;
}

// An odd last component of a pair needs its low bits from the shared byte: pack() must have made room for them.
std::size_t whole(const PixelFormat& format, std::size_t count) {
    return format.packing == Packing::BitStream ? count : count + count % 2;
}

TEST(Unpack, AgreesWithThePackingForAnyLengthAndStart) {
    std::mt19937 random(7);
    // Mono 10p, 12p, 14p, 1p, 2p, 4p, 10Packed, 12Packed.
    for (std::uint32_t code : {0x010A0046, 0x010C0047, 0x010E0104, 0x01010037, 0x01020038, 0x01040039, 0x010C0004, 0x010C0006}) {
        const auto& format = pixel_format(code);
        for (std::size_t count : {1, 2, 3, 15, 16, 17, 18, 19, 20, 21, 31, 32, 33, 34, 63, 100, 257}) {
            Values values(whole(format, count));
            for (auto& value : values) value = static_cast<std::uint16_t>(random() & ((1u << format.bits) - 1));
            const Bytes bytes = pack(format, values);
            for (std::size_t first = 0; first < std::min<std::size_t>(count, 9); ++first) {
                const Values wanted(values.begin() + static_cast<std::ptrdiff_t>(first),
                                    values.begin() + static_cast<std::ptrdiff_t>(count));
                ASSERT_EQ(unpack_exactly(format, bytes, first, count - first), wanted)
                    << format.name << ", " << count << " from " << first;
            }
        }
    }
}

TEST(Unpack, FastVersionsGiveWhatTheScalarOnesGive) {
    std::mt19937 random(11);
    Bytes bytes(3000);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    int compared = 0;
    for (std::uint32_t code : {0x010A0046, 0x010C0047, 0x010C0004, 0x010C0006}) {
        const auto& format = pixel_format(code);
        const auto fast = fast_unpackers(format.packing, format.bits);
        if (fast.to_16 == nullptr) continue;
        Values values(2000);
        Values wanted(2000);
        const std::size_t done = fast.to_16(bytes.data(), values.size(), values.data());
        ASSERT_GT(done, 1900u) << format.name;
        unpack_scalar(format, bytes.data(), 0, done, wanted.data());
        values.resize(done);
        wanted.resize(done);
        EXPECT_EQ(values, wanted) << format.name;
        Bytes small(2000);
        ASSERT_EQ(fast.to_8(bytes.data(), small.size(), small.data()), done) << format.name;
        for (std::size_t i = 0; i < done; ++i) ASSERT_EQ(small[i], wanted[i] >> (format.bits - 8)) << format.name << " at " << i;
        ++compared;
    }
    if (compared == 0) GTEST_SKIP() << "this processor has no vector version";
}

TEST(Range, SpreadsWhiteToWhiteAndKeepsTheUpperBits) {
    for (unsigned bits : {8u, 10u, 12u, 14u, 16u}) {
        const auto top = static_cast<std::uint16_t>((1u << bits) - 1);
        Values values = {0, 1, static_cast<std::uint16_t>(top / 3), top};
        const Values stored = values;
        spread_to_16(values.data(), values.size(), bits);
        EXPECT_EQ(values[0], 0);
        EXPECT_EQ(values[3], 0xFFFF);
        for (std::size_t i = 0; i < values.size(); ++i) EXPECT_EQ(values[i] >> (16 - bits), stored[i]) << bits;
    }
    std::uint8_t small[3];
    const std::uint16_t four_bits[] = {0, 7, 15};
    reduce_to_8(four_bits, 3, 4, small);
    EXPECT_THAT(small, testing::ElementsAre(0, 119, 255));
    const std::uint16_t twelve_bits[] = {0x00F, 0x010, 0xFFF};
    reduce_to_8(twelve_bits, 3, 12, small);
    EXPECT_THAT(small, testing::ElementsAre(0, 1, 255));
}

}  // namespace
}  // namespace kiv::vl
