#include "convert/colour_steps.h"

#include <algorithm>
#include <array>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "core/error.h"

namespace kiv::vl {
namespace {

// OpenCV names a filter by the second and third pixel of its second line, everybody else by the first two of the first line.
struct BayerRow {
    std::string_view order;
    std::string_view one_line_down;
    int bilinear;
    int edge_aware;
};

constexpr BayerRow bayer_rows[] = {
    {"RG", "GB", cv::COLOR_BayerBG2BGR, cv::COLOR_BayerBG2BGR_EA},
    {"GR", "BG", cv::COLOR_BayerGB2BGR, cv::COLOR_BayerGB2BGR_EA},
    {"GB", "RG", cv::COLOR_BayerGR2BGR, cv::COLOR_BayerGR2BGR_EA},
    {"BG", "GR", cv::COLOR_BayerRG2BGR, cv::COLOR_BayerRG2BGR_EA},
};

constexpr int copy = -1;

struct PlacementRow {
    std::string_view order;
    int to_grey;
    int to_bgr;
};

constexpr PlacementRow placement_rows[] = {
    {"Y", copy, cv::COLOR_GRAY2BGR},
    {"BGR", cv::COLOR_BGR2GRAY, copy},
    {"RGB", cv::COLOR_RGB2GRAY, cv::COLOR_RGB2BGR},
    {"BGRa", cv::COLOR_BGRA2GRAY, cv::COLOR_BGRA2BGR},
    {"BGR-", cv::COLOR_BGRA2GRAY, cv::COLOR_BGRA2BGR},
    {"RGBa", cv::COLOR_RGBA2GRAY, cv::COLOR_RGBA2BGR},
    {"RGB-", cv::COLOR_RGBA2GRAY, cv::COLOR_RGBA2BGR},
};

template <class Row, std::size_t count>
const Row& row_of(const Row (&rows)[count], std::string_view order) {
    for (const auto& row : rows)
        if (row.order == order) return row;
    throw Error(VL_ST_NOT_IMPLEMENTED, "channels in the order " + std::string(order) + " are not known");
}

// The result must be where the caller wants it: OpenCV quietly takes other memory when size or type do not fit.
template <class Operation>
void in_place_of(cv::Mat& target, Operation&& operation) {
    const auto* wanted = target.data;
    operation(target);
    if (target.data != wanted) throw Error(VL_ST_ERROR, "a conversion step made an image of another shape than its target");
}

template <class Component>
void multiply(cv::Mat& pixels, const std::array<std::uint32_t, 3>& gains) {
    constexpr std::uint64_t top = std::numeric_limits<Component>::max();
    for (int y = 0; y < pixels.rows; ++y) {
        auto* line = pixels.ptr<Component>(y);
        for (int x = 0; x < pixels.cols; ++x, line += 3)
            for (std::size_t c = 0; c < 3; ++c)
                line[c] =
                    static_cast<Component>(std::min(top, (line[c] * std::uint64_t{gains[c]} + VL_GAIN_ONE / 2) / VL_GAIN_ONE));
    }
}

}  // namespace

cv::Mat lines_of(Image& image, std::uint32_t first, std::uint32_t last) {
    const int depth = image.IsDeep() ? CV_16U : CV_8U;
    return {static_cast<int>(last - first), static_cast<int>(image.Width()),
            CV_MAKETYPE(depth, static_cast<int>(image.Channels())), image.Line(first), static_cast<std::size_t>(image.Stride())};
}

void demosaic(const cv::Mat& source, std::string_view order, VL_DEMOSAIC quality, cv::Mat& target) {
    const auto& row = row_of(bayer_rows, order);
    const int code = quality == VL_DEMOSAIC_EDGE_AWARE ? row.edge_aware : row.bilinear;
    if (source.rows >= 3 && source.cols >= 3)
        return in_place_of(target, [&](cv::Mat& out) { cv::demosaicing(source, out, code); });

    // Too small for a pixel with neighbours on all sides: mirrored at the edges, which leaves the order of the colours as it is.
    constexpr int border = 2;
    cv::Mat larger;
    cv::Mat colours;
    cv::copyMakeBorder(source, larger, border, border, border, border, cv::BORDER_REFLECT_101);
    cv::demosaicing(larger, colours, code);
    in_place_of(target, [&](cv::Mat& out) { colours(cv::Rect(border, border, source.cols, source.rows)).copyTo(out); });
}

std::string_view order_one_line_down(std::string_view order) { return row_of(bayer_rows, order).one_line_down; }

void place_pixels(const cv::Mat& source, std::string_view order, cv::Mat& target) {
    const auto& row = row_of(placement_rows, order);
    const int code = target.channels() == 3 ? row.to_bgr : row.to_grey;
    in_place_of(target, [&](cv::Mat& out) {
        if (code == copy) {
            source.copyTo(out);
        } else {
            cv::cvtColor(source, out, code);
        }
    });
}

void apply_gains(cv::Mat& pixels, const Gains& gains) {
    if (gains.AreOne()) return;
    const std::array<std::uint32_t, 3> factors = {gains.blue, gains.green, gains.red};
    if (pixels.depth() == CV_8U) {
        multiply<std::uint8_t>(pixels, factors);
    } else {
        multiply<std::uint16_t>(pixels, factors);
    }
}

}  // namespace kiv::vl
