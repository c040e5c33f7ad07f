/// Makes of the bytes that a device delivered a UTF-8 text that begins with "<".
#pragma once

#include <string>

namespace kiv::genapi {

/// Cuts at the first zero byte, drops byte order marks and leading blanks, turns UTF-16 and Latin-1 into UTF-8. Text that is
/// announced as UTF-8 and is not valid is taken as Latin-1: that is what such files turn out to be.
std::string clean_description(std::string bytes);

}  // namespace kiv::genapi
