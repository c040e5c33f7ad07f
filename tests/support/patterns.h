/// Matchers for texts by regular expression, the same on every system: GoogleTest's own know only a few signs on some.
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace kiv_test {

MATCHER_P(IsLike, pattern, "is like \"" + std::string(pattern) + "\"") {
    return std::regex_match(std::string(arg), std::regex(std::string(pattern)));
}

MATCHER_P(HasLike, pattern, "has something like \"" + std::string(pattern) + "\"") {
    return std::regex_search(std::string(arg), std::regex(std::string(pattern)));
}

}  // namespace kiv_test
