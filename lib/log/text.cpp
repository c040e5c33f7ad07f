#include "kiv/log/text.h"

#include <algorithm>
#include <cstdio>

namespace kiv::log {

namespace {

/// A line holds a register, a packet's header, or the beginning of a file: not a whole description.
constexpr std::size_t most_bytes = 64;

}  // namespace

std::string hex(std::uint64_t number) {
    char text[2 + 16 + 1];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

std::string hex_bytes(std::span<const std::byte> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(3 * std::min(bytes.size(), most_bytes) + 4);
    for (const std::byte each : bytes.first(std::min(bytes.size(), most_bytes))) {
        if (!text.empty()) text += ' ';
        text += digits[std::to_integer<unsigned>(each) >> 4];
        text += digits[std::to_integer<unsigned>(each) & 0xF];
    }
    return bytes.size() > most_bytes ? text + " ..." : text;
}

}  // namespace kiv::log
