#include "image/image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

#include "core/error.h"
#include "image/dib_header.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t longest_side = 65535;
constexpr std::uint64_t most_bytes = std::uint64_t{2} << 30;

constexpr std::uint64_t types[] = {VL_IMAGE_MONO8, VL_IMAGE_MONO16, VL_IMAGE_BGR8, VL_IMAGE_BGR16, VL_IMAGE_BGRA8};

}  // namespace

void Image::Release::operator()(std::uint8_t* data) const noexcept { std::free(data); }  // NOLINT: taken by calloc

Image::Image(Shape, std::uint32_t width, std::uint32_t height, std::uint64_t type) : width_(width), height_(height), type_(type) {
    if (std::find(std::begin(types), std::end(types), type) == std::end(types))
        throw Error(VL_ST_NOT_IMPLEMENTED, "there are no images of type " + code_text(type));
    if (width == 0 || height == 0 || width > longest_side || height > longest_side)
        throw Error(VL_ST_INVALID_PARAMETER, "an image of " + size_text(width, height) + ": sides are 1 to 65535 pixels");
    if (std::uint64_t{LineBytes()} * height > most_bytes)
        throw Error(VL_ST_INVALID_PARAMETER, "an image of " + size_text(width, height) + " is larger than 2 GiB");
    significant_bits_ = 8 * BytesPerChannel();
    stride_ = static_cast<std::ptrdiff_t>(LineBytes());
}

Image::Image(std::uint32_t width, std::uint32_t height, std::uint64_t type) : Image(Shape{}, width, height, type) {
    Allocate(Bytes());
    top_ = memory_;
}

Image::Image(std::uint32_t width, std::uint32_t height, std::uint64_t type, void* buffer, std::uint64_t size)
    : Image(Shape{}, width, height, type) {
    if (size < Bytes())
        throw Error(VL_ST_INVALID_BUFFER_SIZE, "an image of " + size_text(width, height) + " of this type needs " +
                                                   std::to_string(Bytes()) + " bytes, the buffer has " + std::to_string(size));
    if (reinterpret_cast<std::uintptr_t>(buffer) % BytesPerChannel() != 0)
        throw Error(VL_ST_INVALID_PARAMETER, "16-bit values need a buffer at an even address");
    memory_ = top_ = static_cast<std::uint8_t*>(buffer);
    memory_size_ = Bytes();
}

Image Image::Dib(std::uint32_t width, std::uint32_t height, std::uint64_t type) {
    Image image(Shape{}, width, height, type);
    const DibHeader header = make_dib_header(width, height, image.Channels());
    const std::size_t line = (image.LineBytes() + 3) / 4 * 4;
    image.Allocate(header.size() + line * height);
    std::memcpy(image.memory_, header.data(), header.size());
    image.is_dib_ = true;
    image.stride_ = -static_cast<std::ptrdiff_t>(line);
    image.top_ = image.memory_ + header.size() + line * (height - 1);
    return image;
}

void Image::Allocate(std::size_t bytes) {
    // calloc takes large images from the system, whose pages are 0 already; clearing them again would cost as much as a
    // conversion.
    owned_.reset(static_cast<std::uint8_t*>(std::calloc(bytes, 1)));  // NOLINT
    if (!owned_) throw std::bad_alloc();
    memory_ = owned_.get();
    memory_size_ = bytes;
}

std::size_t Image::Bytes() const { return static_cast<std::size_t>(std::abs(stride_)) * height_; }

void Image::SetSignificantBits(unsigned bits) { significant_bits_ = std::min(bits, 8 * BytesPerChannel()); }

VL_IMAGE Image::Record() const { return {type_, width_, height_, top_, stride_, memory_, memory_size_, is_dib_ ? 1u : 0u, 0}; }

void require_same_size(std::uint32_t width, std::uint32_t height, const Image& target) {
    if (target.Width() != width || target.Height() != height)
        throw Error(VL_ST_INVALID_PARAMETER, "the source has " + size_text(width, height) + " pixels, the target image " +
                                                 size_text(target.Width(), target.Height()));
}

void copy_pixels(const Image& source, Image& target) {
    for (std::uint32_t y = 0; y < source.Height(); ++y) std::memcpy(target.Line(y), source.Line(y), source.LineBytes());
}

const Image& upright(const Image& image, std::optional<Image>& copy) {
    if (!image.IsDib()) return image;
    copy.emplace(image.Width(), image.Height(), image.Type());
    copy_pixels(image, *copy);
    copy->SetSignificantBits(image.SignificantBits());
    return *copy;
}

}  // namespace kiv::vl
