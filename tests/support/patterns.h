/// Matchers for texts by regular expression, the same on every system: GoogleTest's own know only a few signs on some.
#pragma once

#include <gmock/gmock.h>

#include <string>

namespace kiv_test {

bool is_like(const std::string& text, const std::string& pattern);
bool has_like(const std::string& text, const std::string& pattern);

MATCHER_P(IsLike, pattern, "is like \"" + std::string(pattern) + "\"") { return is_like(std::string(arg), pattern); }
MATCHER_P(HasLike, pattern, "has something like \"" + std::string(pattern) + "\"") { return has_like(std::string(arg), pattern); }

}  // namespace kiv_test
