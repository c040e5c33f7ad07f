/// Texts in an encoding that is known by name; an unknown name leaves the text as it is.
#pragma once

#include <string>
#include <string_view>

namespace kiv::platform {

std::string utf8_from_encoding(std::string_view text, const char* encoding);
std::string encoding_from_utf8(std::string_view text, const char* encoding);

}  // namespace kiv::platform
