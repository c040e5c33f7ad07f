/// A conveyor belt that carries parts of four kinds past the camera. It moves with the device time, so the same time shows the
/// same picture; every part is decided by its number, so the belt never ends and never repeats.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "camera.h"
#include "scene.h"
#include "sprite.h"

namespace kivsim {

class BeltScene final : public Scene {
public:
    /// Draws the parts; that takes a moment on a large sensor.
    explicit BeltScene(const CameraConfig& config);

    void Prepare(const ImageSettings& settings, uint64_t frame, uint64_t time_ns) override;
    void Row(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) override;
    bool Recorded() const override { return false; }

private:
    struct Part {
        const Sprite* sprite;
        int64_t left, top;   ///< on the sensor
        std::string number;  ///< printed on its label
    };

    void DrawTile();
    void PlaceParts();
    void DrawRail(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) const;
    void DrawBelt(uint32_t y, int64_t x, uint32_t count, const Rows& rows) const;
    void DrawSeam(int64_t x, uint32_t count, const Rows& rows) const;
    void PrintNumber(const Part& part, uint32_t row, int64_t x, uint32_t count, const Rows& rows) const;
    void Blur(uint32_t count, const Rows& rows);

    uint32_t width_, height_, planes_, seed_;
    double px_per_mm_;
    uint32_t rail_;    ///< rows of metal at the top and at the bottom
    double diameter_;  ///< of a part, in pixels
    std::vector<Sprite> sprites_;
    std::vector<uint16_t> tile_[3];     ///< one repeat of the belt's texture
    std::vector<uint16_t> row_light_;   ///< of the belt: wear along it, and the shadow of the rails
    std::vector<uint16_t> scratch_[3];  ///< a row before it is blurred

    int64_t shift_ = 0;  ///< how far the belt has moved, in pixels
    uint32_t blur_ = 1;  ///< pixels that the belt moves during the exposure
    std::vector<Part> parts_;
};

}  // namespace kivsim
