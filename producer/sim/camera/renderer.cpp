#include "renderer.h"

#include <algorithm>
#include <cstring>

#include "scene/belt_scene.h"
#include "scene/picture_scene.h"
#include "test_pattern.h"
#include "tone.h"

namespace kivsim {
namespace {

class Meter {
public:
    void Add(uint32_t y, Samples kind, const std::vector<uint16_t>& samples) {
        if (y % 16 > 1) return;  // two rows of 16: both rows of a mosaic
        for (size_t i = 0; i < samples.size(); ++i) {
            const size_t channel = kind == Samples::Mono ? 0 : kind == Samples::Rgb ? i % 3 : (i & 1) + (y & 1);
            sum_[channel] += samples[i];
            ++count_[channel];
        }
    }
    Brightness Result() const {
        Brightness result;
        result.valid = count_[0] != 0;
        for (size_t c = 0; c < 3; ++c) {
            const size_t from = count_[c] != 0 ? c : 0;
            if (count_[from] != 0) result.mean[c] = static_cast<double>(sum_[from]) / static_cast<double>(count_[from]);
        }
        return result;
    }

private:
    uint64_t sum_[3] = {0, 0, 0}, count_[3] = {0, 0, 0};
};

}  // namespace

Renderer::Renderer(const CameraConfig& config) : config_(config), sensor_(config.seed) {
    if (!config.image_folder.empty())
        scene_ = std::make_unique<PictureScene>(config.image_folder, config.sensor_width, config.sensor_height, config.color);
}

Brightness Renderer::Render(const ImageSettings& settings, uint64_t frame, uint64_t time_ns, std::span<std::byte> buffer) {
    const bool pattern = settings.pattern != TestPattern::Off;
    if (!pattern) {
        if (!scene_) scene_ = std::make_unique<BeltScene>(config_);
        scene_->Prepare(settings, frame, time_ns);
        sensor_.Begin(settings, *scene_, frame);
    }
    const Tone tone(settings);
    const size_t pitch = settings.format->LinePitch(settings.width);
    last_row_.resize(pitch);
    Meter meter;
    for (uint32_t y = 0; y < settings.height && !buffer.empty(); ++y) {
        if (pattern) {
            pattern_row(settings, frame, y, samples_);
        } else {
            sensor_.Row(y, samples_);
            meter.Add(y, settings.format->samples, samples_);
        }
        tone.Apply(y, samples_);
        const bool fits = buffer.size() >= pitch;
        write_row(settings.format->packing, samples_, fits ? buffer.data() : last_row_.data());
        if (!fits) std::memcpy(buffer.data(), last_row_.data(), buffer.size());
        buffer = buffer.subspan(std::min(pitch, buffer.size()));
    }
    return meter.Result();
}

}  // namespace kivsim
