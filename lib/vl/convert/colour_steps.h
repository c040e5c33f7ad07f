/// The steps of a conversion that OpenCV does: the order and the number of a pixel's channels.
#pragma once

#include <opencv2/core/mat.hpp>
#include <string_view>

#include "image/image.h"

namespace kiv::vl {

/// Mat type of `channels` components of 8 or 16 bits.
template <class Component>
constexpr int mat_type(int channels) {
    return CV_MAKETYPE(sizeof(Component) == 1 ? CV_8U : CV_16U, channels);
}

/// Lines of an image without copying them; not of a bitmap whose bottom line comes first.
cv::Mat lines_of(Image& image, std::uint32_t first, std::uint32_t last);
/// All of an image that nobody writes to: OpenCV has no read-only images.
cv::Mat mat_of(const Image& image);
cv::Mat mat_of(Image& image);

/// Pixels whose channels stand in `order` ("Y", "BGR", "RGB", "BGRa" ...) to grey, BGR or BGRA pixels, by the channels of
/// `target`. `target` must exist. Alpha is full where the source has none.
void place_pixels(const cv::Mat& source, std::string_view order, cv::Mat& target);

}  // namespace kiv::vl
