/// From packed components to 16-bit values, as they are stored (not spread over the range).
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/pixel_format.h"

namespace kiv::vl {

/// Writes `count` components of the run of components that begins at `data`, from component `first` on. Reads exactly the
/// bytes that hold them.
void unpack(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count, std::uint16_t* out);

/// The same in plain C++, for machines without the vector instructions and as the measure of the fast ones.
void unpack_scalar(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count, std::uint16_t* out);

/// The upper 8 bits of each component (fewer bits are spread over 8) in one go.
void unpack_to_8(const PixelFormat& format, const std::uint8_t* data, std::size_t first, std::size_t count, std::uint8_t* out);

/// Unpacks as many components as it likes, always whole groups, from a component that begins at `data`; returns how many.
/// `count` components may be read.
using FastUnpack = std::size_t (*)(const std::uint8_t* data, std::size_t count, std::uint16_t* out);
using FastUnpackTo8 = std::size_t (*)(const std::uint8_t* data, std::size_t count, std::uint8_t* out);

/// The vector versions for a packing on this machine.
struct FastUnpackers {
    FastUnpack to_16 = nullptr;
    FastUnpackTo8 to_8 = nullptr;
};
FastUnpackers fast_unpackers(Packing packing, unsigned bits) noexcept;

/// Spreads values of `bits` bits over 16, so that the largest stays the largest.
void spread_to_16(std::uint16_t* values, std::size_t count, unsigned bits) noexcept;
/// The same to 8 bits, with any number of bits; lower bits are cut.
void reduce_to_8(const std::uint16_t* values, std::size_t count, unsigned bits, std::uint8_t* out) noexcept;

}  // namespace kiv::vl
