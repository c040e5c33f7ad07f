#include "files/eight_bit.h"

#include "convert/convert.h"

namespace kiv::vl {

const Image& eight_bit(const Image& image, std::optional<Image>& copy) {
    if (image.Type() == VL_IMAGE_MONO8 || image.Type() == VL_IMAGE_BGR8) return image;
    copy.emplace(image.Width(), image.Height(), image.IsColour() ? VL_IMAGE_BGR8 : VL_IMAGE_MONO8);
    convert_image(image, *copy);
    return *copy;
}

}  // namespace kiv::vl
