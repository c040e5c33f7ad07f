/// The pixel formats of the cameras, and how a row of 12-bit samples is written in each of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kivsim {

enum class Samples : uint8_t { Mono, Bayer, Rgb };  ///< what the sensor delivers for a pixel; Bayer begins with R G / G B
enum class Packing : uint8_t { Plain8, Plain10, Plain12, Plain16, Packed10p, Packed12p, Bgr8, Yuv422 };

struct PixelFormatRow {
    std::string_view name;
    uint32_t code;  ///< PFNC
    Samples samples;
    Packing packing;
    bool mono_camera, color_camera;

    uint32_t BitsPerPixel() const { return (code >> 16) & 0xFF; }
    size_t LinePitch(uint32_t width) const { return (size_t{width} * BitsPerPixel() + 7) / 8; }
};

/// Null for a format that no camera has.
const PixelFormatRow* find_pixel_format(uint32_t code);
std::span<const PixelFormatRow> pixel_formats();

/// Writes one row. `samples`: a 12-bit value per pixel, for Samples::Rgb three of them (R G B) per pixel. `out` takes LinePitch
/// bytes; the width of every image is a multiple of 4, so each row ends on a byte.
void write_row(Packing packing, std::span<const uint16_t> samples, std::byte* out);

}  // namespace kivsim
