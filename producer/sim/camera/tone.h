/// What the processing behind the converter makes of a number: gamma, then the look-up tables that are switched on.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "settings.h"

namespace kivsim {

class Tone {
public:
    explicit Tone(const ImageSettings& settings);
    /// In place, on row `y` of the image.
    void Apply(uint32_t y, std::vector<uint16_t>& samples) const;

private:
    Samples samples_;
    std::array<std::vector<uint16_t>, 3> tables_;  ///< red, green, blue; empty when nothing is to do
};

}  // namespace kivsim
