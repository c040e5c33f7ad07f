#include "convert/demosaic.h"

#include <opencv2/imgproc.hpp>

#include "convert/best_demosaic.h"
#include "core/error.h"

namespace kiv::vl {
namespace {

// OpenCV names a filter by the second and third pixel of its second line, everybody else by the first two of the first line.
struct OrderRow {
    std::string_view order;
    std::string_view one_line_down;
    int edge_aware;
};

constexpr OrderRow orders[] = {
    {"RG", "GB", cv::COLOR_BayerBG2BGR_EA},
    {"GR", "BG", cv::COLOR_BayerGB2BGR_EA},
    {"GB", "RG", cv::COLOR_BayerGR2BGR_EA},
    {"BG", "GR", cv::COLOR_BayerRG2BGR_EA},
};

const OrderRow& row_of(std::string_view order) {
    for (const auto& row : orders)
        if (row.order == order) return row;
    throw Error(VL_ST_NOT_IMPLEMENTED, "a colour filter " + std::string(order) + " is not known");
}

}  // namespace

int demosaic_reach(VL_DEMOSAIC quality) { return quality == VL_DEMOSAIC_BEST ? best_demosaic_reach : 4; }

std::string_view order_one_line_down(std::string_view order) { return row_of(order).one_line_down; }

void demosaic(const cv::Mat& source, std::string_view order, VL_DEMOSAIC quality, cv::Mat& bgr) {
    if (quality == VL_DEMOSAIC_BEST) return demosaic_best(source, order, bgr);
    cv::demosaicing(source, bgr, row_of(order).edge_aware);
}

}  // namespace kiv::vl
