/// Numbers into bytes, lowest byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kiv::vl {

template <class Number>
void append(std::vector<std::uint8_t>& bytes, Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

}  // namespace kiv::vl
