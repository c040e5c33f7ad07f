#include "process/operations.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "convert/adjust.h"
#include "convert/colour_steps.h"
#include "convert/convert.h"
#include "core/error.h"
#include "geometry/geometry.h"
#include "lut/lut_file.h"
#include "measure/pixels.h"

namespace kiv::vl {
namespace {

constexpr double largest_side = 65535;

[[noreturn]] void refuse(const Step& step, const std::string& why) {
    throw Error(VL_ST_INVALID_PARAMETER, step.name + ": " + why);
}

std::uint32_t whole_number_of(const Step& step, std::size_t place, double least, double most) {
    return static_cast<std::uint32_t>(number_of(step, place, least, most));
}

std::uint64_t type_for(bool colour, bool deep) {
    return colour ? (deep ? VL_IMAGE_BGR16 : VL_IMAGE_BGR8) : deep ? VL_IMAGE_MONO16 : VL_IMAGE_MONO8;
}

Image converted(const Image& image, std::uint64_t type) {
    Image target(image.Width(), image.Height(), type);
    convert_image(image, target);
    return target;
}

/// An image of the same type made by OpenCV, of any size.
template <class Make>
Image made(const Image& image, std::uint32_t width, std::uint32_t height, Make&& make) {
    Image target(width, height, image.Type());
    cv::Mat out = mat_of(target);
    make(mat_of(image), out);
    if (out.data != target.Line(0)) throw Error(VL_ST_ERROR, "an operation made an image of another shape than wanted");
    target.SetSignificantBits(image.SignificantBits());
    return target;
}

Image through_curve(Image image, const std::function<double(double)>& curve) {
    const unsigned bits = 8 * image.BytesPerChannel();
    Lut lut(bits, bits, 1);
    lut.Fill(curve);
    apply_lut(image, lut, image);
    return image;
}

Image mono(Image image, const Step&) { return converted(image, type_for(false, image.IsDeep())); }
Image colour(Image image, const Step&) { return converted(image, type_for(true, image.IsDeep())); }

Image depth(Image image, const Step& step) {
    if (step.arguments[0] != "8" && step.arguments[0] != "16") refuse(step, "8 or 16 bits are possible");
    return converted(image, type_for(image.IsColour(), step.arguments[0] == "16"));
}

Image gain(Image image, const Step& step) {
    if (step.arguments.size() == 2) refuse(step, "one factor or three are possible");
    std::uint32_t factors[3];
    for (std::size_t i = 0; i < 3; ++i)
        factors[i] =
            static_cast<std::uint32_t>(std::lround(number_of(step, step.arguments.size() == 1 ? 0 : i, 0, 1000) * VL_GAIN_ONE));
    adjust(image, {{factors[0], factors[1], factors[2]}, 0, nullptr, true});
    return image;
}

Image offset(Image image, const Step& step) {
    adjust(image, {{}, static_cast<std::int32_t>(std::lround(number_of(step, 0, -1, 1) * 65535)), nullptr, false});
    return image;
}

Image gamma(Image image, const Step& step) { return through_curve(std::move(image), gamma_curve(number_of(step, 0, 0, 100))); }
Image invert(Image image, const Step&) { return through_curve(std::move(image), linear_curve(-1, 1)); }
Image linear(Image image, const Step& step) {
    return through_curve(std::move(image), linear_curve(number_of(step, 0, -1e6, 1e6), number_of(step, 1, -1e6, 1e6)));
}

Image knee(Image image, const Step& step) {
    if (step.arguments.size() % 2 != 0) refuse(step, "points are pairs of numbers");
    std::vector<VL_KNEE_POINT> points;
    for (std::size_t i = 0; i < step.arguments.size(); i += 2)
        points.push_back({number_of(step, i, 0, 1), number_of(step, i + 1, 0, 1)});
    return through_curve(std::move(image), knee_curve(points));
}

Image stretch(Image image, const Step&) {
    double low = 0;
    double high = 0;
    cv::minMaxLoc(mat_of(image).reshape(1), &low, &high);
    const double top = image.IsDeep() ? 65535 : 255;
    if (high <= low) return image;
    const double slope = top / (high - low);
    return through_curve(std::move(image), linear_curve(slope, -slope * low / top));
}

Image equalize(Image image, const Step&) {
    if (image.IsDeep()) image = converted(image, type_for(image.IsColour(), false));
    return made(image, image.Width(), image.Height(), [](const cv::Mat& in, cv::Mat& out) {
        if (in.channels() == 1) return cv::equalizeHist(in, out);
        // Of a colour image only the brightness: equal shares of each channel would shift the colours.
        cv::Mat separate;
        cv::cvtColor(in, separate, cv::COLOR_BGR2YCrCb);
        cv::Mat brightness;
        cv::extractChannel(separate, brightness, 0);
        cv::equalizeHist(brightness, brightness);
        cv::insertChannel(brightness, separate, 0);
        cv::cvtColor(separate, out, cv::COLOR_YCrCb2BGR);
    });
}

Image white_balance(Image image, const Step&) {
    if (!image.IsColour()) return image;
    const Colour16 mean = average(image, {0, 0, image.Width(), image.Height()});
    const auto factor = [&](std::uint16_t of) { return of == 0 ? VL_GAIN_ONE : mean.green * VL_GAIN_ONE / of; };
    adjust(image, {{factor(mean.red), VL_GAIN_ONE, factor(mean.blue)}});
    return image;
}

Image look_up(Image image, const Step& step) {
    const Lut lut = load_lut(step.arguments[0]);
    apply_lut(image, lut, image);
    return image;
}

Image flipped(Image image, const Step& step) {
    constexpr std::string_view words[] = {"horizontal", "vertical", "both"};
    for (VL_FLIP how : {VL_FLIP_HORIZONTAL, VL_FLIP_VERTICAL, VL_FLIP_BOTH}) {
        if (step.arguments[0] != words[how]) continue;
        flip(image, image, how);
        return image;
    }
    refuse(step, "horizontal, vertical or both are possible");
}

Image rotated(Image image, const Step& step) {
    const double degrees = number_of(step, 0, -1e6, 1e6);
    const Size size = rotated_size(image, degrees);
    Image target(size.width, size.height, image.Type());
    rotate(image, target, degrees);
    return target;
}

Image crop(Image image, const Step& step) {
    const auto x = whole_number_of(step, 0, 0, largest_side);
    const auto y = whole_number_of(step, 1, 0, largest_side);
    const auto width = whole_number_of(step, 2, 1, largest_side);
    const auto height = whole_number_of(step, 3, 1, largest_side);
    if (x + width > image.Width() || y + height > image.Height())
        refuse(step, "the part is not within " + size_text(image.Width(), image.Height()));
    return made(image, width, height, [&](const cv::Mat& in, cv::Mat& out) {
        in(cv::Rect(static_cast<int>(x), static_cast<int>(y), out.cols, out.rows)).copyTo(out);
    });
}

Image scale(Image image, const Step& step) {
    const bool by_factor = step.arguments.size() == 1;
    const double factor = by_factor ? number_of(step, 0, 1e-4, 1e4) : 1;
    const auto side = [&](std::size_t place, std::uint32_t now) {
        if (!by_factor) return whole_number_of(step, place, 1, largest_side);
        return static_cast<std::uint32_t>(std::clamp(std::round(now * factor), 1.0, largest_side + 1));
    };
    const std::uint32_t width = side(0, image.Width());
    const std::uint32_t height = side(1, image.Height());
    return made(image, width, height, [&](const cv::Mat& in, cv::Mat& out) {
        const bool smaller = out.cols <= in.cols && out.rows <= in.rows;
        cv::resize(in, out, out.size(), 0, 0, smaller ? cv::INTER_AREA : cv::INTER_LINEAR);
    });
}

Image blur(Image image, const Step& step) {
    const double radius = number_of(step, 0, 0.1, 100);
    return made(image, image.Width(), image.Height(), [&](const cv::Mat& in, cv::Mat& out) {
        cv::GaussianBlur(in, out, {0, 0}, radius);
    });
}

Image median(Image image, const Step& step) {
    if (step.arguments[0] != "3" && step.arguments[0] != "5") refuse(step, "3 or 5 are possible");
    return made(image, image.Width(), image.Height(),
                [&](const cv::Mat& in, cv::Mat& out) { cv::medianBlur(in, out, step.arguments[0] == "3" ? 3 : 5); });
}

Image sharpen(Image image, const Step& step) {
    const double amount = number_of(step, 0, 0, 10);
    const double radius = step.arguments.size() > 1 ? number_of(step, 1, 0.1, 100) : 1;
    return made(image, image.Width(), image.Height(), [&](const cv::Mat& in, cv::Mat& out) {
        cv::Mat soft;
        cv::GaussianBlur(in, soft, {0, 0}, radius);
        cv::addWeighted(in, 1 + amount, soft, -amount, 0, out);
    });
}

Image threshold(Image image, const Step& step) {
    const double limit = number_of(step, 0, 0, 1);
    return through_curve(std::move(image), [limit](double in) { return in < limit ? 0.0 : 1.0; });
}

constexpr Operation operations[] = {
    {"mono", 0, 0, mono},
    {"colour", 0, 0, colour},
    {"color", 0, 0, colour},
    {"depth", 1, 1, depth},
    {"gain", 1, 3, gain},
    {"offset", 1, 1, offset},
    {"gamma", 1, 1, gamma},
    {"invert", 0, 0, invert},
    {"linear", 2, 2, linear},
    {"knee", 2, 2048, knee},
    {"stretch", 0, 0, stretch},
    {"equalize", 0, 0, equalize},
    {"whitebalance", 0, 0, white_balance},
    {"lut", 1, 1, look_up},
    {"flip", 1, 1, flipped},
    {"rotate", 1, 1, rotated},
    {"crop", 4, 4, crop},
    {"scale", 1, 2, scale},
    {"blur", 1, 1, blur},
    {"median", 1, 1, median},
    {"sharpen", 1, 2, sharpen},
    {"threshold", 1, 1, threshold},
};

}  // namespace

const Operation* find_operation(std::string_view name) {
    const auto* found =
        std::find_if(std::begin(operations), std::end(operations), [&](const Operation& row) { return row.name == name; });
    return found == std::end(operations) ? nullptr : found;
}

double number_of(const Step& step, std::size_t place, double least, double most) {
    const std::string& word = step.arguments[place];
    double value = 0;
    const auto [end, trouble] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (trouble != std::errc() || end != word.data() + word.size()) refuse(step, "\"" + word + "\" is no number");
    if (!(value >= least && value <= most)) refuse(step, word + " is out of range");
    return value;
}

}  // namespace kiv::vl
