/// The images that callers hold. A handle is the address of the image's record; one that is not in the list is refused without
/// being looked at.
#pragma once

#include <VL.h>

#include <memory>

#include "image/image.h"

namespace kiv::vl {

VL_IMAGE_HANDLE give_image(Image image);
/// Throws an Error for what is no living image. The image lives at least as long as what is returned.
std::shared_ptr<Image> image_of(VL_IMAGE_HANDLE handle);
/// Ends an image; throws like image_of.
void free_image(VL_IMAGE_HANDLE handle);

}  // namespace kiv::vl
