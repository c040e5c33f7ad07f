/// The steps of a conversion that work on lines of pixels: this is where OpenCV does the work.
#pragma once

#include <VL.h>

#include <opencv2/core/mat.hpp>
#include <string_view>

#include "convert/convert.h"

namespace kiv::vl {

/// Mat type of `channels` components of 8 or 16 bits.
template <class Component>
constexpr int mat_type(int channels) {
    return CV_MAKETYPE(sizeof(Component) == 1 ? CV_8U : CV_16U, channels);
}

/// Lines of an image without copying them.
cv::Mat lines_of(Image& image, std::uint32_t first, std::uint32_t last);

/// Colour filter lines to BGR lines. `order` names the colours of the first line of `source`. Both have the same size;
/// the outermost lines and columns are copies of their neighbours. `target` must exist.
void demosaic(const cv::Mat& source, std::string_view order, VL_DEMOSAIC quality, cv::Mat& target);
/// The order of the colours when the first line is left out.
std::string_view order_one_line_down(std::string_view order);

/// Pixels whose channels stand in `order` ("Y", "BGR", "RGB", "BGRa" ...) to grey or BGR pixels, by the channels of `target`.
/// `target` must exist.
void place_pixels(const cv::Mat& source, std::string_view order, cv::Mat& target);

/// Multiplies the channels of BGR pixels of 8 or 16 bits in place.
void apply_gains(cv::Mat& pixels, const Gains& gains);

}  // namespace kiv::vl
