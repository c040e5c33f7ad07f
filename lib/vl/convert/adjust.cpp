#include "convert/adjust.h"

#include <algorithm>
#include <limits>

namespace kiv::vl {
namespace {

template <class Component>
constexpr std::int32_t top = std::numeric_limits<Component>::max();

// Beyond this gain every value above 0 is white, and up to it the products of 8-bit values fit into 32 bits.
constexpr std::uint32_t largest_narrow_8 = 1u << 22;
constexpr std::uint32_t largest_narrow_16 = 1u << 15;

/// Product: wide enough for the values times the gains.
template <class Product, class Component>
void scale(Component* values, std::size_t count, const std::uint32_t* gains, const std::int32_t* offsets) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = static_cast<Product>(std::clamp(values[i] + offsets[i], 0, 2 * top<Component>));
        const Product scaled = (value * gains[i] + VL_GAIN_ONE / 2) / VL_GAIN_ONE;
        values[i] = static_cast<Component>(std::min<Product>(scaled, top<Component>));
    }
}

}  // namespace

template <class Component>
Adjuster<Component>::Adjuster(const Adjustment& adjustment, unsigned channels) : channels_(channels) {
    constexpr std::int32_t unit = 65535 / top<Component>;
    const std::int32_t limited = std::clamp(adjustment.offset, -65535, 65535);
    offset_ = (limited + (limited < 0 ? -unit / 2 : unit / 2)) / unit;
    const Gains& gains = adjustment.gains;
    const bool with_gains = channels > 1 || adjustment.grey_gain;
    const std::uint32_t of_channels[] = {gains.blue, gains.green, gains.red};
    scales_ = offset_ != 0 || (channels > 1 ? !gains.AreOne() : with_gains && gains.green != VL_GAIN_ONE);
    for (std::size_t i = 0; i < run; ++i) {
        const bool alpha = channels == 4 && i % 4 == 3;
        const std::uint32_t gain = channels == 1 ? (with_gains ? gains.green : VL_GAIN_ONE) : of_channels[i % channels % 3];
        gains_[i] = alpha ? VL_GAIN_ONE : sizeof(Component) == 1 ? std::min(gain, largest_narrow_8) : gain;
        offsets_[i] = alpha ? 0 : offset_;
    }
    wide_ = sizeof(Component) == 2 && *std::max_element(gains_.begin(), gains_.end()) > largest_narrow_16;
    if (adjustment.lut != nullptr) lut_.emplace(*adjustment.lut, channels);
}

template <class Component>
void Adjuster<Component>::Apply(Component* line, std::size_t pixels) const {
    if (scales_) {
        const std::size_t count = pixels * channels_;
        const auto some = wide_ ? scale<std::uint64_t, Component> : scale<std::uint32_t, Component>;
        for (std::size_t done = 0; done < count; done += run)
            some(line + done, std::min(run, count - done), gains_.data(), offsets_.data());
    }
    if (lut_) lut_->Apply(line, pixels, line);
}

template class Adjuster<std::uint8_t>;
template class Adjuster<std::uint16_t>;

namespace {

template <class Component>
void adjust_lines(Image& image, const Adjustment& adjustment) {
    const Adjuster<Component> adjuster(adjustment, image.Channels());
    if (adjuster.ChangesNothing()) return;
    for (std::uint32_t y = 0; y < image.Height(); ++y) adjuster.Apply(reinterpret_cast<Component*>(image.Line(y)), image.Width());
}

}  // namespace

void adjust(Image& image, const Adjustment& adjustment) {
    image.IsDeep() ? adjust_lines<std::uint16_t>(image, adjustment) : adjust_lines<std::uint8_t>(image, adjustment);
}

}  // namespace kiv::vl
