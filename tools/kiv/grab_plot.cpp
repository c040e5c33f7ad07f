#include "grab_plot.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "image_file.h"
#include "text.h"

namespace {

const cv::Scalar kWhite(255, 255, 255), kInk(60, 60, 60), kGrid(230, 230, 230), kCurve(176, 98, 32), kMedian(70, 140, 40),
    kLate(150, 40, 150), kGap(205, 205, 255), kGapText(40, 40, 200), kIncomplete(0, 110, 255);
constexpr int kLeft = 78, kRight = 24, kTop = 64, kBottom = 56, kBetween = 40;
constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr double kSmall = 0.42, kLarge = 0.55;
constexpr std::size_t kMostGapLabels = 12;
constexpr int kDotsFrom = 6;  ///< pixels between frames from which each gets a dot

enum class Align { kBegin, kCentre, kEnd };

/// `y` is the middle of the letters' height.
void put_text(cv::Mat& picture, const std::string& text, int x, int y, Align align = Align::kBegin, double scale = kSmall,
              const cv::Scalar& colour = kInk) {
    int base = 0;
    const cv::Size size = cv::getTextSize(text, kFont, scale, 1, &base);
    const int left = align == Align::kBegin ? x : align == Align::kEnd ? x - size.width : x - size.width / 2;
    cv::putText(picture, text, {left, y + size.height / 2}, kFont, scale, colour, 1, cv::LINE_AA);
}

/// 1, 2 or 5 times a power of ten, so that about `wanted` steps make the range.
double nice_step(double range, int wanted) {
    const double rough = range / std::max(1, wanted), power = std::pow(10, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= rough) return factor * power;
    return 10 * power;
}

std::string tick_text(double value, double step) {
    const int digits = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    return fixed_number(std::abs(value) < step / 1e6 ? 0 : value, digits);
}

struct Range {
    double low = 0, high = 1;

    /// From a step below to a step above, so that no curve runs on the frame. Where a few values would make all others flat, up
    /// to where these end.
    static Range Around(const Spread& spread, int ticks) {
        const double tail = spread.p99 - spread.p50;
        const bool has_outliers = tail > 0 && spread.max - spread.p50 > 6 * tail;
        const double most = has_outliers ? spread.p50 + 3 * tail : spread.max;
        const double span = std::max(most - spread.min, std::max(std::abs(most), 1.0) * 1e-3);
        const double step = nice_step(span, ticks);
        const double low = std::floor((spread.min - span * 0.04) / step) * step;
        return {spread.min >= 0 ? std::max(low, 0.0) : low, std::ceil((most + span * 0.04) / step) * step};
    }
};

/// One diagram of the picture.
class Panel {
public:
    Panel(cv::Mat& picture, const cv::Rect& area, Range x, Range y) : picture_(picture), area_(area), x_(x), y_(y) {}

    void Frame(const std::string& title, bool has_time) const {
        const double y_step = nice_step(y_.high - y_.low, area_.height / 42);
        for (double y = std::ceil(y_.low / y_step) * y_step; y <= y_.high + y_step * 1e-6; y += y_step) {
            cv::line(picture_, {area_.x, Y(y)}, {Right(), Y(y)}, kGrid);
            put_text(picture_, tick_text(y, y_step), area_.x - 8, Y(y), Align::kEnd);
        }
        const double x_step = nice_step(x_.high - x_.low, area_.width / 90);
        for (double x = 0; x <= x_.high + x_step * 1e-6; x += x_step) {
            cv::line(picture_, {X(x), area_.y}, {X(x), Bottom()}, kGrid);
            if (has_time) put_text(picture_, tick_text(x, x_step), X(x), Bottom() + 14, Align::kCentre);
        }
        if (has_time) put_text(picture_, "time in s", area_.x + area_.width / 2, Bottom() + 36, Align::kCentre);
        put_text(picture_, title, area_.x, area_.y - 12);
    }

    void Border() const { cv::rectangle(picture_, area_, kInk); }

    /// A stretch of time in which frames are missing.
    void Gap(double from, double to) const {
        const int left = X(from), right = std::max(X(to), left + 1);
        cv::rectangle(picture_, {left, area_.y}, {right, Bottom()}, kGap, cv::FILLED);
    }
    void GapLabel(double from, double to, uint64_t missing) const {
        put_text(picture_, std::to_string(missing), (X(from) + X(to)) / 2, area_.y + 10, Align::kCentre, kSmall, kGapText);
    }

    void Level(double value, const cv::Scalar& colour) const {
        constexpr int kDash = 7;
        for (int x = area_.x; x < Right(); x += 2 * kDash)
            cv::line(picture_, {x, Y(value)}, {std::min(x + kDash, Right()), Y(value)}, colour, 1, cv::LINE_AA);
    }

    /// Where several frames share a column it becomes a bar from the lowest to the highest of them.
    void Curve(const std::vector<cv::Point2d>& points) const {
        if (points.size() > static_cast<std::size_t>(area_.width)) return Bars(points);
        std::vector<cv::Point> line;
        for (const cv::Point2d& point : points) line.emplace_back(X(point.x), Y(point.y));
        cv::polylines(picture_, line, false, kCurve, 1, cv::LINE_AA);
        const bool dotted = points.size() * kDotsFrom < static_cast<std::size_t>(area_.width);
        for (const cv::Point& point : line)
            if (dotted) cv::circle(picture_, point, 2, kCurve, cv::FILLED, cv::LINE_AA);
    }

    /// What is above the scale.
    void Arrow(const cv::Point2d& point) const {
        if (point.y > y_.high)
            cv::drawMarker(picture_, {X(point.x), area_.y + 6}, kCurve, cv::MARKER_TRIANGLE_UP, 9, 2, cv::LINE_AA);
    }

    void Cross(const cv::Point2d& point) const {
        cv::drawMarker(picture_, {X(point.x), Y(point.y)}, kIncomplete, cv::MARKER_TILTED_CROSS, 11, 2, cv::LINE_AA);
    }

private:
    int X(double x) const { return area_.x + cvRound((x - x_.low) / (x_.high - x_.low) * (area_.width - 1)); }
    int Y(double y) const {
        const double share = (std::min(y, y_.high) - y_.low) / (y_.high - y_.low);
        return Bottom() - cvRound(share * (area_.height - 1));
    }
    int Right() const { return area_.x + area_.width - 1; }
    int Bottom() const { return area_.y + area_.height - 1; }

    void Bars(const std::vector<cv::Point2d>& points) const {
        for (std::size_t i = 0; i < points.size();) {
            const int column = X(points[i].x);
            int low = Y(points[i].y), high = low;
            for (; i < points.size() && X(points[i].x) == column; ++i) {
                low = std::min(low, Y(points[i].y));
                high = std::max(high, Y(points[i].y));
            }
            cv::line(picture_, {column, low}, {column, high}, kCurve);
        }
    }

    cv::Mat& picture_;
    cv::Rect area_;
    Range x_, y_;
};

/// What a diagram shows: one of figure_kinds().
struct Subject {
    std::size_t kind;
    std::string title;
};

std::size_t kind_of(const std::string& key) {
    const auto& kinds = figure_kinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const FigureKind& kind) { return kind.key == key; });
    return static_cast<std::size_t>(found - kinds.begin());
}

std::vector<Subject> subjects_of(const GrabStatistics& statistics) {
    const bool is_absolute = statistics.clock == DeviceClock::Kind::kRead;
    const std::vector<Subject> all{
        {kind_of("interval_ms"), "interval between frames in ms"},
        {kind_of("latency_ms"), std::string("latency from the camera's time stamp to the callback in ms") +
                                    (is_absolute ? "" : ", beyond that of the fastest frame")},
        {kind_of("delivery_us"), "latency from the producer's event to the callback in us"},
    };
    std::vector<Subject> shown;
    for (const Subject& subject : all)
        if (statistics.spreads[subject.kind].count != 0) shown.push_back(subject);
    return shown;
}

void draw_subject(const Panel& panel, const GrabStatistics& statistics, const Subject& subject, bool has_time) {
    const Spread& spread = statistics.spreads[subject.kind];
    std::vector<cv::Point2d> points, crosses;
    for (std::size_t i = 0; i < statistics.frames.size(); ++i) {
        const FrameFigures& frame = statistics.frames[i];
        if (frame.timing.missing != 0 && i > 0) panel.Gap(statistics.frames[i - 1].time_s, frame.time_s);
        const std::optional<double> value = figure_kinds()[subject.kind].of(frame);
        if (!value) continue;
        points.emplace_back(frame.time_s, *value);
        if (frame.timing.incomplete) crosses.push_back(points.back());
    }
    const int digits = figure_kinds()[subject.kind].digits;
    panel.Frame(subject.title + "   (median " + fixed_number(spread.p50, digits) + ", 99 % " + fixed_number(spread.p99, digits) +
                    ", largest " + fixed_number(spread.max, digits) + ")",
                has_time);
    panel.Level(spread.p50, kMedian);
    panel.Level(spread.p99, kLate);
    panel.Curve(points);
    for (const cv::Point2d& point : points) panel.Arrow(point);
    for (const cv::Point2d& cross : crosses) panel.Cross(cross);
    for (std::size_t i = 1; i < statistics.frames.size() && statistics.gaps <= kMostGapLabels; ++i)
        if (const uint64_t missing = statistics.frames[i].timing.missing; missing != 0)
            panel.GapLabel(statistics.frames[i - 1].time_s, statistics.frames[i].time_s, missing);
    panel.Border();
}

/// From the right, in the line of the title.
void draw_legend(cv::Mat& picture) {
    struct Entry {
        const char* name;
        cv::Scalar colour;
        enum { kLine, kDashes, kBox, kMark } sign;
    };
    const Entry entries[]{{"incomplete", kIncomplete, Entry::kMark},
                          {"missing frames", kGap, Entry::kBox},
                          {"99 %", kLate, Entry::kDashes},
                          {"median", kMedian, Entry::kDashes},
                          {"frame", kCurve, Entry::kLine}};
    const int y = 22;
    int x = picture.cols - kRight;
    for (const Entry& entry : entries) {
        int base = 0;
        x -= cv::getTextSize(entry.name, kFont, kSmall, 1, &base).width;
        put_text(picture, entry.name, x, y);
        x -= 30;
        if (entry.sign == Entry::kLine) cv::line(picture, {x, y}, {x + 22, y}, entry.colour, 1, cv::LINE_AA);
        if (entry.sign == Entry::kLine) cv::circle(picture, {x + 11, y}, 2, entry.colour, cv::FILLED, cv::LINE_AA);
        if (entry.sign == Entry::kBox) cv::rectangle(picture, {x + 4, y - 6}, {x + 20, y + 6}, entry.colour, cv::FILLED);
        if (entry.sign == Entry::kMark)
            cv::drawMarker(picture, {x + 14, y}, entry.colour, cv::MARKER_TILTED_CROSS, 11, 2, cv::LINE_AA);
        for (int dash = 0; dash < 2 && entry.sign == Entry::kDashes; ++dash)
            cv::line(picture, {x + 12 * dash, y}, {x + 12 * dash + 8, y}, entry.colour, 1, cv::LINE_AA);
        x -= 20;
    }
}

cv::Mat draw(const GrabStatistics& statistics, const std::string& title, PlotSize size) {
    cv::Mat picture(size.height, size.width, CV_8UC3, kWhite);
    put_text(picture, title, kLeft, 22, Align::kBegin, kLarge);
    draw_legend(picture);
    const std::vector<Subject> subjects = subjects_of(statistics);
    if (subjects.empty()) {
        put_text(picture, "too few frames", size.width / 2, size.height / 2, Align::kCentre, kLarge);
        return picture;
    }
    const int count = static_cast<int>(subjects.size());
    const int height = (size.height - kTop - kBottom - (count - 1) * kBetween) / count;
    const Range time{0, std::max(statistics.frames.back().time_s, 1e-3)};
    for (int i = 0; i < count; ++i) {
        const Subject& subject = subjects[static_cast<std::size_t>(i)];
        const Spread& spread = statistics.spreads[subject.kind];
        const cv::Rect area(kLeft, kTop + i * (height + kBetween), size.width - kLeft - kRight, height);
        const Panel panel(picture, area, time, Range::Around(spread, height / 42));
        draw_subject(panel, statistics, subject, i + 1 == count);
    }
    return picture;
}

}  // namespace

void write_plot(const GrabStatistics& statistics, const std::string& title, PlotSize size, const std::string& file) {
    cv::Mat picture = draw(statistics, title, size);
    VL_IMAGE_HANDLE handle = nullptr;
    check_vl(vlMallocEx(static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height), VL_IMAGE_BGR8, picture.data,
                        picture.total() * picture.elemSize(), &handle),
             "vlMallocEx", file);
    const Image image(handle);
    write_image_file(handle, file, {});
}
