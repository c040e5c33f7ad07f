/// The images that callers hold. A handle is the address of an image; one that is not in the list is refused without being looked
/// at.
#pragma once

#include <VL.h>

#include <memory>

#include "image/image.h"

namespace kiv::vl {

VL_IMAGE_HANDLE give_image(std::unique_ptr<Image> image);
/// Throws an Error for what is no living image.
Image& image_of(VL_IMAGE_HANDLE handle);
/// Takes the image back; throws like image_of.
std::unique_ptr<Image> take_image(VL_IMAGE_HANDLE handle);

}  // namespace kiv::vl
