#include "support/patterns.h"

#include <regex>

namespace kiv_test {

bool is_like(const std::string& text, const std::string& pattern) { return std::regex_match(text, std::regex(pattern)); }
bool has_like(const std::string& text, const std::string& pattern) { return std::regex_search(text, std::regex(pattern)); }

}  // namespace kiv_test
