/// Bilinear demosaicing, a line at a time: three lines of a colour filter in, one line of pixels out. A buffer can so be unpacked
/// and demosaiced while its lines are in the processor's nearest cache.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiv::vl {

/// Which colours a line of a filter has.
struct BayerLine {
    bool green_first;
    bool red;  ///< beside green: red or blue

    /// order: the first two colours of the filter's first line.
    static BayerLine Of(std::string_view order, std::uint32_t line) {
        const bool odd = line % 2 != 0;
        return {(order[0] == 'G') != odd, (order[0] == 'R' || order[1] == 'R') != odd};
    }
};

/// Writes `width` pixels of blue, green, red. At its ends the line is mirrored; lines above the first and below the last one
/// are the caller's to mirror.
void demosaic_line(const std::uint8_t* above, const std::uint8_t* line, const std::uint8_t* below, std::size_t width,
                   BayerLine kind, std::uint8_t* bgr);
void demosaic_line(const std::uint16_t* above, const std::uint16_t* line, const std::uint16_t* below, std::size_t width,
                   BayerLine kind, std::uint16_t* bgr);

/// Does as many pixels as it likes, an even number, from the second one of the line on; returns how many.
using FastBayerLine = std::size_t (*)(const std::uint8_t* above, const std::uint8_t* line, const std::uint8_t* below,
                                      std::size_t width, BayerLine kind, std::uint8_t* bgr);
/// The vector version on this machine, or null.
FastBayerLine fast_bayer_line() noexcept;

/// The index that stands for one beyond the ends of a row of `count`, so that the colours keep their order.
constexpr std::ptrdiff_t mirrored(std::ptrdiff_t index, std::ptrdiff_t count) {
    if (count == 1) return 0;
    while (index < 0 || index >= count) index = index < 0 ? -index : 2 * (count - 1) - index;
    return index;
}

}  // namespace kiv::vl
