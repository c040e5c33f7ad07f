/// Values of one number of bits as values of another, over the whole range of both: white stays white.
#pragma once

#include <cstdint>

namespace kiv::vl {

/// 8 to 16 bits each. More bits repeat the upper ones below, fewer are cut: going up and down again changes nothing.
constexpr std::uint32_t rescale(std::uint32_t value, unsigned from_bits, unsigned to_bits) {
    if (to_bits <= from_bits) return value >> (from_bits - to_bits);
    return (value << (to_bits - from_bits)) | (value >> (2 * from_bits - to_bits));
}

}  // namespace kiv::vl
