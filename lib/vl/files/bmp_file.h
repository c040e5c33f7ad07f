/// Images as BMP files.
#pragma once

#include "files/encoded_file.h"
#include "image/image.h"

namespace kiv::vl {

/// 8 bits a channel, grey or colour: what an image has more is cut.
EncodedFile encode_bmp(const Image& image, int setting);

}  // namespace kiv::vl
