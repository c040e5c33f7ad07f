/// Storing images: which format, which encoder, and onto the disk in one step.
#pragma once

#include <VL.h>

#include <string_view>

#include "image/image.h"

namespace kiv::vl {

constexpr std::int32_t usual_setting = -1;

/// `path` is UTF-8. Throws an Error for formats, extensions and settings that do not exist, and when the file cannot be
/// written.
void store_image(const Image& image, std::string_view path, VL_FILE_FORMAT format, std::int32_t setting);

}  // namespace kiv::vl
