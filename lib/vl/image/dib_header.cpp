#include "image/dib_header.h"

#include "core/little_endian.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t info_size = 40;
constexpr unsigned palette_entries = 256;
constexpr std::uint32_t dots_per_metre = 3937;  // 100 per inch

}  // namespace

DibHeader make_dib_header(std::uint32_t width, std::uint32_t height, unsigned channels) {
    const std::uint32_t line = (width * channels + 3) / 4 * 4;
    const std::uint32_t colours = channels == 1 ? palette_entries : 0;
    DibHeader header;
    append(header, info_size);
    append(header, width);
    append(header, height);
    append(header, std::uint16_t{1});
    append(header, static_cast<std::uint16_t>(8 * channels));
    append(header, std::uint32_t{0});  // not compressed
    append(header, line * height);
    append(header, dots_per_metre);
    append(header, dots_per_metre);
    append(header, colours);
    append(header, colours);
    for (std::uint32_t grey = 0; grey < colours; ++grey) append(header, grey * 0x010101u);
    return header;
}

}  // namespace kiv::vl
