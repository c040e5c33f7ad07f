/// The lexical forms of descriptions: numbers, words of a fixed set. Lenient about blanks and prefixes, never about rubbish.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiv::genapi {

std::string_view trimmed(std::string_view text) noexcept;

/// Decimal or 0x-hexadecimal with an optional sign. What needs all 64 bits wraps; what needs more is nothing.
std::optional<int64_t> parse_integer(std::string_view text) noexcept;
/// A C-locale number, INF, NaN, or a whole number in any form that parse_integer() takes.
std::optional<double> parse_double(std::string_view text) noexcept;
/// true, false, 1, 0, Yes, No.
std::optional<bool> parse_boolean(std::string_view text) noexcept;

bool equal_ignoring_case(std::string_view a, std::string_view b) noexcept;

}  // namespace kiv::genapi
