#include "format/raw_view.h"

#include "core/error.h"
#include "unpack/unpack.h"

namespace kiv::vl {
namespace {

constexpr std::uint32_t longest_side = 65535;
constexpr std::uint64_t largest_padding = 1u << 30;

std::string describe(const PixelFormat& format, std::uint32_t width, std::uint32_t height) {
    return size_text(width, height) + " " + format.name;
}

}  // namespace

RawView::RawView(const K_IMAGE_INFO& raw)
    : RawView(pixel_format(raw.pixel_type), raw.width, raw.height, raw.padding_x, raw.image_data, raw.image_size) {}

// Sides are limited to 16 bits and padding to 30, so that none of the products below can overflow 64.
RawView::RawView(const PixelFormat& format, std::uint32_t width, std::uint32_t height, std::uint64_t padding, const void* data,
                 std::uint64_t size)
    : format_(&format), width_(width), height_(height), data_(static_cast<const std::uint8_t*>(data)) {
    if (width == 0 || height == 0 || width > longest_side || height > longest_side)
        throw Error(VL_ST_INVALID_PARAMETER, describe(format, width, height) + ": sides are 1 to 65535 pixels");
    if (padding > largest_padding)
        throw Error(VL_ST_INVALID_PARAMETER, "a padding of " + std::to_string(padding) + " bytes between lines is not sensible");
    if (width % format.PixelsPerGroup() != 0)
        throw Error(VL_ST_INVALID_PARAMETER, describe(format, width, height) + ": the width is no multiple of " +
                                                 std::to_string(format.PixelsPerGroup()) + ", which share their colours");
    components_per_line_ = width / format.PixelsPerGroup() * format.ComponentsPerGroup();

    const std::uint64_t line_bits = LineBits();
    const std::uint64_t line_bytes = (line_bits + 7) / 8;
    stride_ = static_cast<std::size_t>(line_bytes + padding);
    if (format.packing == Packing::SemiPlanar) {
        const std::uint64_t pair_lines = (std::uint64_t{height} + format.LinesPerGroup() - 1) / format.LinesPerGroup();
        image_bytes_ = (height + pair_lines - 1) * stride_ + line_bytes;
        if (size < image_bytes_) RefuseSize(size);
        return;
    }
    image_bytes_ = (std::uint64_t{height} * format.Planes() - 1) * stride_ + line_bytes;
    if (size >= image_bytes_) return;

    const std::uint64_t run_bytes = (line_bits * height + 7) / 8;
    if (padding != 0 || line_bits % 8 == 0 || size < run_bytes) RefuseSize(size);
    line_aligned_ = false;
    image_bytes_ = run_bytes;
}

void RawView::RefuseSize(std::uint64_t size) const {
    const std::uint64_t padding = stride_ - (LineBits() + 7) / 8;
    throw Error(VL_ST_INVALID_BUFFER_SIZE, describe(*format_, width_, height_) + " with " + std::to_string(padding) +
                                               " bytes between lines needs " + std::to_string(image_bytes_) +
                                               " bytes, the buffer has " + std::to_string(size));
}

std::uint64_t RawView::LineBits() const {
    if (format_->packing == Packing::SemiPlanar) return std::uint64_t{width_} * 8;
    return std::uint64_t{width_} * format_->BitsPerPixel() / format_->Planes();
}

const std::uint8_t* RawView::Line(std::uint32_t line, unsigned plane) const {
    return data_ + (std::uint64_t{plane} * height_ + line) * stride_;
}

RawView::Place RawView::PlaceOf(std::uint32_t line, unsigned plane) const {
    if (line_aligned_) return {Line(line, plane), 0};
    return {data_, components_per_line_ * line};
}

template <class Component>
void RawView::ReadSemiPlanar(std::uint32_t line, Component* out) const {
    const std::uint8_t* lumas = Line(line);
    const std::uint8_t* pairs = Line(height_ + line / format_->LinesPerGroup());
    for (std::uint32_t x = 0; x < width_; ++x, out += 2) {
        out[0] = lumas[x];
        out[1] = pairs[x];
    }
}

void RawView::ReadLine(std::uint32_t line, unsigned plane, std::uint16_t* out) const {
    if (format_->packing == Packing::SemiPlanar) return ReadSemiPlanar(line, out);
    const Place place = PlaceOf(line, plane);
    unpack(*format_, place.data, place.component, components_per_line_, out);
}

void RawView::ReadLine(std::uint32_t line, unsigned plane, std::uint8_t* out) const {
    if (format_->packing == Packing::SemiPlanar) return ReadSemiPlanar(line, out);
    const Place place = PlaceOf(line, plane);
    unpack_to_8(*format_, place.data, place.component, components_per_line_, out);
}

}  // namespace kiv::vl
