/// Images as PNG files.
#pragma once

#include "files/encoded_file.h"
#include "image/image.h"

namespace kiv::vl {

/// compression: 0 (none) to 9. Throws an Error with libpng's complaint.
EncodedFile encode_png(const Image& image, int compression);

}  // namespace kiv::vl
