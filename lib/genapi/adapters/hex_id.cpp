#include "adapters/hex_id.h"

#include <algorithm>
#include <charconv>

namespace kiv::genapi {

namespace {

std::span<const uint8_t> without_leading_zeros(std::span<const uint8_t> bytes) {
    while (!bytes.empty() && bytes.front() == 0) bytes = bytes.subspan(1);
    return bytes;
}

}  // namespace

std::vector<uint8_t> id_bytes(std::string_view hexText) {
    std::vector<uint8_t> bytes;
    bytes.reserve((hexText.size() + 1) / 2);
    for (size_t at = 0; at < hexText.size();) {
        std::string_view pair = hexText.substr(at, at == 0 && hexText.size() % 2 == 1 ? 1 : 2);
        uint8_t value = 0;
        auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), value, 16);
        if (error != std::errc{} || end != pair.data() + pair.size()) return {};
        bytes.push_back(value);
        at += pair.size();
    }
    return bytes;
}

std::optional<uint64_t> id_number(std::span<const uint8_t> bytes) {
    const std::span<const uint8_t> digits = without_leading_zeros(bytes);
    uint64_t value = 0;
    if (bytes.empty() || digits.size() > sizeof value) return std::nullopt;
    for (uint8_t digit : digits) value = value << 8 | digit;
    return value;
}

bool is_same_id(std::span<const uint8_t> a, std::span<const uint8_t> b) {
    return !a.empty() && !b.empty() && std::ranges::equal(without_leading_zeros(a), without_leading_zeros(b));
}

}  // namespace kiv::genapi
