/// What the registers say about images and their timing, read in one go, so that a frame is made from one consistent state.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "chunk_data.h"
#include "pixel_format.h"
#include "register_file.h"

namespace kivsim {

enum class TestPattern : uint32_t {
    Off,
    Black,
    White,
    GreyHorizontalRamp,
    GreyVerticalRamp,
    GreyHorizontalRampMoving,
    GreyVerticalRampMoving,
    HorizontalLineMoving,
    VerticalLineMoving,
    ColorBar,
    FrameCounter
};

constexpr uint32_t kFullScale = 4095;  ///< of the converter: 12 bits

struct ImageSettings {
    uint32_t sensor_width = 0, sensor_height = 0;
    bool color = false;
    uint32_t width = 0, height = 0, offset_x = 0, offset_y = 0;  ///< in pixels after binning
    uint32_t binning_x = 1, binning_y = 1;
    bool sum_x = false, sum_y = false;  ///< binned pixels are added instead of averaged
    bool reverse_x = false, reverse_y = false;
    const PixelFormatRow* format = nullptr;
    TestPattern pattern = TestPattern::Off;
    double exposure_us = 0;
    std::array<double, 3> gain{1, 1, 1};     ///< red, green, blue; factor after the sensor, white balance included
    std::array<double, 3> nominal{1, 1, 1};  ///< the same with factory settings
    double black_level = 0;
    double gamma = 1;
    double belt_speed = 0;  ///< millimetres a second
    double light = 1;       ///< 1: as the light was set up
    bool noise = true, vignetting = true, motion_blur = true;
    std::array<bool, 4> lut_enable{};  ///< luminance, red, green, blue
    std::vector<uint16_t> luts;        ///< four tables of 4096 values; empty when none is enabled

    ChunkSettings chunks;

    bool operator==(const ImageSettings&) const = default;
    size_t ImageSize() const { return format->LinePitch(width) * height; }
    size_t PayloadSize() const { return ImageSize() + chunks.TailSize(); }
};

struct TriggerSettings {
    bool on = false;
    uint32_t source = 0;
    uint32_t activation = 0;
    uint64_t delay_ns = 0;
};

struct Timing {
    uint64_t exposure_ns = 0;
    uint64_t shortest_ns = 0;  ///< between two frames: exposure, read-out and the limit of the link
    uint64_t period_ns = 0;    ///< between two frames that nothing triggers
    uint32_t mode = 0;         ///< AcquisitionMode: 0 continuous, 1 single frame, 2 multi frame
    uint32_t frame_count = 1, burst_count = 1;
    TriggerSettings frame, burst;
    uint64_t part_ns = 0;  ///< between two parts at the light barrier; 0: the belt stands still
};

ImageSettings read_image_settings(const RegisterFile& registers);
Timing read_timing(const RegisterFile& registers);

/// Largest width and height with the present binning.
uint32_t width_max(const RegisterFile& registers);
uint32_t height_max(const RegisterFile& registers);

/// The belt as it lies in front of the sensor: the whole width of the sensor sees this much, and parts follow at this distance.
constexpr double kFieldOfViewMm = 400.0;
constexpr double kPartPitchMm = 96.0;

}  // namespace kivsim
