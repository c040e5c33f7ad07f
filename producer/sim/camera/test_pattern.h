/// The test pattern generator: rows of exact values in place of what the sensor delivers.
#pragma once

#include <cstdint>
#include <vector>

#include "settings.h"

namespace kivsim {

/// Row `y` of the pattern of these settings: a sample of 12 bits for each pixel, or three for a format that has them.
void pattern_row(const ImageSettings& settings, uint64_t frame, uint32_t y, std::vector<uint16_t>& samples);

}  // namespace kivsim
