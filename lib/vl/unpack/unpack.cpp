#include "unpack/unpack.h"

#include <algorithm>
#include <iterator>

namespace kiv::vl {
namespace {

using Reader = std::uint16_t (*)(const std::uint8_t* data, std::size_t component, unsigned bits);

std::uint16_t read_byte(const std::uint8_t* data, std::size_t i, unsigned) { return data[i]; }

std::uint16_t read_signed_byte(const std::uint8_t* data, std::size_t i, unsigned) { return data[i] ^ 0x80u; }

// What stands above the value should be 0; masked all the same, because everything behind counts on the range.
std::uint16_t read_word(const std::uint8_t* data, std::size_t i, unsigned bits) {
    const unsigned word = data[2 * i] | (data[2 * i + 1] << 8);
    return static_cast<std::uint16_t>(word & ((1u << bits) - 1));
}

// Takes the bytes one by one, since the last component of a buffer ends with its last byte.
std::uint16_t read_bits(const std::uint8_t* data, std::size_t i, unsigned bits) {
    const std::size_t bit = i * bits;
    const unsigned shift = bit & 7;
    std::uint32_t value = 0;
    for (unsigned got = 0; got < shift + bits; got += 8) value |= std::uint32_t{data[(bit + got) >> 3]} << got;
    return static_cast<std::uint16_t>((value >> shift) & ((1u << bits) - 1));
}

template <unsigned low_bits>
std::uint16_t read_pair(const std::uint8_t* data, std::size_t i, unsigned) {
    const std::uint8_t* group = data + i / 2 * 3;
    const bool second = i % 2 != 0;
    const unsigned high = second ? group[2] : group[0];
    const unsigned low = (second ? group[1] >> 4 : group[1]) & ((1u << low_bits) - 1);
    return static_cast<std::uint16_t>(high << low_bits | low);
}

std::uint16_t read_rgb10p32(const std::uint8_t* data, std::size_t i, unsigned) {
    const std::uint8_t* pixel = data + i / 3 * 4;
    return read_bits(pixel, i % 3, 10);
}

std::uint16_t read_rgb10v1(const std::uint8_t* data, std::size_t i, unsigned) {
    const std::uint8_t* pixel = data + i / 3 * 4;
    return static_cast<std::uint16_t>(pixel[1 + i % 3] << 2 | ((pixel[0] >> 2 * (i % 3)) & 3));
}

std::uint16_t read_565(const std::uint8_t* data, std::size_t i, unsigned) {
    const unsigned pixel = data[i / 3 * 2] | (data[i / 3 * 2 + 1] << 8);
    switch (i % 3) {
        case 0:
            return static_cast<std::uint16_t>((pixel & 31) * 255 / 31);
        case 1:
            return static_cast<std::uint16_t>((pixel >> 5 & 63) * 255 / 63);
        default:
            return static_cast<std::uint16_t>((pixel >> 11) * 255 / 31);
    }
}

template <Reader reader>
void read_all(const std::uint8_t* data, std::size_t first, std::size_t count, unsigned bits, std::uint16_t* out) {
    for (std::size_t i = 0; i < count; ++i) out[i] = reader(data, first + i, bits);
}

using Run = void (*)(const std::uint8_t* data, std::size_t first, std::size_t count, unsigned bits, std::uint16_t* out);

struct PackingRow {
    Packing packing;
    Run run;
};

constexpr PackingRow packings[] = {
    {Packing::Bytes, read_all<read_byte>},        {Packing::SignedBytes, read_all<read_signed_byte>},
    {Packing::Words, read_all<read_word>},        {Packing::BitStream, read_all<read_bits>},
    {Packing::Packed10, read_all<read_pair<2>>},  {Packing::Packed12, read_all<read_pair<4>>},
    {Packing::Rgb10p32, read_all<read_rgb10p32>}, {Packing::Rgb10V1, read_all<read_rgb10v1>},
    {Packing::P565, read_all<read_565>},
};

// The first component at or behind `first` that begins with a byte of its own, and that byte: where the fast versions can start.
struct Start {
    std::size_t component;
    std::size_t byte;
};

Start aligned_start(const PixelFormat& format, std::size_t first) {
    const bool pairs = format.packing == Packing::Packed10 || format.packing == Packing::Packed12;
    const std::size_t stored_bits = pairs ? 12 : format.bits;
    const std::size_t group = pairs || format.bits == 12 ? 2 : 4;
    const std::size_t component = (first + group - 1) / group * group;
    return {component, component * stored_bits / 8};
}

// Runs the fast version where it can, `plain(first, count, out)` before and behind.
template <class Fast, class Value, class Plain>
void unpack_mostly_fast(Fast fast, const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count,
                        Value* out, Plain plain) {
    if (fast == nullptr) return plain(first, count, out);
    const Start start = aligned_start(format, first);
    const std::size_t before = start.component - first;
    if (before >= count) return plain(first, count, out);
    plain(first, before, out);
    const std::size_t done = before + fast(data + start.byte, count - before, out + before);
    plain(first + done, count - done, out + done);
}

}  // namespace

void unpack_scalar(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count,
                   std::uint16_t* out) {
    for (const auto& row : packings)
        if (row.packing == format.packing) return row.run(data, first, count, format.bits, out);
}

void unpack(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count, std::uint16_t* out) {
    const auto fast = fast_unpackers(format.packing, format.bits).to_16;
    unpack_mostly_fast(fast, format, data, first, count, out, [&](std::size_t from, std::size_t number, std::uint16_t* to) {
        unpack_scalar(format, data, from, number, to);
    });
}

void unpack_to_8(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count, std::uint8_t* out) {
    const auto fast = fast_unpackers(format.packing, format.bits).to_8;
    unpack_mostly_fast(fast, format, data, first, count, out, [&](std::size_t from, std::size_t number, std::uint8_t* to) {
        std::uint16_t values[512];
        for (std::size_t done = 0; done < number;) {
            const std::size_t some = std::min(number - done, std::size(values));
            unpack(format, data, from + done, some, values);
            reduce_to_8(values, some, format.bits, to + done);
            done += some;
        }
    });
}

void spread_to_16(std::uint16_t* values, std::size_t count, unsigned bits) noexcept {
    if (bits == 16) return;
    if (bits < 8) {
        const unsigned step = 65535 / ((1u << bits) - 1);
        for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::uint16_t>(values[i] * step);
        return;
    }
    const unsigned up = 16 - bits;
    const unsigned down = 2 * bits - 16;
    for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<std::uint16_t>(values[i] << up | values[i] >> down);
}

void reduce_to_8(const std::uint16_t* values, std::size_t count, unsigned bits, std::uint8_t* out) noexcept {
    if (bits < 8) {
        const unsigned step = 255 / ((1u << bits) - 1);
        for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(values[i] * step);
        return;
    }
    const unsigned down = bits - 8;
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(values[i] >> down);
}

}  // namespace kiv::vl
