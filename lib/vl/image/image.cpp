#include "image/image.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "core/error.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t longest_side = 65535;
constexpr std::uint64_t most_bytes = std::uint64_t{2} << 30;

bool is_image_type(std::uint64_t type) {
    return type == VL_IMAGE_MONO8 || type == VL_IMAGE_MONO16 || type == VL_IMAGE_BGR8 || type == VL_IMAGE_BGR16;
}

}  // namespace

void Image::Release::operator()(std::uint8_t* data) const noexcept { std::free(data); }  // NOLINT: taken by calloc

Image::Image(std::uint32_t width, std::uint32_t height, std::uint64_t type) : width_(width), height_(height), type_(type) {
    if (!is_image_type(type)) throw Error(VL_ST_NOT_IMPLEMENTED, "there are no images of type " + std::to_string(type));
    if (width == 0 || height == 0 || width > longest_side || height > longest_side)
        throw Error(VL_ST_INVALID_PARAMETER, "an image of " + size_text(width, height) + ": sides are 1 to 65535 pixels");
    if (Bytes() > most_bytes)
        throw Error(VL_ST_INVALID_PARAMETER, "an image of " + size_text(width, height) + " is larger than 2 GiB");
    significant_bits_ = 8 * BytesPerChannel();
    // calloc takes large images from the system, whose pages are 0 already; clearing them again would cost as much as a
    // conversion.
    data_.reset(static_cast<std::uint8_t*>(std::calloc(Bytes(), 1)));  // NOLINT
    if (!data_) throw std::bad_alloc();
}

void Image::SetSignificantBits(unsigned bits) { significant_bits_ = std::min(bits, 8 * BytesPerChannel()); }

}  // namespace kiv::vl
