#include "settings.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kivsim {
namespace {

constexpr double kTickNs = 100;         // exposure, delays and timers count in 1/10 us
constexpr double kFastestNs = 100'000;  // 10 kHz, as the description says
constexpr uint32_t kNoiseBit = 1, kVignettingBit = 2, kBlurBit = 4;

double factor_of_db(double hundredths) { return std::pow(10.0, hundredths / 2000.0); }

void read_gains(const RegisterFile& registers, ImageSettings& settings) {
    const double all = factor_of_db(static_cast<double>(registers.Uint(Reg::Gain, 0)));
    settings.gain.fill(all);
    if (!settings.color) return;
    constexpr uint32_t factory[3] = {1575, 1024, 1365};
    for (uint32_t c = 0; c < 3; ++c) {
        const double own = factor_of_db(static_cast<double>(registers.Uint(Reg::Gain, c + 1)));
        settings.gain[c] = all * own * static_cast<double>(registers.Uint(Reg::BalanceRatio, c)) / 1024.0;
        settings.nominal[c] = factory[c] / 1024.0;
    }
}

void read_luts(const RegisterFile& registers, ImageSettings& settings) {
    for (uint32_t i = 0; i < 4; ++i) settings.lut_enable[i] = registers.Uint(Reg::LutEnable, i) != 0;
    if (std::ranges::none_of(settings.lut_enable, [](bool on) { return on; })) return;
    settings.luts.resize(row_of(Reg::Lut).count);
    std::memcpy(settings.luts.data(), registers.Bytes(Reg::Lut).data(), settings.luts.size() * sizeof(uint16_t));
}

ChunkSettings read_chunks(const RegisterFile& registers) {
    ChunkSettings chunks;
    chunks.active = registers.Uint(Reg::ChunkModeActive) != 0;
    chunks.payload_only = chunks.active && registers.Uint(Reg::ChunkPayloadOnly) != 0;
    for (uint32_t i = 1; i < kChunkKinds; ++i)
        if (registers.Uint(Reg::ChunkEnable, i) != 0) chunks.enabled |= 1U << i;
    return chunks;
}

uint32_t widest(uint32_t sensor, uint32_t binning) { return sensor / binning & ~3U; }
uint32_t highest(uint32_t sensor, uint32_t binning) { return sensor / binning & ~1U; }

const PixelFormatRow* format_of(const RegisterFile& registers) {
    const auto* format = find_pixel_format(static_cast<uint32_t>(registers.Uint(Reg::PixelFormat)));
    return format ? format : pixel_formats().data();
}

TriggerSettings read_trigger(const RegisterFile& registers, uint32_t index) {
    return {registers.Uint(Reg::TriggerMode, index) != 0, static_cast<uint32_t>(registers.Uint(Reg::TriggerSource, index)),
            static_cast<uint32_t>(registers.Uint(Reg::TriggerActivation, index)),
            static_cast<uint64_t>(static_cast<double>(registers.Uint(Reg::TriggerDelay, index)) * kTickNs)};
}

}  // namespace

uint32_t width_max(const RegisterFile& registers) {
    return widest(static_cast<uint32_t>(registers.Uint(Reg::SensorWidth)),
                  static_cast<uint32_t>(registers.Uint(Reg::BinningHorizontal)));
}

uint32_t height_max(const RegisterFile& registers) {
    return highest(static_cast<uint32_t>(registers.Uint(Reg::SensorHeight)),
                   static_cast<uint32_t>(registers.Uint(Reg::BinningVertical)));
}

ImageSettings read_image_settings(const RegisterFile& registers) {
    // Another process may be in the middle of a change: what would lead outside of memory is checked once more here.
    auto number = [&](Reg reg) { return static_cast<uint32_t>(registers.Uint(reg)); };
    ImageSettings settings;
    settings.sensor_width = number(Reg::SensorWidth);
    settings.sensor_height = number(Reg::SensorHeight);
    settings.color = (number(Reg::SensorFeatures) & 1) != 0;
    settings.binning_x = std::max(number(Reg::BinningHorizontal), 1U);
    settings.binning_y = std::max(number(Reg::BinningVertical), 1U);
    const uint32_t columns = widest(settings.sensor_width, settings.binning_x);
    const uint32_t rows = highest(settings.sensor_height, settings.binning_y);
    settings.width = std::min(number(Reg::Width), columns);
    settings.height = std::min(number(Reg::Height), rows);
    settings.offset_x = std::min(number(Reg::OffsetX), columns - settings.width);
    settings.offset_y = std::min(number(Reg::OffsetY), rows - settings.height);
    settings.sum_x = number(Reg::BinningHorizontalMode) == 0;
    settings.sum_y = number(Reg::BinningVerticalMode) == 0;
    settings.reverse_x = (number(Reg::ReadoutControl) & 1) != 0;
    settings.reverse_y = (number(Reg::ReadoutControl) & 2) != 0;
    settings.format = format_of(registers);
    settings.pattern =
        static_cast<TestPattern>(std::min(number(Reg::TestPattern), static_cast<uint32_t>(TestPattern::FrameCounter)));
    settings.exposure_us = number(Reg::ExposureTicks) * kTickNs / 1000.0;
    settings.black_level = number(Reg::BlackLevel);
    settings.gamma = static_cast<double>(registers.Float(Reg::Gamma));
    settings.belt_speed = number(Reg::BeltSpeed);
    settings.light = number(Reg::LightLevel) / 100.0;
    const uint32_t flags = number(Reg::SceneFlags);
    settings.noise = (flags & kNoiseBit) != 0;
    settings.vignetting = (flags & kVignettingBit) != 0;
    settings.motion_blur = (flags & kBlurBit) != 0;
    read_gains(registers, settings);
    read_luts(registers, settings);
    settings.chunks = read_chunks(registers);
    return settings;
}

Timing read_timing(const RegisterFile& registers) {
    auto number = [&](Reg reg) { return static_cast<double>(registers.Uint(reg)); };
    Timing timing;
    const double exposure = number(Reg::ExposureTicks) * kTickNs;
    const double readout = number(Reg::SensorLineTime) * number(Reg::Height) * number(Reg::BinningVertical);
    double shortest = std::max({exposure, readout, kFastestNs});
    if (number(Reg::ThroughputLimitMode) != 0) {
        const auto pitch = format_of(registers)->LinePitch(static_cast<uint32_t>(registers.Uint(Reg::Width)));
        const double payload = static_cast<double>(pitch) * number(Reg::Height);
        shortest = std::max(shortest, payload * 1000.0 / number(Reg::ThroughputLimit));  // MB/s are bytes per us
    }
    double period = shortest;
    if (number(Reg::FrameRateEnable) != 0) period = std::max(period, 1e9 / static_cast<double>(registers.Float(Reg::FrameRate)));
    timing.exposure_ns = static_cast<uint64_t>(exposure);
    timing.shortest_ns = static_cast<uint64_t>(shortest);
    timing.period_ns = static_cast<uint64_t>(period);
    timing.mode = static_cast<uint32_t>(registers.Uint(Reg::AcquisitionMode));
    timing.frame_count = static_cast<uint32_t>(registers.Uint(Reg::AcquisitionFrameCount));
    timing.burst_count = static_cast<uint32_t>(registers.Uint(Reg::BurstFrameCount));
    timing.frame = read_trigger(registers, 0);
    timing.burst = read_trigger(registers, 1);
    const double speed = number(Reg::BeltSpeed);
    timing.part_ns = speed > 0 ? static_cast<uint64_t>(kPartPitchMm / speed * 1e9) : 0;
    return timing;
}

}  // namespace kivsim
