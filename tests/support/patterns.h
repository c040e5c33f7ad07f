/// Matchers for texts by regular expression, the same on every system: GoogleTest's own know only a few signs on some.
#pragma once

#include <gmock/gmock.h>

// With sanitizers g++ 12 sees things in this header that are not there.
#pragma GCC diagnostic push
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <regex>
#pragma GCC diagnostic pop
#include <string>

namespace kiv_test {

MATCHER_P(IsLike, pattern, "is like \"" + std::string(pattern) + "\"") {
    return std::regex_match(std::string(arg), std::regex(std::string(pattern)));
}

MATCHER_P(HasLike, pattern, "has something like \"" + std::string(pattern) + "\"") {
    return std::regex_search(std::string(arg), std::regex(std::string(pattern)));
}

}  // namespace kiv_test
