#include "view/viewport.h"

#include <gtest/gtest.h>

namespace kiv::vl {
namespace {

Viewport viewport(int view_width, int view_height, int image_width, int image_height) {
    Viewport all;
    all.SetViewSize(view_width, view_height);
    all.SetImageSize(image_width, image_height);
    return all;
}

void expect_at(const Viewport& view, double x, double y, double zoom) {
    EXPECT_NEAR(view.X(), x, 1e-9);
    EXPECT_NEAR(view.Y(), y, 1e-9);
    EXPECT_NEAR(view.Zoom(), zoom, 1e-9);
}

TEST(Viewport, FitsAllOfAnImageIntoItsMiddle) {
    auto view = viewport(200, 100, 100, 100);
    expect_at(view, -50, 0, 1);
    view.SetViewSize(50, 100);
    expect_at(view, 0, -50, 0.5);
    view.SetOffset(10, 10);
    expect_at(view, 0, -50, 0.5);
    view.SetImageSize(5000, 5000);
    EXPECT_NEAR(view.Zoom(), Viewport::least_zoom, 1e-9);
}

TEST(Viewport, GoesNoFurtherThanTheImage) {
    auto view = viewport(100, 100, 400, 50);
    view.SetMode(VL_ZOOM_ONE_TO_ONE);
    expect_at(view, 150, -25, 1);  // what was in the middle stays there
    view.SetOffset(-7, 20);
    expect_at(view, 0, -25, 1);
    view.SetOffset(1000, 0);
    expect_at(view, 300, -25, 1);
    view.SetOffsetAndZoom(10.5, 3.25, 4);
    expect_at(view, 10.5, 3.25, 4);
    EXPECT_EQ(view.Mode(), VL_ZOOM_FREE);
    view.ZoomAround(50, 50, 2);
    expect_at(view, 10.5 + 50 / 4.0 - 50 / 8.0, 3.25 + 50 / 4.0 - 50 / 8.0, 8);
    view.ZoomAround(0, 0, 1000);
    EXPECT_NEAR(view.Zoom(), Viewport::most_zoom, 1e-9);
}

TEST(Viewport, DrawsPixelsWhereTheyBelong) {
    Image image(4, 2, VL_IMAGE_MONO8);
    for (std::uint32_t x = 0; x < 4; ++x) image.Line(0)[x] = image.Line(1)[x] = static_cast<std::uint8_t>(10 + 10 * x);
    auto view = viewport(40, 40, 4, 2);
    cv::Mat canvas(40, 40, CV_8UC4);
    const auto at = [&](int x, int y) { return canvas.at<cv::Vec4b>(y, x); };
    draw(&image, view, false, 0x112233, canvas);
    EXPECT_EQ(at(0, 9), (cv::Vec4b{0x33, 0x22, 0x11, 255}));
    EXPECT_EQ(at(39, 30), (cv::Vec4b{0x33, 0x22, 0x11, 255}));
    for (int x = 0; x < 40; ++x)
        for (int y : {10, 29}) {
            const auto grey = static_cast<std::uint8_t>(10 + x / 10 * 10);
            EXPECT_EQ(at(x, y), (cv::Vec4b{grey, grey, grey, 255})) << x;
        }
    view.SetOffsetAndZoom(0.5, 0, 20);  // begins in the middle of a pixel
    draw(&image, view, false, 0, canvas);
    EXPECT_EQ(at(9, 0)[0], 10);
    EXPECT_EQ(at(10, 0)[0], 20);
    EXPECT_EQ(at(39, 39)[0], 30);
    // Made smaller, every pixel counts.
    Image fine(100, 100, VL_IMAGE_BGR8);
    for (std::uint32_t y = 0; y < 100; ++y)
        for (std::uint32_t x = 0; x < 100; ++x) fine.Line(y)[3 * x + 2] = (x + y) % 2 == 0 ? 200 : 0;
    auto small = viewport(10, 10, 100, 100);
    cv::Mat little(10, 10, CV_8UC4);
    draw(&fine, small, false, 0, little);
    EXPECT_EQ(little.at<cv::Vec4b>(5, 5), (cv::Vec4b{0, 0, 100, 255}));
    draw(nullptr, small, false, 0x010203, little);
    EXPECT_EQ(little.at<cv::Vec4b>(5, 5), (cv::Vec4b{3, 2, 1, 255}));
}

}  // namespace
}  // namespace kiv::vl
