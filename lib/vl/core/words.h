/// Words of texts that people write.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace kiv::vl {

/// Divided by blanks, tabs, carriage returns and, where wanted, commas.
inline std::vector<std::string_view> split_words(std::string_view text, std::string_view dividers = " \t\r") {
    std::vector<std::string_view> words;
    while (true) {
        const auto begin = text.find_first_not_of(dividers);
        if (begin == text.npos) return words;
        text.remove_prefix(begin);
        const auto end = std::min(text.find_first_of(dividers), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

}  // namespace kiv::vl
