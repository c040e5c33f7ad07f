/// For file formats of 8 bits a channel without alpha.
#pragma once

#include <optional>

#include "image/image.h"

namespace kiv::vl {

/// The image itself if it is VL_IMAGE_MONO8 or VL_IMAGE_BGR8, otherwise what is left of it, in `copy`.
const Image& eight_bit(const Image& image, std::optional<Image>& copy);

}  // namespace kiv::vl
