/// A part as it lies on the belt, drawn once and then laid over rows of the scene: for each pixel how much of the background
/// stays (its own shadow included) and what the part adds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scene.h"

namespace kivsim {

enum class PartKind : uint8_t { Gear, Ring, Nut, Plate };

struct Sprite {
    uint32_t width = 0, height = 0;
    std::vector<uint16_t> keep;    ///< of the background, 65535 = all
    std::vector<uint16_t> add[3];  ///< red, green, blue, or grey in the first
    struct Span {
        uint32_t begin, end;  ///< the pixels of a row that differ from the background
    };
    std::vector<Span> spans;

    /// Where a running number may be printed, relative to the sprite; no width: nowhere.
    struct Label {
        uint32_t x = 0, y = 0, dot = 0;
    } label;
};

/// Draws a part of `diameter` pixels, turned by `turn` radians. A plate is not turned; `text` is printed on it.
Sprite draw_part(PartKind kind, double turn, double diameter, bool color, std::string_view text);

/// Lays row `y` of the sprite over `count` pixels of the scene that begin at x; the sprite's left edge is at `left`.
void blend_sprite(const Sprite& sprite, uint32_t y, int64_t left, int64_t x, uint32_t count, const Scene::Rows& rows);

}  // namespace kivsim
