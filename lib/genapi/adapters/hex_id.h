// The ids of events and chunks, which a description writes in hexadecimal without a prefix.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kiv::genapi {

/// Two digits a byte; an odd number of digits counts as if a zero stood in front. Empty when the text is no such number.
std::vector<uint8_t> id_bytes(std::string_view hexText);

/// The number that the bytes are, the most significant one first; none when there are no bytes, or too many.
std::optional<uint64_t> id_number(std::span<const uint8_t> bytes);

/// Whether both are the same number.
bool is_same_id(std::span<const uint8_t> a, std::span<const uint8_t> b);

}  // namespace kiv::genapi
