#include "pixel_format.h"

#include <algorithm>
#include <cstring>

namespace kivsim {
namespace {

constexpr PixelFormatRow kFormats[] = {
    {"Mono8", 0x01080001, Samples::Mono, Packing::Plain8, true, true},
    {"Mono10", 0x01100003, Samples::Mono, Packing::Plain10, true, false},
    {"Mono10p", 0x010A0046, Samples::Mono, Packing::Packed10p, true, false},
    {"Mono12", 0x01100005, Samples::Mono, Packing::Plain12, true, true},
    {"Mono12p", 0x010C0047, Samples::Mono, Packing::Packed12p, true, false},
    {"Mono16", 0x01100007, Samples::Mono, Packing::Plain16, true, false},
    {"BayerRG8", 0x01080009, Samples::Bayer, Packing::Plain8, false, true},
    {"BayerRG10", 0x0110000D, Samples::Bayer, Packing::Plain10, false, true},
    {"BayerRG10p", 0x010A0058, Samples::Bayer, Packing::Packed10p, false, true},
    {"BayerRG12", 0x01100011, Samples::Bayer, Packing::Plain12, false, true},
    {"BayerRG12p", 0x010C0059, Samples::Bayer, Packing::Packed12p, false, true},
    {"RGB8", 0x02180014, Samples::Rgb, Packing::Plain8, false, true},
    {"BGR8", 0x02180015, Samples::Rgb, Packing::Bgr8, false, true},
    {"YUV422_8", 0x02100032, Samples::Rgb, Packing::Yuv422, false, true},
};

uint8_t* bytes_of(std::byte* out) { return reinterpret_cast<uint8_t*>(out); }

void write_8(std::span<const uint16_t> samples, uint8_t* out) {
    for (size_t i = 0; i < samples.size(); ++i) out[i] = static_cast<uint8_t>(samples[i] >> 4);
}

template <int Right, int Left>
void write_16(std::span<const uint16_t> samples, uint8_t* out) {
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto value = static_cast<uint16_t>(samples[i] >> Right << Left);
        out[2 * i] = static_cast<uint8_t>(value);
        out[2 * i + 1] = static_cast<uint8_t>(value >> 8);
    }
}

// four samples in five bytes, the first in the lowest bits
void write_10p(std::span<const uint16_t> samples, uint8_t* out) {
    for (size_t i = 0; i + 3 < samples.size(); i += 4, out += 5) {
        uint64_t bits = 0;
        for (size_t k = 0; k < 4; ++k) bits |= static_cast<uint64_t>(samples[i + k] >> 2) << (10 * k);
        for (int k = 0; k < 5; ++k) out[k] = static_cast<uint8_t>(bits >> (8 * k));
    }
}

void write_12p(std::span<const uint16_t> samples, uint8_t* out) {
    for (size_t i = 0; i + 1 < samples.size(); i += 2, out += 3) {
        const unsigned a = samples[i], b = samples[i + 1];
        out[0] = static_cast<uint8_t>(a);
        out[1] = static_cast<uint8_t>(a >> 8 | b << 4);
        out[2] = static_cast<uint8_t>(b >> 4);
    }
}

void write_bgr8(std::span<const uint16_t> samples, uint8_t* out) {
    for (size_t i = 0; i + 2 < samples.size(); i += 3) {
        out[i] = static_cast<uint8_t>(samples[i + 2] >> 4);
        out[i + 1] = static_cast<uint8_t>(samples[i + 1] >> 4);
        out[i + 2] = static_cast<uint8_t>(samples[i] >> 4);
    }
}

uint8_t clamp_8(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// Y0 U Y1 V, full range; the colour of a pair is that of its first pixel
void write_yuv422(std::span<const uint16_t> samples, uint8_t* out) {
    auto luma = [&](size_t i) { return clamp_8((299 * samples[i] + 587 * samples[i + 1] + 114 * samples[i + 2]) / 16000); };
    for (size_t i = 0; i + 5 < samples.size(); i += 6, out += 4) {
        const int r = samples[i], g = samples[i + 1], b = samples[i + 2];
        out[0] = luma(i);
        out[1] = clamp_8(128 + (-169 * r - 331 * g + 500 * b) / 16000);
        out[2] = luma(i + 3);
        out[3] = clamp_8(128 + (500 * r - 419 * g - 81 * b) / 16000);
    }
}

}  // namespace

const PixelFormatRow* find_pixel_format(uint32_t code) {
    const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats), [&](auto& row) { return row.code == code; });
    return found == std::end(kFormats) ? nullptr : found;
}

std::span<const PixelFormatRow> pixel_formats() { return kFormats; }

void write_row(Packing packing, std::span<const uint16_t> samples, std::byte* out) {
    using Writer = void (*)(std::span<const uint16_t>, uint8_t*);
    constexpr Writer kWriters[] = {write_8,   write_16<2, 0>, write_16<0, 0>, write_16<0, 4>,
                                   write_10p, write_12p,      write_bgr8,     write_yuv422};
    kWriters[static_cast<size_t>(packing)](samples, bytes_of(out));
}

}  // namespace kivsim
