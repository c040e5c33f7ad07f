/// Numbers as texts and back, in the forms that node values have; and the sentences about numbers that exceptions need.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "GenApi/types.h"

namespace kiv::genapi {

/// Decimal, 0x..., a.b.c.d or aa:bb:cc:dd:ee:ff.
std::string integer_text(int64_t value, GenApi::ERepresentation representation);
/// Any of these forms, whatever the representation.
std::optional<int64_t> integer_from_text(std::string_view text);
/// The shortest text that reads back as the same number.
std::string float_text(double value);

/// 0x and two digits a byte.
std::string bytes_text(const uint8_t* bytes, size_t count);
/// Nothing when the text is no sequence of whole bytes.
std::optional<std::string> bytes_from_text(std::string_view text);

std::string number_text(int64_t value);
std::string number_text(double value);

template <class T>
std::string above_text(T value, T max) {
    return "Value = " + number_text(value) + " must be equal or smaller than Max = " + number_text(max) + ".";
}
template <class T>
std::string below_text(T value, T min) {
    return "Value = " + number_text(value) + " must be equal or greater than Min = " + number_text(min) + ".";
}

}  // namespace kiv::genapi
