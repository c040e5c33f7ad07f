/// Reading the image files that a camera can play: PNG, TIFF, and the binary PGM and PPM.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace kivsim {

struct Picture {
    uint32_t width = 0, height = 0;
    uint32_t planes = 1;           ///< 1 grey, 3 red green blue
    std::vector<uint16_t> values;  ///< row by row, the planes of a pixel together; 65535 is white

    uint16_t At(uint32_t x, uint32_t y, uint32_t plane) const {
        return values[(size_t{y} * width + x) * planes + (planes == 1 ? 0 : plane)];
    }
};

/// The files of the folder that can be played, in the order of their names. Throws std::runtime_error when there is none.
std::vector<std::filesystem::path> playable_files(const std::filesystem::path& folder);

/// Throws std::runtime_error that names the file and says what is wrong with it. Pictures of more than 64 million pixels are
/// refused.
Picture read_picture(const std::filesystem::path& file);

}  // namespace kivsim
