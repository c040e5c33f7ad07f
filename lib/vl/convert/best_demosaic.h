/// Demosaicing by colour differences: green minus red and green minus blue change far less from pixel to pixel than the colours
/// do. They are estimated along lines and along columns, and each pixel takes them from the directions in which they are smooth.
#pragma once

#include <opencv2/core/mat.hpp>
#include <string_view>

namespace kiv::vl {

constexpr int best_demosaic_reach = 14;

/// Source of 8 or 16 bits, one channel; bgr of the same depth.
void demosaic_best(const cv::Mat& source, std::string_view order, cv::Mat& bgr);

}  // namespace kiv::vl
