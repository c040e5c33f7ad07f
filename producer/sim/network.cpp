#include "network.h"

#include <charconv>
#include <cstdio>

namespace kivsim {
namespace {

/// `count` numbers of at most `largest`, with `separator` between them, each taking `bits` of the result.
std::optional<uint64_t> numbers_of(std::string_view text, int count, char separator, int base, int bits) {
    uint64_t value = 0;
    const char *at = text.data(), *const end = at + text.size();
    for (int i = 0; i < count; ++i) {
        unsigned part = 0;
        const auto [stop, error] = std::from_chars(at, end, part, base);
        if (error != std::errc{} || part >> bits != 0) return std::nullopt;
        const bool last = i + 1 == count;
        if (last != (stop == end) || (!last && *stop != separator)) return std::nullopt;
        value = value << bits | part;
        at = stop + (last ? 0 : 1);
    }
    return value;
}

}  // namespace

std::string ip_text(uint32_t address) {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", address >> 24, address >> 16 & 255, address >> 8 & 255, address & 255);
    return text;
}

std::string mac_text(uint64_t address) {
    char text[24];
    const auto byte = [&](int place) { return static_cast<unsigned>(address >> (8 * place) & 255); };
    std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", byte(5), byte(4), byte(3), byte(2), byte(1), byte(0));
    return text;
}

std::optional<uint32_t> ip_of(std::string_view text) {
    const auto value = numbers_of(text, 4, '.', 10, 8);
    return value ? std::optional(static_cast<uint32_t>(*value)) : std::nullopt;
}

std::optional<uint64_t> mac_of(std::string_view text) { return numbers_of(text, 6, ':', 16, 8); }

}  // namespace kivsim
