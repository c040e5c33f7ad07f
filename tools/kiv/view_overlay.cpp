#include "view_overlay.h"

#include <algorithm>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "image_file.h"
#include "text.h"

namespace {

using HistogramHandle = std::unique_ptr<VL_HISTOGRAM, Closer<vlFreeHistogram>>;

const cv::Scalar kGround(38, 34, 32), kText(225, 225, 225), kDim(120, 116, 112), kAccent(80, 200, 255), kBadge(60, 120, 235);
constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr double kScale = 0.45;
constexpr int kGap = 14;

int text_width(const std::string& text, double scale = kScale) {
    int base = 0;
    return cv::getTextSize(text, kFont, scale, 1, &base).width;
}

/// `y` is the middle of the capitals.
void put(cv::Mat& picture, const std::string& text, int x, int y, const cv::Scalar& colour, double scale = kScale) {
    const int height = cvRound(21 * scale);
    cv::putText(picture, text, {x, y + height / 2}, kFont, scale, colour, 1, cv::LINE_AA);
}

constexpr int kCurveWidth = 256, kCurveHeight = 110, kFrame = 10, kFoot = 22;

/// The height of a curve: the two ends, where what is too dark or too bright gathers, do not press the rest down.
uint64_t highest(const Tones& tones) {
    uint64_t most = 1;
    for (const auto& channel : tones.bins)
        for (std::size_t i = 1; i + 1 < channel.size(); ++i) most = std::max(most, channel[i]);
    return most;
}

/// Gains leave single values out, which would stand as a comb in the curve.
uint64_t closed(const std::array<uint64_t, 256>& bins, std::size_t bin) {
    if (bins[bin] != 0 || bin == 0 || bin + 1 == bins.size() || bins[bin - 1] == 0 || bins[bin + 1] == 0) return bins[bin];
    return (bins[bin - 1] + bins[bin + 1]) / 2;
}

std::string share(const Tones& tones, std::size_t bin) {
    uint64_t counted_pixels = 0, in_bin = 0;
    for (const auto& channel : tones.bins) {
        for (const uint64_t count : channel) counted_pixels += count;
        in_bin += channel[bin];
    }
    const double percent = counted_pixels == 0 ? 0 : 100.0 * static_cast<double>(in_bin) / static_cast<double>(counted_pixels);
    return fixed_number(percent, percent < 9.95 ? 1 : 0) + " %";
}

}  // namespace

cv::Mat draw_bar(const BarTexts& texts, cv::Size size) {
    cv::Mat bar(size, CV_8UC3, kGround);
    const int middle = size.height / 2;
    int x = kGap;
    if (!texts.badge.empty()) {
        const int width = text_width(texts.badge);
        cv::rectangle(bar, {x - 6, 4}, {x + width + 6, size.height - 5}, kBadge, cv::FILLED);
        put(bar, texts.badge, x, middle, kText);
        x += width + 2 * kGap;
    }
    bool is_first = true;
    for (const std::string& fact : texts.facts) {
        if (!is_first) cv::line(bar, {x - kGap / 2, 7}, {x - kGap / 2, size.height - 8}, kDim);
        is_first = false;
        put(bar, fact, x + kGap / 2, middle, kText);
        x += text_width(fact) + 2 * kGap;
    }
    const std::string& end = texts.message.empty() ? texts.right : texts.message;
    const int right = size.width - kGap - text_width(end);
    if (texts.message.empty()) {
        if (right > x) put(bar, end, right, middle, kDim);
        return bar;
    }
    // A message is there for seconds only, and goes over what it has no room beside.
    const int left = std::max(right, kGap);
    cv::rectangle(bar, {left - kGap, 0}, {size.width, size.height}, kGround, cv::FILLED);
    put(bar, end, left, middle, kAccent);
    return bar;
}

Tones tones_of(VL_IMAGE_HANDLE image) {
    VL_HISTOGRAM_HANDLE handle = nullptr;
    check_vl(vlMallocHistogram(8, &handle), "vlMallocHistogram", "");
    const HistogramHandle histogram(handle);
    check_vl(vlCreateHistogram(handle, image), "vlCreateHistogram", "");
    Tones tones;
    tones.is_colour = image->type != VL_IMAGE_MONO8 && image->type != VL_IMAGE_MONO16;
    for (int32_t channel = 0; channel < 3; ++channel)
        for (uint32_t bin = 0; bin < 256; ++bin)
            vlGetHistogramValue(handle, channel, bin, &tones.bins[static_cast<std::size_t>(channel)][bin]);
    return tones;
}

cv::Mat draw_histogram(const Tones& tones) {
    cv::Mat picture(kFrame + kCurveHeight + kFoot, kCurveWidth + 2 * kFrame, CV_8UC3, kGround);
    cv::Mat curves = picture(cv::Rect(kFrame, kFrame, kCurveWidth, kCurveHeight));
    curves.setTo(cv::Scalar(24, 21, 20));
    for (int quarter = 1; quarter < 4; ++quarter)
        cv::line(curves, {quarter * kCurveWidth / 4, 0}, {quarter * kCurveWidth / 4, kCurveHeight - 1}, cv::Scalar(48, 44, 42));
    // Light of three colours: where all three are, it is white.
    const uint64_t most = highest(tones);
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const int byte = 2 - static_cast<int>(channel);  // of blue, green, red
        for (int bin = 0; bin < kCurveWidth; ++bin) {
            const uint64_t count = std::min(closed(tones.bins[channel], static_cast<std::size_t>(bin)), most);
            const int height = static_cast<int>(count * (kCurveHeight - 2) / most);
            for (int y = kCurveHeight - height; y < kCurveHeight; ++y)
                curves.at<cv::Vec3b>(y, bin)[byte] = tones.is_colour ? 225 : 190;
        }
    }
    const int foot = kFrame + kCurveHeight + kFoot / 2 + 1;
    constexpr double kSmall = 0.38;
    put(picture, "black " + share(tones, 0), kFrame, foot, kDim, kSmall);
    const std::string white = "white " + share(tones, 255);
    put(picture, white, picture.cols - kFrame - text_width(white, kSmall), foot, kDim, kSmall);
    cv::rectangle(picture, cv::Rect(0, 0, picture.cols, picture.rows), cv::Scalar(80, 76, 72));
    return picture;
}

cv::Mat draw_help(const std::vector<std::pair<std::string, std::string>>& rows) {
    constexpr int kLine = 22, kBorder = 18;
    int keys = 0, texts = 0;
    for (const auto& [key, text] : rows) {
        keys = std::max(keys, text_width(key));
        texts = std::max(texts, text_width(text));
    }
    const int column = kBorder + keys + 2 * kGap;
    cv::Mat picture(2 * kBorder + kLine * static_cast<int>(rows.size()), column + texts + kBorder, CV_8UC3, kGround);
    int y = kBorder + kLine / 2;
    for (const auto& [key, text] : rows) {
        put(picture, key, kBorder, y, kAccent);
        put(picture, text, column, y, kText);
        y += kLine;
    }
    cv::rectangle(picture, cv::Rect(0, 0, picture.cols, picture.rows), cv::Scalar(80, 76, 72));
    return picture;
}
