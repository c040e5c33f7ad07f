/// What kiv view draws beside the image: the bar, the histogram and the help. Pictures of 8 bits, blue, green and red.
#pragma once

#include <VL.h>

#include <array>
#include <cstdint>
#include <opencv2/core/mat.hpp>
#include <string>
#include <utility>
#include <vector>

struct BarTexts {
    std::string badge;               ///< on a ground of its own, before all others; may be empty
    std::vector<std::string> facts;  ///< from the left
    std::string message;             ///< highlighted, at the right; may be empty
    std::string right;               ///< where there is no message, and as long as there is room for it
};

cv::Mat draw_bar(const BarTexts& texts, cv::Size size);

/// Of an image of 8 bits: how often each value occurs, and the shares of pixels that are black and white.
struct Tones {
    bool is_colour = false;
    std::array<std::array<uint64_t, 256>, 3> bins{};  ///< red, green, blue; of a grey image all alike
};

/// Throws a ToolError when the imaging library fails.
Tones tones_of(VL_IMAGE_HANDLE image);
cv::Mat draw_histogram(const Tones& tones);

/// Rows of a key and what it does.
cv::Mat draw_help(const std::vector<std::pair<std::string, std::string>>& rows);
