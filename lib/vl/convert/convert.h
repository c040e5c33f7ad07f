/// From raw buffers to images, and between types of images.
///
/// Buffers are worked through in strips of lines that stay in the processor's cache: unpack, demosaic, adjust, grey, and on to
/// the next strip. The result does not depend on where the strips are cut, nor on how many threads work on them.
#pragma once

#include <VL.h>

#include "convert/adjust.h"
#include "format/raw_view.h"
#include "image/image.h"

namespace kiv::vl {

struct ConvertOptions {
    VL_DEMOSAIC demosaic = VL_DEMOSAIC_BILINEAR;
    Adjustment adjustment;
    /// Lines of a strip; 0 takes what fits into the cache.
    std::uint32_t strip_lines = 0;
};

/// The type of image that shows a format without loss.
std::uint64_t image_type_of(const PixelFormat& format);

/// Fills an image of the same size. Throws an Error when the sizes differ.
void convert_raw(const RawView& raw, Image& image, const ConvertOptions& options);

/// Between images of the same size. `source` and `target` may be the same image.
void convert_image(const Image& source, Image& target);

}  // namespace kiv::vl
