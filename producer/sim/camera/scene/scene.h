/// What stands in front of the sensor: light on each of its pixels, before exposure, noise and everything else that a camera
/// adds. 65535 is a white surface under the nominal light.
#pragma once

#include <array>
#include <cstdint>

#include "settings.h"

namespace kivsim {

class Scene {
public:
    /// Rows of red, green and blue; a monochrome scene has its one row in the first. Null: not wanted.
    using Rows = std::array<uint16_t*, 3>;

    virtual ~Scene() = default;
    /// The scene as it is at `time_ns`, for the `frame`-th frame. Called before the rows of a frame are fetched.
    virtual void Prepare(const ImageSettings& settings, uint64_t frame, uint64_t time_ns) = 0;
    /// Pixels x .. x + count - 1 of row y of the sensor, unbinned.
    virtual void Row(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) = 0;
    /// Its values were recorded, not simulated: the sensor adds neither noise nor vignetting, and factory settings give them
    /// back unchanged.
    virtual bool Recorded() const = 0;
};

/// Evenly distributed bits that depend on the input only: the camera's random numbers are the same in every run.
constexpr uint32_t hash32(uint32_t x) {
    x = (x ^ (x >> 16)) * 0x7FEB352DU;
    x = (x ^ (x >> 15)) * 0x846CA68BU;
    return x ^ (x >> 16);
}
constexpr uint32_t hash32(uint32_t a, uint32_t b) { return hash32(a ^ (hash32(b) + 0x9E3779B9U)); }

}  // namespace kivsim
