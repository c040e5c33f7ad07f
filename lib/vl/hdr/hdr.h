/// Several exposures of one scene: what they have in common, and one image out of all.
#pragma once

#include <VL.h>

#include <memory>
#include <span>
#include <vector>

#include "image/image.h"

namespace kiv::vl {

using Exposures = std::span<const std::shared_ptr<Image>>;

/// 2 to 16 images of the same size and type; throws an Error otherwise. So do the others.
std::vector<VL_HDR_EXPOSURE> analyse_exposures(Exposures images);

/// exposures: empty for those that analyse_exposures finds. Fills an image of the same size, grey or colour like the sources.
void combine_exposures(Exposures images, std::span<const double> exposures, VL_HDR_METHOD method, Image& target);

}  // namespace kiv::vl
