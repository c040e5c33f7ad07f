/// Images that the library owns: one of five types, in memory of its own or of the caller's, top line first or, as a
/// device-independent bitmap, bottom line first.
#pragma once

#include <VL.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace kiv::vl {

class Image {
public:
    /// All pixels are 0. Throws an Error for other types, sides of 0 or above 65,535, and more than 2 GiB.
    Image(std::uint32_t width, std::uint32_t height, std::uint64_t type);
    /// Over the caller's memory, which must hold all lines without gaps and outlive the image.
    Image(std::uint32_t width, std::uint32_t height, std::uint64_t type, void* buffer, std::uint64_t size);
    /// A bitmap with its header: VL_IMAGE_MONO8 or VL_IMAGE_BGR8, lines filled to 4 bytes, bottom line first.
    static Image Dib(std::uint32_t width, std::uint32_t height, std::uint64_t type);

    std::uint64_t Type() const { return type_; }
    std::uint32_t Width() const { return width_; }
    std::uint32_t Height() const { return height_; }
    bool IsDeep() const { return type_ == VL_IMAGE_MONO16 || type_ == VL_IMAGE_BGR16; }
    bool IsColour() const { return type_ != VL_IMAGE_MONO8 && type_ != VL_IMAGE_MONO16; }
    bool HasAlpha() const { return type_ == VL_IMAGE_BGRA8; }
    bool IsDib() const { return is_dib_; }
    unsigned Channels() const { return HasAlpha() ? 4 : IsColour() ? 3 : 1; }
    unsigned BytesPerChannel() const { return IsDeep() ? 2 : 1; }
    /// What the pixels of a line take.
    std::size_t LineBytes() const { return std::size_t{width_} * Channels() * BytesPerChannel(); }
    /// From a line to the one below it; negative in a bitmap.
    std::ptrdiff_t Stride() const { return stride_; }
    /// What all lines take with what stands between them.
    std::size_t Bytes() const;

    std::uint8_t* Line(std::uint32_t line) { return top_ + static_cast<std::ptrdiff_t>(line) * stride_; }
    const std::uint8_t* Line(std::uint32_t line) const { return top_ + static_cast<std::ptrdiff_t>(line) * stride_; }

    /// How many of a channel's bits tell something: 12 for a 16-bit image that came from 12 bits.
    unsigned SignificantBits() const { return significant_bits_; }
    void SetSignificantBits(unsigned bits);

    /// As the owner of the handle sees it.
    VL_IMAGE Record() const;

private:
    struct Shape {};
    /// No memory yet.
    Image(Shape, std::uint32_t width, std::uint32_t height, std::uint64_t type);
    void Allocate(std::size_t bytes);

    struct Release {
        void operator()(std::uint8_t* data) const noexcept;
    };

    std::uint32_t width_;
    std::uint32_t height_;
    std::uint64_t type_;
    unsigned significant_bits_;
    bool is_dib_ = false;
    std::ptrdiff_t stride_;
    std::uint8_t* top_ = nullptr;
    std::uint8_t* memory_ = nullptr;
    std::size_t memory_size_ = 0;
    std::unique_ptr<std::uint8_t[], Release> owned_;
};

/// Throws an Error that names both sizes when they differ.
void require_same_size(std::uint32_t width, std::uint32_t height, const Image& target);

/// Pixels of an image of the same size and type.
void copy_pixels(const Image& source, Image& target);

/// An image whose top line comes first: `image` itself, or a copy made in `copy`. OpenCV knows no other order.
const Image& upright(const Image& image, std::optional<Image>& copy);

/// Lets `fill(Image&)` fill `target`, or, where its bottom line comes first, another image that is copied into it then.
template <class Fill>
void fill_upright(Image& target, Fill&& fill) {
    if (!target.IsDib()) return fill(target);
    Image work(target.Width(), target.Height(), target.Type());
    fill(work);
    copy_pixels(work, target);
    target.SetSignificantBits(work.SignificantBits());
}

}  // namespace kiv::vl
