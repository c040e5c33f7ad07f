/// A raw buffer whose size has been checked against what it is said to hold: whoever has one may read all its components.
#pragma once

#include <kiv/image_info.h>

#include <cstddef>
#include <cstdint>

#include "format/pixel_format.h"

namespace kiv::vl {

class RawView {
public:
    /// Throws an Error for unknown formats, sides of 0 or above 65,535, incomplete groups of pixels, and buffers that are too
    /// small.
    explicit RawView(const K_IMAGE_INFO& raw);
    RawView(const PixelFormat& format, std::uint32_t width, std::uint32_t height, std::uint64_t padding, const void* data,
            std::uint64_t size);

    const PixelFormat& Format() const { return *format_; }
    std::uint32_t Width() const { return width_; }
    std::uint32_t Height() const { return height_; }
    /// From the first byte of the image to behind its last one.
    std::uint64_t ImageBytes() const { return image_bytes_; }
    std::size_t ComponentsPerLine() const { return components_per_line_; }

    /// Reads the components of one line as they are stored, in the low bits. `out` has room for ComponentsPerLine().
    void ReadLine(std::uint32_t line, unsigned plane, std::uint16_t* out) const;
    /// The same in the whole range of 8 bits.
    void ReadLine(std::uint32_t line, unsigned plane, std::uint8_t* out) const;

    /// Where a line of whole bytes begins. Only when IsLineAligned().
    const std::uint8_t* Line(std::uint32_t line, unsigned plane = 0) const;
    std::size_t Stride() const { return stride_; }
    /// False when the image is one run of bits, in which lines begin inside a byte.
    bool IsLineAligned() const { return line_aligned_; }

private:
    struct Place {
        const std::uint8_t* data;
        std::size_t component;
    };
    [[noreturn]] void RefuseSize(std::uint64_t size) const;
    std::uint64_t LineBits() const;
    template <class Component>
    void ReadSemiPlanar(std::uint32_t line, Component* out) const;
    Place PlaceOf(std::uint32_t line, unsigned plane) const;

    const PixelFormat* format_;
    std::uint32_t width_;
    std::uint32_t height_;
    const std::uint8_t* data_;
    std::size_t components_per_line_ = 0;
    std::size_t stride_ = 0;
    std::uint64_t image_bytes_ = 0;
    bool line_aligned_ = true;
};

}  // namespace kiv::vl
