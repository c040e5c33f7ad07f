#include "convert/bayer_lines.h"

namespace kiv::vl {
namespace {

template <class Component>
struct Lines {
    const Component* above;
    const Component* line;
    const Component* below;
    std::size_t own;    ///< where in a pixel the line's colour stands beside green
    std::size_t other;  ///< and the other lines'
    Component* bgr;

    void Green(std::size_t x, std::size_t left, std::size_t right) const {
        Component* pixel = bgr + 3 * x;
        pixel[own] = static_cast<Component>((line[left] + line[right] + 1u) >> 1);
        pixel[1] = line[x];
        pixel[other] = static_cast<Component>((above[x] + below[x] + 1u) >> 1);
    }
    void Coloured(std::size_t x, std::size_t left, std::size_t right) const {
        Component* pixel = bgr + 3 * x;
        pixel[own] = line[x];
        pixel[1] = static_cast<Component>((above[x] + below[x] + line[left] + line[right] + 2u) >> 2);
        pixel[other] = static_cast<Component>((above[left] + above[right] + below[left] + below[right] + 2u) >> 2);
    }
    void Any(std::size_t x, std::size_t left, std::size_t right, bool green) const {
        green ? Green(x, left, right) : Coloured(x, left, right);
    }
};

template <class Component>
void run(const Lines<Component>& lines, std::size_t width, bool green_first, std::size_t done) {
    const std::size_t beyond_first = width == 1 ? 0 : 1;
    lines.Any(0, beyond_first, beyond_first, green_first);
    if (width == 1) return;
    std::size_t x = 1 + done;  // an odd pixel
    if (green_first) {
        for (; x + 2 < width; x += 2) {
            lines.Coloured(x, x - 1, x + 1);
            lines.Green(x + 1, x, x + 2);
        }
    } else {
        for (; x + 2 < width; x += 2) {
            lines.Green(x, x - 1, x + 1);
            lines.Coloured(x + 1, x, x + 2);
        }
    }
    for (; x + 1 < width; ++x) lines.Any(x, x - 1, x + 1, green_first == (x % 2 == 0));
    lines.Any(width - 1, width - 2, width - 2, green_first == ((width - 1) % 2 == 0));
}

template <class Component>
Lines<Component> lines_of_kind(const Component* above, const Component* line, const Component* below, BayerLine kind,
                               Component* bgr) {
    return {above, line, below, kind.red ? 2u : 0u, kind.red ? 0u : 2u, bgr};
}

}  // namespace

void demosaic_line(const std::uint8_t* above, const std::uint8_t* line, const std::uint8_t* below, std::size_t width,
                   BayerLine kind, std::uint8_t* bgr) {
    const auto fast = fast_bayer_line();
    const std::size_t done = fast != nullptr ? fast(above, line, below, width, kind, bgr) : 0;
    run(lines_of_kind(above, line, below, kind, bgr), width, kind.green_first, done);
}

void demosaic_line(const std::uint16_t* above, const std::uint16_t* line, const std::uint16_t* below, std::size_t width,
                   BayerLine kind, std::uint16_t* bgr) {
    run(lines_of_kind(above, line, below, kind, bgr), width, kind.green_first, 0);
}

}  // namespace kiv::vl
