/// Single pixels and means, in the 16-bit scale whatever the image.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "format/raw_view.h"
#include "image/image.h"

namespace kiv::vl {

struct Colour16 {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

/// Throws an Error for a pixel outside the image; the others alike.
Colour16 pixel_at(const Image& image, std::uint32_t x, std::uint32_t y);
void set_pixel(Image& image, std::uint32_t x, std::uint32_t y, const Colour16& colour);

/// Half open: right and bottom do not belong to it.
struct Rectangle {
    std::uint32_t left, top, right, bottom;
};

/// Throws an Error for a rectangle that is empty or leaves the image.
Colour16 average(const Image& image, const Rectangle& rectangle);

/// The components of one pixel of a raw buffer, as they are stored: at most 4.
std::vector<std::uint16_t> stored_pixel(const RawView& raw, std::uint32_t x, std::uint32_t y);

}  // namespace kiv::vl
