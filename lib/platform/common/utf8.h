/// Code points in and out of UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kiv::platform {

inline constexpr char32_t replacement_character = 0xFFFD;

struct DecodedCharacter {
    char32_t code = replacement_character;
    std::size_t length = 1;  // bytes; 1 for a byte that begins no character
    bool valid = false;
};

/// The character at the front of `text`, which is not empty. Overlong forms, surrogates and cut characters are not valid.
DecodedCharacter decode_utf8(std::string_view text) noexcept;

/// Appends the character; one that UTF-8 cannot hold is appended as U+FFFD.
void append_utf8(std::string& text, char32_t code);

}  // namespace kiv::platform
