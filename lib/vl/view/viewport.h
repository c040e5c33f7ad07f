/// Which part of an image stands where in a view, and how it is drawn. Knows nothing of windows.
#pragma once

#include <VL.h>

#include <cstdint>
#include <opencv2/core/mat.hpp>

#include "image/image.h"

namespace kiv::vl {

class Viewport {
public:
    static constexpr double least_zoom = 1.0 / 64;
    static constexpr double most_zoom = 64;

    void SetViewSize(int width, int height);
    void SetImageSize(int width, int height);

    std::int32_t Mode() const { return mode_; }
    /// One to one and free keep the middle of the view where it is.
    void SetMode(std::int32_t mode);
    /// In image pixels. Without effect while the zoom is fit.
    void SetOffset(double x, double y);
    /// Makes the zoom free.
    void SetOffsetAndZoom(double x, double y, double zoom);
    /// Changes the zoom by a factor; what is at this place of the view stays there.
    void ZoomAround(double view_x, double view_y, double factor);

    /// The image's coordinates of the view's upper left corner; negative where the image is smaller than the view.
    double X() const { return x_; }
    double Y() const { return y_; }
    /// Pixels of the view per pixel of the image.
    double Zoom() const { return zoom_; }

private:
    void Settle();

    int view_width_ = 1;
    int view_height_ = 1;
    int image_width_ = 1;
    int image_height_ = 1;
    std::int32_t mode_ = VL_ZOOM_FIT;
    double x_ = 0;
    double y_ = 0;
    double zoom_ = 1;
};

/// Draws what the viewport shows of an image (null: nothing) over all of `canvas`, four bytes a pixel: blue, green, red, 255.
void draw(const Image* image, const Viewport& viewport, bool smooth, std::uint32_t background, cv::Mat& canvas);

}  // namespace kiv::vl
