// How close demosaicing comes to what stood before the camera: the simulated camera's belt, seen through each filter without
// noise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "camera.h"
#include "convert/convert.h"
#include "scene/belt_scene.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t width = 1224;
constexpr std::uint32_t height = 1024;

class BeltPicture {
public:
    BeltPicture() {
        kivsim::CameraConfig config;
        config.color = true;
        config.sensor_width = width;
        config.sensor_height = height;
        kivsim::BeltScene scene(config);
        kivsim::ImageSettings settings;
        settings.sensor_width = settings.width = width;
        settings.sensor_height = settings.height = height;
        settings.color = true;
        settings.motion_blur = false;
        scene.Prepare(settings, 0, 1'000'000'000);
        for (auto& plane : planes_) plane.resize(std::size_t{width} * height);
        for (std::uint32_t y = 0; y < height; ++y) {
            const std::size_t at = std::size_t{y} * width;
            scene.Row(y, 0, width, {planes_[0].data() + at, planes_[1].data() + at, planes_[2].data() + at});
        }
    }

    /// In the order red, green, blue.
    std::uint8_t Value(std::uint32_t x, std::uint32_t y, std::size_t colour) const {
        return static_cast<std::uint8_t>(planes_[colour][std::size_t{y} * width + x] >> 8);
    }
    std::vector<std::uint8_t> Through(const char* filter) const {
        std::vector<std::uint8_t> mosaic;
        for (std::uint32_t y = 0; y < height; ++y)
            for (std::uint32_t x = 0; x < width; ++x) {
                const char colour = filter[y % 2 * 2 + x % 2];
                mosaic.push_back(Value(x, y, colour == 'R' ? 0 : colour == 'G' ? 1 : 2));
            }
        return mosaic;
    }
    double PeakSignalToNoise(const Image& image) const {
        double squares = 0;
        for (std::uint32_t y = 0; y < height; ++y)
            for (std::uint32_t x = 0; x < width; ++x)
                for (std::size_t c = 0; c < 3; ++c) {
                    const double error = image.Line(y)[3 * x + 2 - c] - Value(x, y, c);
                    squares += error * error;
                }
        return 10 * std::log10(255.0 * 255.0 * 3 * width * height / squares);
    }

private:
    std::vector<std::uint16_t> planes_[3];
};

TEST(DemosaicQuality, BestComesCloseToTheSceneThroughEveryFilter) {
    const BeltPicture picture;
    const struct {
        std::uint32_t code;
        const char* filter;
    } filters[] = {{0x01080008, "GRBG"}, {0x01080009, "RGGB"}, {0x0108000A, "GBRG"}, {0x0108000B, "BGGR"}};
    for (const auto& [code, filter] : filters) {
        const auto mosaic = picture.Through(filter);
        double reached[3];
        for (VL_DEMOSAIC quality : {VL_DEMOSAIC_BILINEAR, VL_DEMOSAIC_EDGE_AWARE, VL_DEMOSAIC_BEST}) {
            Image image(width, height, VL_IMAGE_BGR8);
            convert_raw(RawView(pixel_format(code), width, height, 0, mosaic.data(), mosaic.size()), image, {quality, {}, 0});
            reached[quality] = picture.PeakSignalToNoise(image);
        }
        EXPECT_GE(reached[VL_DEMOSAIC_BEST], 36) << filter;
        EXPECT_GT(reached[VL_DEMOSAIC_BEST], reached[VL_DEMOSAIC_EDGE_AWARE]) << filter;
        EXPECT_GT(reached[VL_DEMOSAIC_EDGE_AWARE], reached[VL_DEMOSAIC_BILINEAR]) << filter;
        RecordProperty(filter, std::to_string(reached[VL_DEMOSAIC_BEST]));
        std::printf("%s: bilinear %.2f dB, edge-aware %.2f dB, best %.2f dB\n", filter, reached[0], reached[1], reached[2]);
    }
}

}  // namespace
}  // namespace kiv::vl
