#include "sprite.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "font.h"

namespace kivsim {
namespace {

struct Vec {
    float x, y;
    friend Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y}; }
};
struct Rgb {
    float r, g, b;
    friend Rgb operator*(Rgb c, float f) { return {c.r * f, c.g * f, c.b * f}; }
};

float length(Vec v) { return std::sqrt(v.x * v.x + v.y * v.y); }
float smooth(float edge0, float edge1, float x) {
    const float t = std::clamp((x - edge0) / (edge1 - edge0), 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}
Vec turned(Vec p, float turn) {
    const float c = std::cos(turn), s = std::sin(turn);
    return {c * p.x + s * p.y, c * p.y - s * p.x};
}

// Distances to the outline, negative inside; the part has a diameter of 1.

float box(Vec p, Vec half, float radius) {
    const Vec q{std::fabs(p.x) - half.x + radius, std::fabs(p.y) - half.y + radius};
    return length({std::max(q.x, 0.0F), std::max(q.y, 0.0F)}) + std::min(std::max(q.x, q.y), 0.0F) - radius;
}

float gear(Vec p) {
    constexpr float teeth = 22, holes = 5;
    const float r = length(p), angle = std::atan2(p.y, p.x);
    const float flank = std::clamp(std::cos(angle * teeth) * 1.9F + 0.1F, -1.0F, 1.0F);
    float d = (r - (0.462F + 0.034F * flank)) * 0.8F;
    d = std::max(d, 0.105F - r);                                          // bore
    d = std::max(d, -box(p - Vec{0.105F, 0}, {0.035F, 0.028F}, 0.004F));  // keyway
    const float step = 2 * std::numbers::pi_v<float> / holes;
    const float own = angle - step * std::round(angle / step);
    return std::max(d, 0.062F - length(Vec{r * std::cos(own), r * std::sin(own)} - Vec{0.265F, 0}));
}

float ring(Vec p) {
    const float r = length(p);
    return std::max(r - 0.44F, 0.25F - r);
}

float nut(Vec p) {
    constexpr float cos30 = 0.8660254F;
    const float ax = std::fabs(p.x), ay = std::fabs(p.y);
    const float hexagon = std::max(ax * cos30 + ay * 0.5F, ay) - 0.41F;
    return std::max(std::max(hexagon, length(p) - 0.462F), 0.235F - length(p));
}

float plate(Vec p) {
    float d = box(p, {0.49F, 0.34F}, 0.035F);
    for (float x : {-0.435F, 0.435F})
        for (float y : {-0.285F, 0.285F}) d = std::max(d, 0.026F - length(p - Vec{x, y}));
    return d;
}

float distance(PartKind kind, Vec p) {
    constexpr float (*shapes[])(Vec) = {gear, ring, nut, plate};
    return shapes[static_cast<size_t>(kind)](p);
}

float grain(Vec p, float scale) {
    const auto x = static_cast<uint32_t>(static_cast<int32_t>(p.x * scale)),
               y = static_cast<uint32_t>(static_cast<int32_t>(p.y * scale));
    return static_cast<float>(hash32(x, y) & 0xFF) / 255.0F - 0.5F;
}

// Turned metal: two bright fans, as a lamp makes them on concentric grooves, and the grooves themselves.
float machined(Vec p, float light_angle) {
    const float r = length(p), angle = std::atan2(p.y, p.x);
    const float groove = static_cast<float>(hash32(static_cast<uint32_t>(r * 420)) & 0xFF) / 255.0F - 0.5F;
    return 0.82F + 0.16F * std::cos(2 * (angle - light_angle)) + 0.07F * groove;
}

Rgb gear_color(Vec p, Vec lit) {
    const float r = length(p);
    Rgb color = Rgb{0.63F, 0.66F, 0.70F} * machined(lit, 0.9F);
    if (r > 0.375F) color = color * 0.86F;  // the toothed rim lies lower
    if (r < 0.175F) color = color * 1.13F;  // the hub stands out
    for (float edge : {0.175F, 0.375F}) color = color * (1 - 0.45F * std::exp(-std::pow((r - edge) / 0.006F, 2.0F)));
    return color;
}

Rgb ring_color(Vec p, Vec lit) {
    const float across = (length(p) - 0.345F) / 0.095F;  // -1 at the bore, 1 outside: a rounded band
    return Rgb{0.86F, 0.64F, 0.27F} * (machined(lit, 0.9F) * (1.02F - 0.28F * across * across));
}

Rgb nut_color(Vec p, Vec lit) {
    const float r = length(p);
    Rgb color = Rgb{0.74F, 0.73F, 0.68F} * (0.96F + 0.05F * grain(lit, 90));
    if (r > 0.40F) color = color * 0.80F;                                                                   // chamfered corners
    if (r < 0.285F) color = color * (0.55F + 0.25F * std::sin((r - 0.235F) * 380 + std::atan2(p.y, p.x)));  // thread
    return color;
}

bool traces(Vec p) {
    const float lane = std::floor((p.y + 0.34F) / 0.034F);
    const float bend = 0.05F * std::floor(static_cast<float>(hash32(static_cast<uint32_t>(lane)) % 5));
    const float from = -0.44F + bend, to = 0.36F - 0.06F * static_cast<float>(hash32(static_cast<uint32_t>(lane) + 99) % 7);
    const float in_lane = p.y + 0.34F - lane * 0.034F;
    return in_lane > 0.012F && in_lane < 0.022F && p.x > from && p.x < to;
}

Rgb plate_color(Vec p, Vec) {
    Rgb color = Rgb{0.08F, 0.36F, 0.18F} * (1.0F + 0.05F * grain(p, 300));
    if (traces(p)) color = {0.16F, 0.52F, 0.27F};
    for (float x : {-0.435F, 0.435F})  // plated rims of the mounting holes
        for (float y : {-0.285F, 0.285F})
            if (length(p - Vec{x, y}) < 0.048F) color = {0.88F, 0.70F, 0.30F};
    if (p.y > 0.285F && p.y < 0.325F && std::fabs(p.x) < 0.36F && std::fmod(p.x + 1.0F, 0.048F) > 0.016F)
        color = {0.90F, 0.72F, 0.32F};  // edge contacts
    const Vec chip = p - Vec{-0.22F, -0.06F};
    if (box(chip, {0.165F, 0.165F}, 0) < 0 && box(chip, {0.14F, 0.14F}, 0) > 0) {  // legs on four sides
        const float along = std::fabs(chip.x) > std::fabs(chip.y) ? chip.y : chip.x;
        if (std::fmod(along + 1.0F, 0.034F) > 0.015F && std::fabs(along) < 0.13F) color = {0.80F, 0.80F, 0.80F};
    }
    const float body = box(chip, {0.14F, 0.14F}, 0.008F);
    if (body < 0) color = Rgb{0.10F, 0.10F, 0.11F} * (1.0F + 1.5F * smooth(-0.02F, 0, body) + 0.2F * grain(p, 220));
    if (length(chip - Vec{-0.105F, -0.105F}) < 0.013F) color = {0.34F, 0.34F, 0.35F};  // pin 1
    for (float x : {-0.36F, -0.27F, -0.18F, -0.09F}) {                                 // capacitors
        const float d = box(p - Vec{x, 0.20F}, {0.028F, 0.016F}, 0.003F);
        if (d < 0) color = std::fabs(p.x - x) > 0.016F ? Rgb{0.82F, 0.82F, 0.80F} : Rgb{0.56F, 0.40F, 0.26F};
    }
    if (box(p - Vec{0.205F, -0.02F}, {0.215F, 0.17F}, 0.012F) < 0) color = {0.93F, 0.93F, 0.90F};  // label
    return color;
}

Rgb surface(PartKind kind, Vec p, Vec lit) {
    constexpr Rgb (*colors[])(Vec, Vec) = {gear_color, ring_color, nut_color, plate_color};
    return colors[static_cast<size_t>(kind)](p, lit);
}

// Light comes from the upper left: edges that face it shine, the others are dark.
float bevel(PartKind kind, Vec p, float d, float turn) {
    const float width = kind == PartKind::Plate ? 0.010F : 0.022F;
    if (d < -width) return 1.0F;
    constexpr float h = 0.004F;
    const Vec slope{distance(kind, {p.x + h, p.y}) - d, distance(kind, {p.x, p.y + h}) - d};
    const float size = std::max(length(slope), 1e-6F);
    const Vec outward = turned({slope.x / size, slope.y / size}, -turn);
    return 1.0F + (-0.60F * outward.x - 0.80F * outward.y) * 0.42F * smooth(-width, 0, d);
}

uint16_t level(float value) { return static_cast<uint16_t>(std::clamp(value, 0.0F, 1.0F) * 65535.0F + 0.5F); }

struct Pixel {
    float keep;
    Rgb add;
};

Pixel draw_pixel(PartKind kind, Vec at, float turn, float pixel) {
    constexpr float reach = 0.63F;  // of part and shadow
    if (length(at) > reach) return {1, {0, 0, 0}};
    const Vec p = turned(at, turn);
    const float d = distance(kind, p);
    const float cover = std::clamp(0.5F - d / pixel, 0.0F, 1.0F);
    if (cover == 1) return {0, surface(kind, p, at) * bevel(kind, p, d, turn)};
    const float shadow_d = distance(kind, turned(at - Vec{0.028F, 0.040F}, turn));
    const float keep = (1 - cover) * (1 - 0.72F * smooth(0.060F, -0.045F, shadow_d));
    if (cover == 0) return {keep, {0, 0, 0}};
    return {keep, surface(kind, p, at) * (bevel(kind, p, d, turn) * cover)};
}

void print(Sprite& sprite, std::string_view text, uint32_t x, uint32_t y, uint32_t dot) {
    for (uint32_t row = 0; row < kGlyphHeight * dot; ++row) {
        for (size_t i = 0; i < text.size(); ++i) {
            const auto dots = glyph_row(text[i], static_cast<int>(row / dot));
            for (uint32_t column = 0; column < kGlyphWidth * dot; ++column) {
                if (!(dots >> (kGlyphWidth - 1 - column / dot) & 1)) continue;
                const uint32_t px = x + static_cast<uint32_t>(i) * kGlyphAdvance * dot + column, py = y + row;
                if (px >= sprite.width || py >= sprite.height) continue;
                for (auto& plane : sprite.add)
                    if (!plane.empty()) plane[size_t{py} * sprite.width + px] = level(0.07F);
            }
        }
    }
}

// The label shows the text of the camera in its upper half; the lower half is for the number of the plate.
void print_label(Sprite& sprite, std::string_view text, double diameter) {
    const double columns = kGlyphAdvance * std::max<double>(7.8, static_cast<double>(text.size()));
    const auto dot = static_cast<uint32_t>(diameter * 0.41 / columns + 0.1);
    if (dot == 0) return;
    const auto x = static_cast<uint32_t>(sprite.width / 2.0 + diameter * 0.012);
    const double middle = sprite.height / 2.0 - diameter * 0.02;
    print(sprite, text, x, static_cast<uint32_t>(middle - diameter * 0.125), dot);
    sprite.label = {x, static_cast<uint32_t>(middle + diameter * 0.035), dot};
}

void find_spans(Sprite& sprite) {
    for (uint32_t y = 0; y < sprite.height; ++y) {
        const auto* row = &sprite.keep[size_t{y} * sprite.width];
        uint32_t begin = 0, end = sprite.width;
        while (begin < end && row[begin] == 65535) ++begin;
        while (end > begin && row[end - 1] == 65535) --end;
        sprite.spans.push_back({begin, end});
    }
}

}  // namespace

Sprite draw_part(PartKind kind, double turn, double diameter, bool color, std::string_view text) {
    Sprite sprite;
    sprite.width = sprite.height = static_cast<uint32_t>(diameter * 1.2);
    const size_t pixels = size_t{sprite.width} * sprite.height;
    sprite.keep.resize(pixels);
    for (int c = 0; c < (color ? 3 : 1); ++c) sprite.add[c].resize(pixels);
    const auto pixel = static_cast<float>(1.0 / diameter);
    const float center = 0.5F * static_cast<float>(sprite.width);
    for (uint32_t y = 0, i = 0; y < sprite.height; ++y) {
        for (uint32_t x = 0; x < sprite.width; ++x, ++i) {
            const Vec at{(static_cast<float>(x) + 0.5F - center) * pixel, (static_cast<float>(y) + 0.5F - center) * pixel};
            const auto [keep, add] = draw_pixel(kind, at, static_cast<float>(kind == PartKind::Plate ? 0 : turn), pixel);
            sprite.keep[i] = level(keep);
            sprite.add[0][i] = level(color ? add.r : 0.30F * add.r + 0.59F * add.g + 0.11F * add.b);
            if (!color) continue;
            sprite.add[1][i] = level(add.g);
            sprite.add[2][i] = level(add.b);
        }
    }
    if (kind == PartKind::Plate) print_label(sprite, text, diameter);
    find_spans(sprite);
    return sprite;
}

void blend_sprite(const Sprite& sprite, uint32_t y, int64_t left, int64_t x, uint32_t count, const Scene::Rows& rows) {
    const auto span = sprite.spans[y];
    const int64_t begin = std::max<int64_t>(left + span.begin, x);
    const int64_t end = std::min<int64_t>(left + span.end, x + count);
    if (begin >= end) return;
    const size_t from = size_t{y} * sprite.width + static_cast<size_t>(begin - left);
    const auto n = static_cast<size_t>(end - begin);
    const uint16_t* keep = &sprite.keep[from];
    for (size_t c = 0; c < rows.size(); ++c) {
        if (!rows[c] || sprite.add[c].empty()) continue;
        uint16_t* out = rows[c] + (begin - x);
        const uint16_t* add = &sprite.add[c][from];
        for (size_t i = 0; i < n; ++i) out[i] = static_cast<uint16_t>((uint32_t{out[i]} * keep[i] >> 16) + add[i]);
    }
}

}  // namespace kivsim
