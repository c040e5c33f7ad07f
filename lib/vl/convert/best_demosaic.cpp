#include "convert/best_demosaic.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

#include "convert/bayer_lines.h"

namespace kiv::vl {
namespace {

using Plane = cv::Mat_<float>;

// Of the five differences from a pixel outwards in one direction, the near ones count most.
constexpr float near_to_far[] = {0.56F, 0.35F, 0.08F, 0.01F};

/// Which colour stands where.
class Filter {
public:
    explicit Filter(std::string_view order) : lines_{BayerLine::Of(order, 0), BayerLine::Of(order, 1)} {}

    bool IsGreen(int y, int x) const { return lines_[y & 1].green_first == ((x & 1) == 0); }
    /// Only asked of pixels that are not green.
    bool IsRed(int y) const { return lines_[y & 1].red; }
    int FirstColoured(int y) const { return lines_[y & 1].green_first ? 1 : 0; }

private:
    BayerLine lines_[2];
};

/// Green minus the other colour of the line (of the column), estimated at every pixel from five of its line (column).
void estimate_differences(const Plane& values, const Filter& filter, Plane& along_lines, Plane& along_columns) {
    const cv::Matx<float, 1, 5> taps(-0.25F, 0.5F, 0.5F, 0.5F, -0.25F);
    cv::filter2D(values, along_lines, CV_32F, taps);
    cv::filter2D(values, along_columns, CV_32F, taps.t());
    for (int y = 0; y < values.rows; ++y)
        for (int x = 0; x < values.cols; ++x) {
            const float sign = filter.IsGreen(y, x) ? -1.0F : 1.0F;
            along_lines(y, x) = sign * (along_lines(y, x) - values(y, x));
            along_columns(y, x) = sign * (along_columns(y, x) - values(y, x));
        }
}

/// How much a difference changes around a pixel: the sum of its steps over 5 x 5.
Plane unrest(const Plane& differences, bool along_columns) {
    const cv::Matx<float, 1, 3> step(-1.0F, 0.0F, 1.0F);
    Plane steps;
    if (along_columns) {
        cv::filter2D(differences, steps, CV_32F, step.t());
    } else {
        cv::filter2D(differences, steps, CV_32F, step);
    }
    steps = cv::abs(steps);
    Plane sums;
    cv::boxFilter(steps, sums, CV_32F, {5, 5}, {-1, -1}, false);
    return sums;
}

float towards(const Plane& differences, int y, int x, int down, int right) {
    float sum = 0;
    for (int i = 0; i < 4; ++i) sum += near_to_far[i] * differences(y + i * down, x + i * right);
    return sum;
}

/// Green minus red at red pixels and green minus blue at blue ones.
Plane blend_directions(const Plane& values, const Filter& filter) {
    Plane lines;
    Plane columns;
    estimate_differences(values, filter, lines, columns);
    const Plane line_unrest = unrest(lines, false);
    const Plane column_unrest = unrest(columns, true);
    const auto weight = [](float sum) { return 1.0F / (sum * sum + 1e-3F); };

    Plane blended(values.size(), 0.0F);
    for (int y = 4; y < values.rows - 4; ++y)
        for (int x = 4 + filter.FirstColoured(y); x < values.cols - 4; x += 2) {
            const float north = weight(column_unrest(y - 2, x));
            const float south = weight(column_unrest(y + 2, x));
            const float west = weight(line_unrest(y, x - 2));
            const float east = weight(line_unrest(y, x + 2));
            const float sum = north * towards(columns, y, x, -1, 0) + south * towards(columns, y, x, 1, 0) +
                              west * towards(lines, y, x, 0, -1) + east * towards(lines, y, x, 0, 1);
            blended(y, x) = sum / (north + south + west + east);
        }
    return blended;
}

/// The other coloured pixels' difference at a coloured pixel: from the four at its corners, sharpened by those further out.
float across(const Plane& differences, int y, int x) {
    const auto at = [&](int dy, int dx) { return differences(y + dy, x + dx); };
    const float near = at(-1, -1) + at(-1, 1) + at(1, -1) + at(1, 1);
    const float far = at(-3, -1) + at(-3, 1) + at(-1, -3) + at(-1, 3) + at(1, -3) + at(1, 3) + at(3, -1) + at(3, 1);
    return (10.0F * near - far) / 32.0F;
}

float beside(const Plane& differences, int y, int x) {
    return (differences(y - 1, x) + differences(y + 1, x) + differences(y, x - 1) + differences(y, x + 1)) / 4.0F;
}

template <class Component>
void compose(const Plane& values, const Filter& filter, cv::Mat& bgr) {
    const Plane native = blend_directions(values, filter);
    // At every coloured pixel: green minus blue and green minus red.
    Plane differences[2] = {Plane(values.size(), 0.0F), Plane(values.size(), 0.0F)};
    for (int y = 4; y < values.rows - 4; ++y) {
        const int own = filter.IsRed(y) ? 1 : 0;
        for (int x = 4 + filter.FirstColoured(y); x < values.cols - 4; x += 2) {
            differences[own](y, x) = native(y, x);
            differences[1 - own](y, x) = across(native, y, x);
        }
    }
    using Pixel = cv::Vec<Component, 3>;
    for (int y = 4; y < values.rows - 4; ++y) {
        auto* pixel = bgr.ptr<Pixel>(y);
        for (int x = 4; x < values.cols - 4; ++x) {
            const bool is_green = filter.IsGreen(y, x);
            const float blue = is_green ? beside(differences[0], y, x) : differences[0](y, x);
            const float red = is_green ? beside(differences[1], y, x) : differences[1](y, x);
            const float green = is_green ? values(y, x) : values(y, x) + native(y, x);
            pixel[x] = {cv::saturate_cast<Component>(green - blue), cv::saturate_cast<Component>(green),
                        cv::saturate_cast<Component>(green - red)};
        }
    }
}

}  // namespace

void demosaic_best(const cv::Mat& source, std::string_view order, cv::Mat& bgr) {
    Plane values;
    source.convertTo(values, CV_32F);
    bgr.create(source.size(), CV_MAKETYPE(source.depth(), 3));
    if (source.depth() == CV_8U) {
        compose<std::uint8_t>(values, Filter(order), bgr);
    } else {
        compose<std::uint16_t>(values, Filter(order), bgr);
    }
}

}  // namespace kiv::vl
