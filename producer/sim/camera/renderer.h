/// From settings and a moment to the bytes of an image.
#pragma once

#include <memory>
#include <span>

#include "camera.h"
#include "scene/scene.h"
#include "sensor.h"

namespace kivsim {

/// What the automatic functions look at: mean of a sparse choice of samples, in numbers of 12 bits, without the test pattern.
struct Brightness {
    double mean[3] = {0, 0, 0};  ///< red, green, blue; grey in all three
    bool valid = false;
};

class Renderer {
public:
    /// Looks into the folder of pictures, if one is set: throws std::runtime_error when nothing in it can be played.
    explicit Renderer(const CameraConfig& config);

    /// Writes whole rows while they fit into the buffer, then as much of the next as fits.
    Brightness Render(const ImageSettings& settings, uint64_t frame, uint64_t time_ns, std::span<std::byte> buffer);

private:
    CameraConfig config_;
    std::unique_ptr<Scene> scene_;  ///< the belt is drawn when it is first seen
    Sensor sensor_;
    std::vector<uint16_t> samples_;
    std::vector<std::byte> last_row_;
};

}  // namespace kivsim
