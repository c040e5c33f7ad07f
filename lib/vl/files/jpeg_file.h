/// Images as JPEG files.
#pragma once

#include "files/encoded_file.h"
#include "image/image.h"

namespace kiv::vl {

/// quality: 1 to 100. 8 bits a channel, grey or colour: what an image has more is cut. Throws an Error with the encoder's
/// complaint.
EncodedFile encode_jpeg(const Image& image, int quality);

}  // namespace kiv::vl
