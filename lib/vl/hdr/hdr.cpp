#include "hdr/hdr.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>
#include <optional>

#include "convert/colour_steps.h"
#include "convert/convert.h"
#include "core/error.h"

namespace kiv::vl {
namespace {

// Outside of this range a pixel says little: noise below, a full well above.
constexpr float dark = 1.0F / 64;
constexpr float bright = 63.0F / 64;
// Fewer common pixels than this share do not make a ratio.
constexpr double least_common = 1.0 / 1000;

void require_series(Exposures images) {
    if (images.size() < 2 || images.size() > 16)
        throw Error(VL_ST_INVALID_PARAMETER, std::to_string(images.size()) + " exposures: 2 to 16 are possible");
    for (const auto& image : images) {
        require_same_size(images[0]->Width(), images[0]->Height(), *image);
        if (image->Type() != images[0]->Type()) throw Error(VL_ST_INVALID_PARAMETER, "the exposures are not all of one type");
    }
}

/// 0 to 1, grey or BGR.
cv::Mat unit_values(const Image& image) {
    std::optional<Image> copy;
    const Image& source = upright(image, copy);
    cv::Mat values;
    mat_of(source).convertTo(values, CV_32F, source.IsDeep() ? 1.0 / 65535 : 1.0 / 255);
    if (source.HasAlpha()) cv::cvtColor(values, values, cv::COLOR_BGRA2BGR);
    return values;
}

cv::Mat grey(const cv::Mat& values) {
    cv::Mat out = values;
    if (values.channels() == 3) cv::cvtColor(values, out, cv::COLOR_BGR2GRAY);
    return out;
}

double share(const cv::Mat& mask) { return static_cast<double>(cv::countNonZero(mask)) / static_cast<double>(mask.total()); }

/// How often the light of `first`: the ratio of the sums over the pixels that both show well; 0 where there are too few.
double ratio_to(const cv::Mat& first, const cv::Mat& other) {
    const cv::Mat common = (first > dark) & (first < bright) & (other > dark) & (other < bright);
    if (share(common) < least_common) return 0;
    return cv::mean(other, common)[0] / cv::mean(first, common)[0];
}

cv::Point shift_to(const cv::Mat& first, const cv::Mat& other) {
    cv::Mat bytes[2];
    first.convertTo(bytes[0], CV_8U, 255);
    other.convertTo(bytes[1], CV_8U, 255);
    // Bits of the largest shift. Beyond an eighth of a side the rest is too small to tell right from wrong, and beyond some 64
    // pixels no camera on a stand moves between two exposures.
    int bits = 1;
    while (bits < 6 && 8 << (bits + 1) <= std::min(first.cols, first.rows)) ++bits;
    return cv::createAlignMTB(bits)->calculateShift(bytes[0], bytes[1]);
}

/// The mean of what the images say of the light, each with the weight of how much it saw, none where it saw nothing or too much.
cv::Mat linear_light(Exposures images, std::span<const double> exposures) {
    cv::Mat light;
    cv::Mat weights;
    const auto longest = static_cast<std::size_t>(std::max_element(exposures.begin(), exposures.end()) - exposures.begin());
    const auto shortest = static_cast<std::size_t>(std::min_element(exposures.begin(), exposures.end()) - exposures.begin());
    for (std::size_t i = 0; i < images.size(); ++i) {
        const cv::Mat values = unit_values(*images[i]);
        if (light.empty()) {
            light = cv::Mat::zeros(values.size(), values.type());
            weights = cv::Mat::zeros(values.size(), values.type());
        }
        const auto exposure = static_cast<float>(exposures[i]);
        // What no other image can tell is taken from the one that comes closest.
        const float lowest = i == longest ? -1.0F : dark;
        const float highest = i == shortest ? 2.0F : bright;
        for (int y = 0; y < values.rows; ++y) {
            const auto* value = values.ptr<float>(y);
            auto* sum = light.ptr<float>(y);
            auto* weight = weights.ptr<float>(y);
            for (int x = 0; x < values.cols * values.channels(); ++x) {
                if (value[x] < lowest || value[x] > highest) continue;
                sum[x] += value[x];
                weight[x] += exposure;
            }
        }
    }
    // The shortest exposure sees whatever is bright, the longest whatever is dark; between them no pixel is left out unless
    // the series has a gap: such a pixel is white in the one and black in the other, so it lies at the gap.
    cv::Mat seen = weights > 0;
    light.setTo(bright, ~seen);
    weights.setTo(exposures[longest], ~seen);
    return light / weights;
}

cv::Mat fused(Exposures images) {
    std::vector<cv::Mat> values;
    // The fusion takes values of 8 bits, of any type.
    for (const auto& image : images) values.push_back(unit_values(*image) * 255.0);
    cv::Mat result;
    cv::createMergeMertens()->process(values, result);
    return result;
}

std::vector<double> checked(Exposures images, std::span<const double> given) {
    std::vector<double> exposures(given.begin(), given.end());
    if (exposures.empty())
        for (const auto& found : analyse_exposures(images)) exposures.push_back(found.exposure);
    for (double exposure : exposures)
        if (!(exposure > 0) || !std::isfinite(exposure))
            throw Error(VL_ST_INVALID_PARAMETER, given.empty() ? "the exposures have too little in common to find their ratios"
                                                               : "an exposure is not above 0");
    return exposures;
}

}  // namespace

std::vector<VL_HDR_EXPOSURE> analyse_exposures(Exposures images) {
    require_series(images);
    std::vector<VL_HDR_EXPOSURE> found;
    cv::Mat first;
    cv::Mat previous;
    for (const auto& image : images) {
        const cv::Mat values = grey(unit_values(*image));
        VL_HDR_EXPOSURE result{};
        result.exposure = 1;
        result.mean = cv::mean(values)[0];
        result.too_dark = share(values < dark);
        result.too_bright = share(values > bright);
        if (!found.empty()) {
            // Neighbours in the series have more in common than the ends of it.
            result.exposure = found.back().exposure * ratio_to(previous, values);
            if (result.exposure == 0) result.exposure = ratio_to(first, values);
            const cv::Point shift = shift_to(first, values);
            result.shift_x = shift.x;
            result.shift_y = shift.y;
        } else {
            first = values;
        }
        found.push_back(result);
        previous = values;
    }
    return found;
}

void combine_exposures(Exposures images, std::span<const double> exposures, VL_HDR_METHOD method, Image& target) {
    require_series(images);
    require_same_size(images[0]->Width(), images[0]->Height(), target);
    if (images[0]->IsColour() != target.IsColour())
        throw Error(VL_ST_INVALID_PARAMETER, "exposures and target are not both grey or both colour");
    if (method != VL_HDR_FUSION && method != VL_HDR_LINEAR)
        throw Error(VL_ST_INVALID_PARAMETER, "there is no way of fusing " + std::to_string(method));
    cv::Mat result = method == VL_HDR_FUSION ? fused(images) : linear_light(images, checked(images, exposures));
    double top = 1;
    if (method == VL_HDR_LINEAR) cv::minMaxLoc(result.reshape(1), nullptr, &top);
    fill_upright(target, [&](Image& to) {
        Image plain(to.Width(), to.Height(),
                    to.IsDeep()     ? (to.IsColour() ? VL_IMAGE_BGR16 : VL_IMAGE_MONO16)
                    : to.IsColour() ? VL_IMAGE_BGR8
                                    : VL_IMAGE_MONO8);
        cv::Mat out = mat_of(plain);
        result.convertTo(out, out.type(), (to.IsDeep() ? 65535.0 : 255.0) / (top > 0 ? top : 1));
        convert_image(plain, to);
    });
}

}  // namespace kiv::vl
