#include "runtime/value_text.h"

#include <charconv>

#include "link/number_text.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

template <class Number, class... Base>
std::string converted(Number number, Base... base) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, base...).ptr;
    return {buffer, end};
}

std::string groups(uint64_t value, int count, char separator, int base) {
    std::string text;
    for (int i = count - 1; i >= 0; --i) {
        const auto group = static_cast<unsigned>(value >> 8 * i & 0xFF);
        if (base == 16 && group < 16) text += '0';
        text += converted(group, base);
        if (i > 0) text += separator;
    }
    return text;
}

/// `count` numbers of a byte each between separators; nothing else.
std::optional<int64_t> from_groups(std::string_view text, int count, std::string_view separators, int base) {
    uint64_t value = 0;
    for (int i = 0; i < count; ++i) {
        const auto end = text.find_first_of(separators);
        if ((end == text.npos) != (i == count - 1)) return std::nullopt;
        const auto part = text.substr(0, end);
        unsigned group = 0;
        const auto [stop, error] = std::from_chars(part.data(), part.data() + part.size(), group, base);
        if (error != std::errc() || stop != part.data() + part.size() || group > 255) return std::nullopt;
        value = value << 8 | group;
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return static_cast<int64_t>(value);
}

int digit_of(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

std::string number_text(int64_t value) { return converted(value); }
std::string number_text(double value) { return converted(value); }
std::string float_text(double value) { return converted(value); }

std::string integer_text(int64_t value, ERepresentation representation) {
    const auto raw = static_cast<uint64_t>(value);
    switch (representation) {
        case HexNumber:
            return "0x" + converted(raw, 16);
        case IPV4Address:
            return raw >> 32 ? converted(value) : groups(raw, 4, '.', 10);
        case MACAddress:
            return raw >> 48 ? converted(value) : groups(raw, 6, ':', 16);
        default:
            return converted(value);
    }
}

std::optional<int64_t> integer_from_text(std::string_view text) {
    text = trimmed(text);
    if (const auto number = parse_integer(text)) return number;
    if (const auto address = from_groups(text, 4, ".", 10)) return address;
    return from_groups(text, 6, ":-", 16);
}

std::string bytes_text(const uint8_t* bytes, size_t count) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text = "0x";
    text.reserve(2 + 2 * count);
    for (size_t i = 0; i < count; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xF];
    }
    return text;
}

std::optional<std::string> bytes_from_text(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
    if (text.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size(); i += 2) {
        const int high = digit_of(text[i]), low = digit_of(text[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

}  // namespace kiv::genapi
