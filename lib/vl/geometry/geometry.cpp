#include "geometry/geometry.h"

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>

#include "convert/colour_steps.h"
#include "core/error.h"

namespace kiv::vl {
namespace {

void require_same_type(const Image& source, const Image& target) {
    if (source.Type() != target.Type())
        throw Error(VL_ST_INVALID_PARAMETER,
                    "the source is of type " + code_text(source.Type()) + ", the target of " + code_text(target.Type()));
}

/// 0 to below 360.
double normal(double degrees) {
    if (!std::isfinite(degrees)) throw Error(VL_ST_INVALID_PARAMETER, "the angle is no number");
    const double rest = std::fmod(degrees, 360.0);
    return rest < 0 ? rest + 360.0 : rest;
}

/// How many quarters, or -1 for an angle between.
int quarters(double degrees) {
    const double count = normal(degrees) / 90.0;
    return count == std::floor(count) ? static_cast<int>(count) % 4 : -1;
}

void rotate_between(const cv::Mat& source, cv::Mat& target, double degrees) {
    // Middles of images lie between pixels where a side is even: hence the halves.
    const cv::Point2f middle(static_cast<float>(source.cols - 1) / 2, static_cast<float>(source.rows - 1) / 2);
    cv::Mat matrix = cv::getRotationMatrix2D(middle, -degrees, 1.0);
    matrix.at<double>(0, 2) += (target.cols - source.cols) / 2.0;
    matrix.at<double>(1, 2) += (target.rows - source.rows) / 2.0;
    cv::warpAffine(source, target, matrix, target.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar::all(0));
}

}  // namespace

void flip(const Image& source, Image& target, VL_FLIP how) {
    require_same_type(source, target);
    require_same_size(source.Width(), source.Height(), target);
    constexpr int codes[] = {1, 0, -1};
    if (how < VL_FLIP_HORIZONTAL || how > VL_FLIP_BOTH)
        throw Error(VL_ST_INVALID_PARAMETER, "there is no flip " + std::to_string(how));
    std::optional<Image> copy;
    const Image& from = upright(source, copy);
    fill_upright(target, [&](Image& to) {
        cv::Mat out = mat_of(to);
        cv::flip(mat_of(from), out, codes[how]);
    });
    target.SetSignificantBits(source.SignificantBits());
}

Size rotated_size(const Image& source, double degrees) {
    const int turns = quarters(degrees);
    if (turns == 0 || turns == 2) return {source.Width(), source.Height()};
    if (turns == 1 || turns == 3) return {source.Height(), source.Width()};
    const double angle = normal(degrees) * CV_PI / 180.0;
    const double across = std::abs(std::cos(angle));
    const double along = std::abs(std::sin(angle));
    return {static_cast<std::uint32_t>(std::ceil(source.Width() * across + source.Height() * along)),
            static_cast<std::uint32_t>(std::ceil(source.Width() * along + source.Height() * across))};
}

void rotate(const Image& source, Image& target, double degrees) {
    require_same_type(source, target);
    if (&source == &target) throw Error(VL_ST_INVALID_PARAMETER, "an image cannot be turned into itself");
    const Size exact = rotated_size(source, degrees);
    const int turns = quarters(degrees);
    const bool moves = turns >= 0 && exact.width == target.Width() && exact.height == target.Height();
    constexpr int codes[] = {-1, cv::ROTATE_90_CLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_COUNTERCLOCKWISE};
    std::optional<Image> copy;
    const Image& from = upright(source, copy);
    fill_upright(target, [&](Image& to) {
        cv::Mat out = mat_of(to);
        if (!moves) return rotate_between(mat_of(from), out, normal(degrees));
        if (turns == 0) return mat_of(from).copyTo(out);
        cv::rotate(mat_of(from), out, codes[turns]);
    });
    target.SetSignificantBits(source.SignificantBits());
}

}  // namespace kiv::vl
