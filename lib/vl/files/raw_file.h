/// Raw buffers as files: a header that tells what the bytes are, then the bytes.
#pragma once

#include <VL.h>

#include <string_view>

#include "files/encoded_file.h"

namespace kiv::vl {

/// Header and data. Of a format that is known the data is exactly the image, of others the whole buffer.
EncodedFile encode_raw(const K_IMAGE_INFO& raw);

/// Reads the file at `path` (UTF-8) by the rule of vlLoadFromFileRAW. Throws an Error for what is no such file or not a whole
/// one.
void load_raw(std::string_view path, K_IMAGE_INFO& raw);

}  // namespace kiv::vl
