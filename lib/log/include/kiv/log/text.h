/// Pieces of log lines. They allocate: ask wanted() first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kiv::log {

/// "0x20104".
std::string hex(std::uint64_t number);
/// "00 00 04 00"; of a long block the beginning, with "..." behind it.
std::string hex_bytes(std::span<const std::byte> bytes);
inline std::string hex_bytes(const void* bytes, std::size_t size) {
    return hex_bytes({static_cast<const std::byte*>(bytes), size});
}

}  // namespace kiv::log
