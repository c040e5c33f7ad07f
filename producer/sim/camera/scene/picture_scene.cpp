#include "picture_scene.h"

#include <algorithm>
#include <stdexcept>

namespace kivsim {

PictureScene::PictureScene(const std::filesystem::path& folder, uint32_t sensor_width, uint32_t sensor_height, bool color)
    : files_(playable_files(folder)), width_(sensor_width), height_(sensor_height), color_(color), current_(files_.size()) {}

void PictureScene::Prepare(const ImageSettings&, uint64_t frame, uint64_t) {
    const size_t wanted = (frame + files_.size() - 1) % files_.size();  // frames count from 1
    if (wanted == current_) return;
    current_ = wanted;
    try {
        picture_ = read_picture(files_[wanted]);
    } catch (const std::runtime_error&) {
        picture_ = {};
    }
}

void PictureScene::Row(uint32_t y, uint32_t x, uint32_t count, const Rows& rows) {
    for (auto* row : rows)
        if (row) std::fill_n(row, count, uint16_t{0});
    const int64_t left = (int64_t{width_} - picture_.width) / 2, top = (int64_t{height_} - picture_.height) / 2;
    const int64_t line = int64_t{y} - top;
    if (line < 0 || line >= picture_.height) return;
    const int64_t begin = std::max<int64_t>(left, x), end = std::min<int64_t>(left + picture_.width, int64_t{x} + count);
    for (int64_t i = begin; i < end; ++i) {
        const auto px = static_cast<uint32_t>(i - left), py = static_cast<uint32_t>(line);
        for (uint32_t c = 0; c < rows.size(); ++c) {
            if (!rows[c]) continue;
            const bool grey_of_color = !color_ && picture_.planes == 3;
            rows[c][i - x] =
                grey_of_color
                    ? static_cast<uint16_t>(
                          (77U * picture_.At(px, py, 0) + 150U * picture_.At(px, py, 1) + 29U * picture_.At(px, py, 2)) >> 8)
                    : picture_.At(px, py, c);
        }
    }
}

}  // namespace kivsim
