/// What happens to the values of finished pixels: offset, gains, look-up table, in this order.
#pragma once

#include <VL.h>

#include <array>
#include <cstddef>
#include <optional>

#include "lut/lut.h"

namespace kiv::vl {

struct Gains {
    std::uint32_t red = VL_GAIN_ONE;
    std::uint32_t green = VL_GAIN_ONE;
    std::uint32_t blue = VL_GAIN_ONE;

    bool AreOne() const { return red == VL_GAIN_ONE && green == VL_GAIN_ONE && blue == VL_GAIN_ONE; }
};

struct Adjustment {
    Gains gains;
    /// In the 16-bit scale, added before the gains.
    std::int32_t offset = 0;
    /// Null for none.
    const Lut* lut = nullptr;
    /// Whether grey images take the green gain; otherwise only offset and table reach them.
    bool grey_gain = false;
};

/// An adjustment made ready for lines of `channels` channels: grey, BGR or BGRA. Alpha stays as it is.
template <class Component>
class Adjuster {
public:
    Adjuster(const Adjustment& adjustment, unsigned channels);

    bool ChangesNothing() const { return !scales_ && !lut_; }
    void Apply(Component* line, std::size_t pixels) const;

private:
    // A multiple of 1, 3 and 4 channels: the gains repeat, so that a loop over so many components is the same for all.
    static constexpr std::size_t run = 48;

    unsigned channels_;
    bool scales_ = false;
    bool wide_ = false;  ///< the products need more than 32 bits
    std::int32_t offset_ = 0;
    std::array<std::uint32_t, run> gains_{};
    std::array<std::int32_t, run> offsets_{};
    std::optional<LutLines<Component, Component>> lut_;
};

extern template class Adjuster<std::uint8_t>;
extern template class Adjuster<std::uint16_t>;

/// Adjusts a whole image.
void adjust(Image& image, const Adjustment& adjustment);

}  // namespace kiv::vl
