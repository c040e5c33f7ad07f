/// Images as TIFF files.
#pragma once

#include "files/encoded_file.h"
#include "image/image.h"

namespace kiv::vl {

/// compression: 0 (none) to 9 (deflate). Throws an Error with libtiff's complaint.
EncodedFile encode_tiff(const Image& image, int compression);

}  // namespace kiv::vl
