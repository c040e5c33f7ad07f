/// Pixel formats as data: what the bits of a buffer mean, one row for each code.
///
/// A buffer is a stream of components. The packing says where the bits of a component stand, the arrangement what the
/// components are to the pixels. Everything that reads buffers works from these two, not from codes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiv::vl {

enum class Packing : std::uint8_t {
    Bytes,        ///< one byte each
    SignedBytes,  ///< two's complement; shown with 0 in the middle of the range
    Words,        ///< 16 bit little-endian, value in the low bits
    BitStream,    ///< without gaps, first component in the lowest bits
    Packed10,     ///< GigE Vision: two in three bytes, upper 8 bits first, the lower ones shared in the middle byte
    Packed12,     ///< the same with 12 bits
    Rgb10p32,     ///< three times 10 bits in the low bits of 32
    Rgb10V1,      ///< four bytes: the low bits of all three, then the upper 8 of each
    P565,         ///< 5, 6 and 5 bits in 16; read as 8 bits each
    SemiPlanar,   ///< bytes: all luma, then the pairs of colour differences; read as if they stood between the lumas
};

enum class Arrangement : std::uint8_t { Grey, Bayer, Interleaved, Planar, Chroma };

/// How luma and colour differences become red, green and blue.
enum class Matrix : std::uint8_t { None, Full601, Limited601, Limited709, Limited2020 };

struct PixelFormat {
    std::uint32_t code;
    const char* name;
    Arrangement arrangement;
    /// Bayer: the first two colours of the first line. Interleaved, Planar, Chroma: the components of a group in their order
    /// (a alpha, - nothing, U and V the colour differences of blue and red).
    std::string_view order;
    std::uint8_t bits;  ///< of a component's value
    Packing packing;
    Matrix matrix;

    /// Bits that a pixel takes in a buffer; of all planes together. In a subsampled format the mean.
    constexpr unsigned BitsPerPixel() const { return (code >> 16) & 0xFF; }
    constexpr bool IsColour() const { return arrangement != Arrangement::Grey; }
    constexpr bool IsDeep() const { return bits > 8; }
    /// A group is the smallest run of pixels that has all its components.
    constexpr std::size_t PixelsPerGroup() const {
        std::size_t lumas = 0;
        for (char component : order) lumas += component == 'Y';
        return arrangement == Arrangement::Chroma ? lumas : 1;
    }
    /// In one plane.
    constexpr std::size_t ComponentsPerGroup() const {
        return arrangement == Arrangement::Interleaved || arrangement == Arrangement::Chroma ? order.size() : 1;
    }
    /// Lines that share their colour differences.
    constexpr unsigned LinesPerGroup() const { return packing == Packing::SemiPlanar && BitsPerPixel() == 12 ? 2 : 1; }
    constexpr unsigned Planes() const { return arrangement == Arrangement::Planar ? 3 : 1; }
};

/// The row of a code, null for an unknown one. Bit 31, by which a format that was recognised by its name is told from one that is
/// named exactly, does not count.
const PixelFormat* find_pixel_format(std::uint64_t code) noexcept;
/// The same; an unknown code is an Error that names it.
const PixelFormat& pixel_format(std::uint64_t code);
/// By its name in any case of letters; an unknown one is an Error that names it.
const PixelFormat& pixel_format(std::string_view name);

}  // namespace kiv::vl
