#include "convert/colour_steps.h"

#include <opencv2/imgproc.hpp>

#include "core/error.h"

namespace kiv::vl {
namespace {

constexpr int copy = -1;
constexpr int over_bgr = -2;  ///< in two steps

struct PlacementRow {
    std::string_view order;
    int to_grey;
    int to_bgr;
    int to_bgra;
};

constexpr PlacementRow placement_rows[] = {
    {"Y", copy, cv::COLOR_GRAY2BGR, cv::COLOR_GRAY2BGRA},
    {"BGR", cv::COLOR_BGR2GRAY, copy, cv::COLOR_BGR2BGRA},
    {"RGB", cv::COLOR_RGB2GRAY, cv::COLOR_RGB2BGR, cv::COLOR_RGB2BGRA},
    {"BGRa", cv::COLOR_BGRA2GRAY, cv::COLOR_BGRA2BGR, copy},
    {"BGR-", cv::COLOR_BGRA2GRAY, cv::COLOR_BGRA2BGR, over_bgr},
    {"RGBa", cv::COLOR_RGBA2GRAY, cv::COLOR_RGBA2BGR, cv::COLOR_RGBA2BGRA},
    {"RGB-", cv::COLOR_RGBA2GRAY, cv::COLOR_RGBA2BGR, over_bgr},
};

int code_for(const PlacementRow& row, int channels) {
    return channels == 1 ? row.to_grey : channels == 3 ? row.to_bgr : row.to_bgra;
}

const PlacementRow& row_of(std::string_view order) {
    for (const auto& row : placement_rows)
        if (row.order == order) return row;
    throw Error(VL_ST_NOT_IMPLEMENTED, "channels in the order " + std::string(order) + " are not known");
}

}  // namespace

cv::Mat lines_of(Image& image, std::uint32_t first, std::uint32_t last) {
    const int depth = image.IsDeep() ? CV_16U : CV_8U;
    return {static_cast<int>(last - first), static_cast<int>(image.Width()),
            CV_MAKETYPE(depth, static_cast<int>(image.Channels())), image.Line(first), static_cast<std::size_t>(image.Stride())};
}

cv::Mat mat_of(Image& image) { return lines_of(image, 0, image.Height()); }
cv::Mat mat_of(const Image& image) { return mat_of(const_cast<Image&>(image)); }

void place_pixels(const cv::Mat& source, std::string_view order, cv::Mat& target) {
    const int code = code_for(row_of(order), target.channels());
    // The result must be where the caller wants it: OpenCV quietly takes other memory when size or type do not fit.
    const auto* wanted = target.data;
    if (code == copy) {
        source.copyTo(target);
    } else if (code == over_bgr) {
        cv::Mat bgr;
        cv::cvtColor(source, bgr, row_of(order).to_bgr);
        cv::cvtColor(bgr, target, cv::COLOR_BGR2BGRA);
    } else {
        cv::cvtColor(source, target, code);
    }
    if (target.data != wanted) throw Error(VL_ST_ERROR, "a conversion step made an image of another shape than its target");
}

}  // namespace kiv::vl
