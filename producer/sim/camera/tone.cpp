#include "tone.h"

#include <algorithm>
#include <cmath>

namespace kivsim {
namespace {

constexpr size_t kEntries = kFullScale + 1;

uint16_t after_gamma(size_t number, double gamma) {
    if (gamma == 1.0) return static_cast<uint16_t>(number);
    return static_cast<uint16_t>(std::lround(std::pow(static_cast<double>(number) / kFullScale, gamma) * kFullScale));
}

}  // namespace

Tone::Tone(const ImageSettings& settings) : samples_(settings.format->samples) {
    if (settings.gamma == 1.0 && settings.luts.empty()) return;
    for (size_t channel = 0; channel < tables_.size(); ++channel) {
        auto& table = tables_[channel];
        table.resize(kEntries);
        for (size_t number = 0; number < kEntries; ++number) {
            uint16_t value = after_gamma(number, settings.gamma);
            // a luminance table is for all; those of the colours have a meaning where there are colours
            for (size_t lut : {size_t{0}, channel + 1}) {
                const bool used = !settings.luts.empty() && settings.lut_enable[lut] && (lut == 0 || samples_ != Samples::Mono);
                if (used) value = std::min<uint16_t>(settings.luts[lut * kEntries + value], kFullScale);
            }
            table[number] = value;
        }
    }
}

void Tone::Apply(uint32_t y, std::vector<uint16_t>& samples) const {
    if (tables_[0].empty()) return;
    for (size_t i = 0; i < samples.size(); ++i) {
        const size_t channel = samples_ == Samples::Mono ? 0 : samples_ == Samples::Rgb ? i % 3 : (i & 1) + (y & 1);
        samples[i] = tables_[channel][samples[i]];
    }
}

}  // namespace kivsim
