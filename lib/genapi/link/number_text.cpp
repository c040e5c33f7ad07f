#include "link/number_text.h"

#include <charconv>
#include <cmath>

namespace kiv::genapi {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

template <class Number, class... Base>
std::optional<Number> whole(std::string_view text, Base... base) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base...);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

}  // namespace

std::string_view trimmed(std::string_view text) noexcept {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

std::optional<int64_t> parse_integer(std::string_view text) noexcept {
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hex = text.size() > 2 && text[0] == '0' && lower(text[1]) == 'x';
    const auto magnitude = hex ? whole<uint64_t>(text.substr(2), 16) : whole<uint64_t>(text, 10);
    if (!magnitude) return std::nullopt;
    if (negative && !hex && *magnitude > uint64_t{1} << 63) return std::nullopt;
    return static_cast<int64_t>(negative ? uint64_t{0} - *magnitude : *magnitude);
}

std::optional<double> parse_double(std::string_view text) noexcept {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    if (const auto number = whole<double>(text)) return number;
    const bool hex = text.find('x') != text.npos || text.find('X') != text.npos;
    if (const auto number = hex ? parse_integer(text) : std::nullopt) return static_cast<double>(*number);
    return std::nullopt;
}

std::optional<bool> parse_boolean(std::string_view text) noexcept {
    text = trimmed(text);
    if (text == "1" || equal_ignoring_case(text, "true") || equal_ignoring_case(text, "yes")) return true;
    if (text == "0" || equal_ignoring_case(text, "false") || equal_ignoring_case(text, "no")) return false;
    return std::nullopt;
}

}  // namespace kiv::genapi
