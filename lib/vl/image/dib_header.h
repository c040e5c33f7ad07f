/// The header of a device-independent bitmap, in memory and in BMP files.
#pragma once

#include <cstdint>
#include <vector>

namespace kiv::vl {

/// BITMAPINFOHEADER, then a grey palette where there is one channel.
using DibHeader = std::vector<std::uint8_t>;

/// channels: 1 or 3, 8 bits each. Lines are filled to 4 bytes and stand bottom-up.
DibHeader make_dib_header(std::uint32_t width, std::uint32_t height, unsigned channels);

}  // namespace kiv::vl
