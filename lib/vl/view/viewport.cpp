#include "view/viewport.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "convert/colour_steps.h"

namespace kiv::vl {
namespace {

/// Along one side: the middle where the image is smaller than the view, no further than its ends where it is larger.
double settled(double offset, int image, double visible) {
    if (image <= visible) return (image - visible) / 2;
    return std::clamp(offset, 0.0, image - visible);
}

/// Along one side: whole pixels of the image that are seen, and where they come to lie in the view.
struct Span {
    int from, to;            ///< of the image
    int drawn_at, drawn_to;  ///< of the view; may reach beyond its ends by a part of a pixel
    bool Empty() const { return from >= to || drawn_at >= drawn_to; }
};

Span visible(double offset, double zoom, int image, int view) {
    Span span;
    span.from = std::clamp(static_cast<int>(std::floor(offset)), 0, image);
    span.to = std::clamp(static_cast<int>(std::ceil(offset + view / zoom)), 0, image);
    span.drawn_at = static_cast<int>(std::lround((span.from - offset) * zoom));
    span.drawn_to = static_cast<int>(std::lround((span.to - offset) * zoom));
    return span;
}

}  // namespace

void Viewport::SetViewSize(int width, int height) {
    view_width_ = std::max(width, 1);
    view_height_ = std::max(height, 1);
    Settle();
}

void Viewport::SetImageSize(int width, int height) {
    image_width_ = width;
    image_height_ = height;
    Settle();
}

void Viewport::SetMode(std::int32_t mode) {
    mode_ = mode;
    if (mode == VL_ZOOM_ONE_TO_ONE) ZoomAround(view_width_ / 2.0, view_height_ / 2.0, 1 / zoom_);
    mode_ = mode;
    Settle();
}

void Viewport::SetOffset(double x, double y) {
    if (mode_ == VL_ZOOM_FIT) return;
    x_ = x;
    y_ = y;
    Settle();
}

void Viewport::SetOffsetAndZoom(double x, double y, double zoom) {
    mode_ = VL_ZOOM_FREE;
    zoom_ = zoom;
    SetOffset(x, y);
}

void Viewport::ZoomAround(double view_x, double view_y, double factor) {
    const double zoom = std::clamp(zoom_ * factor, least_zoom, most_zoom);
    const double image_x = x_ + view_x / zoom_;
    const double image_y = y_ + view_y / zoom_;
    SetOffsetAndZoom(image_x - view_x / zoom, image_y - view_y / zoom, zoom);
}

void Viewport::Settle() {
    if (mode_ == VL_ZOOM_FIT)
        zoom_ = std::clamp(
            std::min(static_cast<double>(view_width_) / image_width_, static_cast<double>(view_height_) / image_height_),
            least_zoom, most_zoom);
    x_ = settled(x_, image_width_, view_width_ / zoom_);
    y_ = settled(y_, image_height_, view_height_ / zoom_);
}

void draw(const Image* image, const Viewport& viewport, bool smooth, std::uint32_t background, cv::Mat& canvas) {
    canvas.setTo(cv::Scalar(background & 0xFF, background >> 8 & 0xFF, background >> 16 & 0xFF, 255));
    if (image == nullptr) return;
    const Span across = visible(viewport.X(), viewport.Zoom(), static_cast<int>(image->Width()), canvas.cols);
    const Span down = visible(viewport.Y(), viewport.Zoom(), static_cast<int>(image->Height()), canvas.rows);
    if (across.Empty() || down.Empty()) return;

    const cv::Mat part = mat_of(*image)(cv::Rect(across.from, down.from, across.to - across.from, down.to - down.from));
    cv::Mat scaled;
    const cv::Size size(across.drawn_to - across.drawn_at, down.drawn_to - down.drawn_at);
    const int larger = smooth ? cv::INTER_LINEAR : cv::INTER_NEAREST;
    cv::resize(part, scaled, size, 0, 0, viewport.Zoom() < 1 ? cv::INTER_AREA : larger);

    const cv::Rect place(across.drawn_at, down.drawn_at, size.width, size.height);
    const cv::Rect seen = place & cv::Rect(0, 0, canvas.cols, canvas.rows);
    if (seen.empty()) return;
    cv::Mat target = canvas(seen);
    place_pixels(scaled(seen - place.tl()), image->IsColour() ? "BGR" : "Y", target);
}

}  // namespace kiv::vl
