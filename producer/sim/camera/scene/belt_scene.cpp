#include "belt_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>

#include "font.h"

namespace kivsim {
namespace {

constexpr uint32_t kTileWidth = 1024, kTileHeight = 256;
constexpr uint32_t kMaxBlur = 256;
constexpr float kTint[3] = {0.92F, 0.98F, 1.05F};  // dark rubber looks a little blue

constexpr int64_t floor_div(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

uint16_t level(double value) { return static_cast<uint16_t>(std::clamp(value, 0.0, 1.0) * 65535.0); }

float random_unit(uint32_t bits) { return static_cast<float>(bits & 0xFFFF) / 65535.0F; }

void scale(uint16_t* values, size_t count, uint16_t factor) {
    for (size_t i = 0; i < count; ++i) values[i] = static_cast<uint16_t>(uint32_t{values[i]} * factor >> 16);
}

}  // namespace

BeltScene::BeltScene(const CameraConfig& config)
    : width_(config.sensor_width),
      height_(config.sensor_height),
      planes_(config.color ? 3 : 1),
      seed_(config.seed),
      px_per_mm_(config.sensor_width / kFieldOfViewMm),
      rail_(config.sensor_height / 16),
      diameter_(std::min(78.0 * px_per_mm_, 0.37 * config.sensor_height)) {
    struct Model {
        PartKind kind;
        double turn;
    };
    constexpr Model models[] = {{PartKind::Gear, 0.1}, {PartKind::Gear, 0.75}, {PartKind::Ring, 0.0},
                                {PartKind::Nut, 0.22}, {PartKind::Nut, 0.7},   {PartKind::Plate, 0.0}};
    for (const auto& model : models)
        sprites_.push_back(draw_part(model.kind, model.turn, diameter_, config.color, "SN " + config.serial));
    DrawTile();
    for (auto& plane : scratch_) plane.resize(width_ + kMaxBlur);
}

// A fine diagonal weave with dust on it, and lines of wear along the belt.
void BeltScene::DrawTile() {
    for (uint32_t c = 0; c < planes_; ++c) tile_[c].resize(size_t{kTileWidth} * kTileHeight);
    const double period = 2 * std::numbers::pi / 16;
    for (uint32_t y = 0, i = 0; y < kTileHeight; ++y) {
        for (uint32_t x = 0; x < kTileWidth; ++x, ++i) {
            const uint32_t bits = hash32(x * 7919 + y, seed_);
            const double weave = 0.026 * std::sin((x + y) * period) + 0.018 * std::sin((x - 2.0 * y) * period);
            const double dust = (bits >> 20) % 600 == 0 ? 0.13 : 0.0;
            const double value = 0.36 + weave + dust + 0.028 * (random_unit(bits) - 0.5F);
            for (uint32_t c = 0; c < planes_; ++c) tile_[c][i] = level(value * (planes_ == 1 ? 1.0F : kTint[c]));
        }
    }
    row_light_.resize(height_);
    double wear = 0;
    for (uint32_t y = 0; y < height_; ++y) {
        wear = 0.97 * wear + 0.03 * (random_unit(hash32(y, seed_ + 1)) - 0.5);
        const double from_rail = std::min<double>(y, height_ - 1 - y) - rail_;
        const double shade = 1 - 0.55 * std::exp(-std::max(from_rail, 0.0) / (0.5 * rail_ + 1));
        row_light_[y] = level(std::clamp((0.86 + 1.2 * wear) * shade, 0.0, 0.999));
    }
}

void BeltScene::Prepare(const ImageSettings& settings, uint64_t, uint64_t time_ns) {
    const double speed = settings.belt_speed * px_per_mm_;  // pixels a second
    shift_ = static_cast<int64_t>(speed * static_cast<double>(time_ns) * 1e-9);
    const double moved = settings.motion_blur ? speed * settings.exposure_us * 1e-6 : 0;
    blur_ = std::clamp<uint32_t>(static_cast<uint32_t>(std::lround(std::min(moved, 1e6))), 1, kMaxBlur);
    PlaceParts();
}

// Two lanes whose parts are staggered by half a pitch; a little to and fro, as somebody laid them down by hand.
void BeltScene::PlaceParts() {
    parts_.clear();
    const double pitch = kPartPitchMm * px_per_mm_ / 2;
    const double reach = diameter_ * 1.2 + kMaxBlur;
    const auto first = static_cast<int64_t>(std::floor((-reach - static_cast<double>(shift_)) / pitch));
    const auto last = static_cast<int64_t>(std::ceil((width_ + reach - static_cast<double>(shift_)) / pitch));
    for (int64_t i = first; i <= last; ++i) {
        const uint32_t bits = hash32(static_cast<uint32_t>(i), seed_ + 2);
        // neighbours differ; the order changes from one group of eight to the next
        const auto kind = static_cast<uint32_t>(i * 5) + hash32(static_cast<uint32_t>(i >> 3), seed_ + 4) % 64;
        const auto& sprite = sprites_[kind % sprites_.size()];
        const double x = static_cast<double>(i) * pitch + (random_unit(bits >> 8) - 0.5) * 8 * px_per_mm_;
        const double lane = (i & 1) ? 0.30 : 0.70;
        const double y = height_ * lane + (random_unit(bits >> 16) - 0.5) * 0.035 * height_;
        char number[16];
        // parts come in from the left: the number grows with time
        std::snprintf(number, sizeof number, "#%06u", static_cast<unsigned>((1000 - i) & 0xFFFFF) % 1000000U);
        parts_.push_back({&sprite, std::lround(x - sprite.width / 2.0) + shift_, std::lround(y - sprite.height / 2.0), number});
    }
}

void BeltScene::Row(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) {
    if (y < rail_ || y >= height_ - rail_) return DrawRail(y, x, count, rows);
    const uint32_t lead = blur_ - 1;
    Rows target = rows;
    if (lead != 0)
        for (size_t c = 0; c < target.size(); ++c)
            if (target[c]) target[c] = scratch_[c].data();

    const int64_t from = int64_t{x} - lead;
    DrawBelt(y, from, count + lead, target);
    DrawSeam(from, count + lead, target);
    for (const auto& part : parts_) {
        const int64_t row = int64_t{y} - part.top;
        if (row < 0 || row >= part.sprite->height) continue;
        blend_sprite(*part.sprite, static_cast<uint32_t>(row), part.left, from, count + lead, target);
        PrintNumber(part, static_cast<uint32_t>(row), from, count + lead, target);
    }
    if (lead != 0) Blur(count, rows);
}

// Extruded aluminium: a rounded profile, brushed along its length.
void BeltScene::DrawRail(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) const {
    const double depth = (y < rail_ ? y : height_ - 1.0 - y) / std::max<double>(1, rail_);  // 0 outside, 1 at the belt
    const double profile = 0.40 + 0.30 * std::sin(std::numbers::pi * std::min(1.0, depth * 1.15));
    const double groove = depth > 0.42 && depth < 0.50 ? 0.45 : depth > 0.93 ? 0.6 : 1.0;
    const double value = profile * groove * (1 + 0.05 * (random_unit(hash32(y, seed_ + 3)) - 0.5));
    for (auto* row : rows)
        if (row) std::fill_n(row, count, level(value));
    // the heads of the screws that hold the rail
    const double pitch = 80 * px_per_mm_, radius = 0.20 * rail_, center = 0.72 * rail_;
    const double dy = (y < rail_ ? y : height_ - 1.0 - y) - center;
    if (std::fabs(dy) >= radius) return;
    const double half = std::sqrt(radius * radius - dy * dy);
    for (double middle = pitch / 2; middle < width_; middle += pitch) {
        const auto begin = std::max<int64_t>(std::lround(middle - half), x),
                   end = std::min<int64_t>(std::lround(middle + half), x + count);
        for (int64_t i = begin; i < end; ++i) {
            const double slot = std::fabs((static_cast<double>(i) - middle) * 0.6 + dy) < radius * 0.16 ? 0.25 : 0.85;
            for (auto* row : rows)
                if (row) row[i - x] = level(slot * (0.8 - 0.25 * dy / radius));
        }
    }
}

void BeltScene::DrawBelt(uint32_t y, int64_t x, uint32_t count, const Rows& rows) const {
    const size_t line = size_t{y % kTileHeight} * kTileWidth;
    for (size_t c = 0; c < planes_; ++c) {
        if (!rows[c]) continue;
        auto at = static_cast<size_t>(((x - shift_) % kTileWidth + kTileWidth) % kTileWidth);
        for (uint32_t done = 0; done < count; at = 0) {
            const auto run = std::min<size_t>(count - done, kTileWidth - at);
            std::memcpy(rows[c] + done, &tile_[c][line + at], run * sizeof(uint16_t));
            done += static_cast<uint32_t>(run);
        }
        scale(rows[c], count, row_light_[y]);
    }
}

// Where the ends of the belt were glued together.
void BeltScene::DrawSeam(int64_t x, uint32_t count, const Rows& rows) const {
    const auto every = static_cast<int64_t>(620 * px_per_mm_),
               half = std::max<int64_t>(1, static_cast<int64_t>(0.8 * px_per_mm_));
    for (int64_t k = floor_div(x - shift_ - half, every); k <= floor_div(x - shift_ + count + half, every); ++k) {
        const int64_t begin = std::max(k * every + shift_ - half, x), end = std::min(k * every + shift_ + half, x + count);
        if (begin >= end) continue;
        for (auto* row : rows)
            if (row) scale(row + (begin - x), static_cast<size_t>(end - begin), 36000);
    }
}

void BeltScene::PrintNumber(const Part& part, uint32_t row, int64_t x, uint32_t count, const Rows& rows) const {
    const auto& label = part.sprite->label;
    if (label.dot == 0 || row < label.y || row >= label.y + label.dot * kGlyphHeight) return;
    constexpr uint16_t ink = 4600;
    for (size_t i = 0; i < part.number.size(); ++i) {
        const auto dots = glyph_row(part.number[i], static_cast<int>((row - label.y) / label.dot));
        for (uint32_t column = 0; column < kGlyphWidth; ++column) {
            if (!(dots >> (kGlyphWidth - 1 - column) & 1)) continue;
            const int64_t at = part.left + label.x + (static_cast<int64_t>(i) * kGlyphAdvance + column) * label.dot;
            const int64_t begin = std::max(at, x), end = std::min<int64_t>(at + label.dot, x + count);
            for (auto* target : rows)
                if (target && begin < end) std::fill(target + (begin - x), target + (end - x), ink);
        }
    }
}

// What moves is smeared over the pixels that it passes while the shutter is open.
void BeltScene::Blur(uint32_t count, const Rows& rows) {
    const uint32_t factor = 65536 / blur_;
    for (size_t c = 0; c < rows.size(); ++c) {
        if (!rows[c]) continue;
        const uint16_t* in = scratch_[c].data();
        uint32_t sum = 0;
        for (uint32_t i = 0; i + 1 < blur_; ++i) sum += in[i];
        for (uint32_t i = 0; i < count; ++i) {
            sum += in[i + blur_ - 1];
            rows[c][i] = static_cast<uint16_t>(uint64_t{sum} * factor >> 16);
            sum -= in[i];
        }
    }
}

}  // namespace kivsim
