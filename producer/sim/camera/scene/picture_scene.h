/// Pictures from files in place of the belt: each frame shows the next file of a folder, in the middle of the sensor, cut or
/// framed in black where its size is another one.
#pragma once

#include "image_files.h"
#include "scene.h"

namespace kivsim {

class PictureScene final : public Scene {
public:
    /// Throws std::runtime_error when the folder holds nothing to play.
    PictureScene(const std::filesystem::path& folder, uint32_t sensor_width, uint32_t sensor_height, bool color);

    /// A file that cannot be read shows as black: a camera does not stop because of what it looks at.
    void Prepare(const ImageSettings& settings, uint64_t frame, uint64_t time_ns) override;
    void Row(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) override;
    bool Recorded() const override { return true; }

private:
    std::vector<std::filesystem::path> files_;
    uint32_t width_, height_;
    bool color_;
    size_t current_;  ///< index of what picture_ shows
    Picture picture_;
};

}  // namespace kivsim
