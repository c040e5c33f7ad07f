#include "test_pattern.h"

#include <array>
#include <cstdio>

#include "scene/font.h"

namespace kivsim {
namespace {

using Color = std::array<uint16_t, 3>;

constexpr uint16_t kDark = 256, kBright = 3840;
constexpr uint32_t kRampStep = 16;  // from one pixel to the next: one step of an 8-bit format

struct Place {
    const ImageSettings& settings;
    uint64_t frame;
    uint32_t x, y;
};

Color grey(uint64_t value) { return {static_cast<uint16_t>(value), static_cast<uint16_t>(value), static_cast<uint16_t>(value)}; }

Color black(const Place&) { return grey(0); }
Color white(const Place&) { return grey(kFullScale); }
Color ramp_x(const Place& at) { return grey(at.x * kRampStep & kFullScale); }
Color ramp_y(const Place& at) { return grey(at.y * kRampStep & kFullScale); }
Color ramp_x_moving(const Place& at) { return grey((at.x + at.frame) * kRampStep & kFullScale); }
Color ramp_y_moving(const Place& at) { return grey((at.y + at.frame) * kRampStep & kFullScale); }
Color line_x(const Place& at) { return grey(at.frame % at.settings.height == at.y ? kFullScale : 0); }
Color line_y(const Place& at) { return grey(at.frame % at.settings.width == at.x ? kFullScale : 0); }

Color color_bar(const Place& at) {
    constexpr uint16_t h = kBright, l = 0;
    constexpr Color bars[] = {{h, h, h}, {h, h, l}, {l, h, h}, {l, h, l}, {h, l, h}, {h, l, l}, {l, l, h}, {l, l, l}};
    return bars[size_t{at.x} * 8 / at.settings.width];
}

// the number of the frame in digits that fill the width
Color frame_counter(const Place& at) {
    constexpr uint32_t digits = 8;
    const uint32_t dot = at.settings.width / (digits * kGlyphAdvance + 2);
    if (dot == 0) return grey(kDark);
    const uint32_t column = at.x / dot, row = at.y / dot;
    if (column < 1 || column > digits * kGlyphAdvance || row < 1 || row > kGlyphHeight) return grey(kDark);
    const uint32_t digit = (column - 1) / kGlyphAdvance, dots = (column - 1) % kGlyphAdvance;
    uint64_t number = at.frame;
    for (uint32_t i = digit + 1; i < digits; ++i) number /= 10;
    const auto bits = glyph_row(static_cast<char>('0' + number % 10), static_cast<int>(row - 1));
    return grey(dots < kGlyphWidth && (bits >> (kGlyphWidth - 1 - dots) & 1) ? kBright : kDark);
}

uint16_t luma(const Color& color) { return static_cast<uint16_t>((77U * color[0] + 150U * color[1] + 29U * color[2]) >> 8); }

}  // namespace

void pattern_row(const ImageSettings& settings, uint64_t frame, uint32_t y, std::vector<uint16_t>& samples) {
    using Pattern = Color (*)(const Place&);
    constexpr Pattern patterns[] = {black,         black,  white,  ramp_x,    ramp_y,       ramp_x_moving,
                                    ramp_y_moving, line_x, line_y, color_bar, frame_counter};
    const auto pattern = patterns[static_cast<size_t>(settings.pattern)];
    const auto kind = settings.format->samples;
    samples.clear();
    for (uint32_t x = 0; x < settings.width; ++x) {
        const Color color = pattern({settings, frame, x, y});
        if (kind == Samples::Rgb) samples.insert(samples.end(), color.begin(), color.end());
        if (kind == Samples::Mono) samples.push_back(luma(color));
        if (kind == Samples::Bayer) samples.push_back(color[(x & 1) + (y & 1)]);
    }
}

}  // namespace kivsim
