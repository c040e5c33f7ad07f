/// The sensor: collects light for the time of the exposure, counts electrons with the noise that they have, and converts them to
/// 12 bits with gain, white balance and black level. Binning and mirroring happen here, as on a chip.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/scene.h"
#include "settings.h"

namespace kivsim {

class Sensor {
public:
    explicit Sensor(uint32_t seed);

    /// Prepares for the rows of a frame of these settings; they stay valid until the next call.
    void Begin(const ImageSettings& settings, Scene& scene, uint64_t frame);
    /// Row `y` of the image: a sample of 12 bits for each pixel, or three for a format that has them.
    void Row(uint32_t y, std::vector<uint16_t>& samples);

private:
    void Collect(uint32_t y, unsigned channels);
    void Develop(uint32_t y, unsigned stream, const float* light, const float* factor, const float* gain, uint16_t* out);
    void Mosaic(uint32_t y, std::vector<uint16_t>& samples);
    void Full(uint32_t y, std::vector<uint16_t>& samples);

    uint32_t seed_;
    std::vector<float> noise_;  ///< normally distributed

    const ImageSettings* settings_ = nullptr;
    Scene* scene_ = nullptr;
    uint64_t frame_ = 0;
    unsigned channels_ = 1;
    uint32_t binned_ = 1;  ///< pixels of the sensor in one of the image
    float black_ = 0;
    float read_noise2_ = 0;       ///< of one pixel of the image, electrons squared
    std::vector<float> shade_x_;  ///< share of the light that is lost, by column
    std::vector<float> factor_[3],
        gain_[3];                    ///< by column: electrons per light, numbers per electron; [parity of the row] or [channel]
    std::vector<uint16_t> line_[3];  ///< light on a row of the sensor
    std::vector<float> light_[3];    ///< the same, binned
    std::vector<float> mixed_;       ///< light behind the colour filters of a row
    std::vector<uint16_t> developed_[3];
};

}  // namespace kivsim
