/// Images turned and turned over.
#pragma once

#include <VL.h>

#include <cstdint>

#include "image/image.h"

namespace kiv::vl {

struct Size {
    std::uint32_t width, height;
};

/// Same size and type; may be one image. Throws an Error otherwise; all of these.
void flip(const Image& source, Image& target, VL_FLIP flip);

/// By the rules of vlRotate.
void rotate(const Image& source, Image& target, double degrees);
/// The smallest size that holds all of the turned image.
Size rotated_size(const Image& source, double degrees);

}  // namespace kiv::vl
