/// Demosaicing that looks further than the next pixel.
#pragma once

#include <VL.h>

#include <opencv2/core/mat.hpp>
#include <string_view>

namespace kiv::vl {

/// How far a pixel of the result may depend on the source, in every direction. An even number.
int demosaic_reach(VL_DEMOSAIC quality);

/// The order of the colours when the first line is left out.
std::string_view order_one_line_down(std::string_view order);

/// Colour filter lines of 8 or 16 bits to BGR of the same depth: EDGE_AWARE or BEST. `order` names the first two colours of the
/// first line. Within demosaic_reach() of the edges the result is of no use.
void demosaic(const cv::Mat& source, std::string_view order, VL_DEMOSAIC quality, cv::Mat& bgr);

}  // namespace kiv::vl
