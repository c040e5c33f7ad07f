/// Between UTF-8, which the library speaks inside, and the texts that callers bring: wide ones and 8-bit ones of the system.
///
/// No function fails: what is no valid text on one side becomes U+FFFD (or "?" in an encoding without it) on the other.
#pragma once

#include <string>
#include <string_view>

namespace kiv::platform {

/// wchar_t holds UTF-32 or UTF-16, whichever the system uses.
std::wstring wide_from_utf8(std::string_view text);
std::string utf8_from_wide(std::wstring_view text);

/// The 8-bit encoding of the user's system: a code page, or what the locale of the environment names. Where that is UTF-8, or
/// nothing is set, the bytes pass unchanged.
std::string utf8_from_local(std::string_view text);
std::string local_from_utf8(std::string_view text);

bool is_valid_utf8(std::string_view text) noexcept;

}  // namespace kiv::platform
