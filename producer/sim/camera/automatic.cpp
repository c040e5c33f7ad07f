#include "automatic.h"

#include <algorithm>
#include <cmath>

namespace kivsim {
namespace {

constexpr uint64_t kOff = 0, kOnce = 1;
constexpr double kBrightEnough = 0.03, kGreyEnough = 0.02;  // share of the target

void finish_if_once(RegisterFile& registers, Reg mode) {
    if (registers.Uint(mode) == kOnce) registers.SetUint(mode, kOff);
}

// the factor by which the light is to grow; a saturated image says too little to go faster
double wanted_factor(const RegisterFile& registers, const Brightness& seen, const ImageSettings& settings) {
    const double grey = settings.color ? 0.3 * seen.mean[0] + 0.59 * seen.mean[1] + 0.11 * seen.mean[2] : seen.mean[0];
    const double target = static_cast<double>(registers.Uint(Reg::AutoTarget)) / 100.0 * kFullScale;
    return std::clamp(target / std::max(grey - settings.black_level, 1.0), 0.25, 4.0);
}

// returns what is left to do for the gain
double adjust_exposure(RegisterFile& registers, double factor) {
    const auto now = static_cast<double>(registers.Uint(Reg::ExposureTicks));
    const auto limit = [&](uint32_t i) { return static_cast<double>(registers.Uint(Reg::ExposureAutoLimits, i)); };
    const double next = std::round(std::clamp(now * factor, std::min(limit(0), limit(1)), std::max(limit(0), limit(1))));
    registers.SetUint(Reg::ExposureTicks, static_cast<uint64_t>(next));
    return factor * now / next;
}

void adjust_gain(RegisterFile& registers, double factor) {
    const double next = static_cast<double>(registers.Uint(Reg::Gain, 0)) + 2000.0 * std::log10(factor);
    registers.SetUint(Reg::Gain, static_cast<uint64_t>(std::lround(std::clamp(next, 0.0, row_of(Reg::Gain).max))), 0);
}

void adjust_brightness(RegisterFile& registers, const Brightness& seen, const ImageSettings& settings) {
    const bool exposure = registers.Uint(Reg::ExposureAuto) != kOff, gain = registers.Uint(Reg::GainAuto) != kOff;
    if (!exposure && !gain) return;
    const auto before = std::pair(registers.Uint(Reg::ExposureTicks), registers.Uint(Reg::Gain, 0));
    double factor = wanted_factor(registers, seen, settings);
    const bool there = std::fabs(factor - 1) < kBrightEnough;
    if (!there && exposure) factor = adjust_exposure(registers, factor);
    if (!there && gain) adjust_gain(registers, factor);
    const bool stuck = before == std::pair(registers.Uint(Reg::ExposureTicks), registers.Uint(Reg::Gain, 0));
    if (!there && !stuck) return;
    finish_if_once(registers, Reg::ExposureAuto);
    finish_if_once(registers, Reg::GainAuto);
}

void adjust_balance(RegisterFile& registers, const Brightness& seen, const ImageSettings& settings) {
    const bool sees_colors = settings.color && settings.format->samples != Samples::Mono;
    if (registers.Uint(Reg::BalanceWhiteAuto) == kOff || !sees_colors) return;
    const auto light = [&](size_t c) { return std::max(seen.mean[c] - settings.black_level, 1.0); };
    bool grey = true;
    for (uint32_t c : {0U, 2U}) {
        const double factor = std::clamp(light(1) / light(c), 0.5, 2.0);
        if (std::fabs(factor - 1) < kGreyEnough) continue;
        const auto& row = row_of(Reg::BalanceRatio);
        const double next = std::clamp(static_cast<double>(registers.Uint(Reg::BalanceRatio, c)) * factor, row.min, row.max);
        grey = grey && static_cast<uint64_t>(std::lround(next)) == registers.Uint(Reg::BalanceRatio, c);
        registers.SetUint(Reg::BalanceRatio, static_cast<uint64_t>(std::lround(next)), c);
    }
    if (grey) finish_if_once(registers, Reg::BalanceWhiteAuto);
}

}  // namespace

void adjust_automatic(RegisterFile& registers, const Brightness& seen, const ImageSettings& settings) {
    if (!seen.valid) return;
    adjust_brightness(registers, seen, settings);
    adjust_balance(registers, seen, settings);
}

}  // namespace kivsim
