/// Images that the library owns: one of four types, lines one behind the other without gaps.
#pragma once

#include <VL.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kiv::vl {

class Image {
public:
    /// All pixels are 0. Throws an Error for other types, sides of 0 or above 65,535, and more than 2 GiB.
    Image(std::uint32_t width, std::uint32_t height, std::uint64_t type);

    std::uint64_t Type() const { return type_; }
    std::uint32_t Width() const { return width_; }
    std::uint32_t Height() const { return height_; }
    bool IsDeep() const { return type_ == VL_IMAGE_MONO16 || type_ == VL_IMAGE_BGR16; }
    bool IsColour() const { return type_ == VL_IMAGE_BGR8 || type_ == VL_IMAGE_BGR16; }
    unsigned Channels() const { return IsColour() ? 3 : 1; }
    unsigned BytesPerChannel() const { return IsDeep() ? 2 : 1; }
    std::size_t Stride() const { return std::size_t{width_} * Channels() * BytesPerChannel(); }
    std::size_t Bytes() const { return Stride() * height_; }

    std::uint8_t* Line(std::uint32_t line) { return data_.get() + line * Stride(); }
    const std::uint8_t* Line(std::uint32_t line) const { return data_.get() + line * Stride(); }

    /// How many of a channel's bits tell something: 12 for a 16-bit image that came from 12 bits.
    unsigned SignificantBits() const { return significant_bits_; }
    void SetSignificantBits(unsigned bits);

private:
    struct Release {
        void operator()(std::uint8_t* data) const noexcept;
    };

    std::uint32_t width_;
    std::uint32_t height_;
    std::uint64_t type_;
    unsigned significant_bits_;
    std::unique_ptr<std::uint8_t[], Release> data_;
};

}  // namespace kiv::vl
