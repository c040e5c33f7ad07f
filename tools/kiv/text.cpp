#include "text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <utility>

namespace {

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

/// How many letters must be changed, added or dropped to make one word from the other.
std::size_t edit_distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t k = 1; k <= to.size(); ++k) {
            const std::size_t replace = diagonal + (from[i - 1] == to[k - 1] ? 0 : 1);
            diagonal = row[k];
            row[k] = std::min({replace, row[k] + 1, row[k - 1] + 1});
        }
    }
    return row.back();
}

bool is_control(unsigned char c) { return c < 0x20 || c == 0x7F; }

template <class... Args>
std::string formatted(const char* format, Args... args) {
    std::array<char, 64> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, args...);
    return {buffer.data(), std::min(buffer.size() - 1, static_cast<std::size_t>(std::max(0, length)))};
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result(text);
    std::replace_if(result.begin(), result.end(), is_control, '?');
    return result;
}

std::size_t character_count(std::string_view text) {
    // Bytes 10xxxxxx continue a character of UTF-8.
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string padded(std::string_view text, std::size_t width) {
    std::string result(text);
    const std::size_t count = character_count(text);
    if (count < width) result.append(width - count, ' ');
    return result;
}

std::string short_number(double value) { return formatted("%.9g", value); }

std::string fixed_number(double value, int digits) { return formatted("%.*f", digits, value); }

std::vector<std::string> wrapped(const std::vector<std::string>& words, std::string_view separator, std::size_t width) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string word = words[i] + (i + 1 < words.size() ? std::string(separator) : "");
        if (!lines.back().empty() && character_count(lines.back()) + character_count(words[i]) > width) lines.emplace_back();
        lines.back() += word;
    }
    for (std::string& line : lines) line.erase(line.find_last_not_of(' ') + 1);
    return lines;
}

std::vector<std::string> similar_names(std::string_view wanted, const std::vector<std::string>& candidates) {
    const std::string needle = lower(wanted);
    const std::size_t limit =
        needle.size() < 4 ? 1 : std::max<std::size_t>(2, needle.size() / 4);  // two letters swapped are two edits
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = edit_distance(needle, lower(candidate));
        if (distance <= limit) near.emplace_back(distance, candidate);
    }
    std::sort(near.begin(), near.end());
    if (near.size() > 3) near.resize(3);
    std::vector<std::string> names;
    for (auto& [distance, name] : near) names.push_back(std::move(name));
    return names;
}

std::string joined(const std::vector<std::string>& words, std::string_view separator) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : std::string(separator)) + word;
    return text;
}

std::string counted(unsigned long long count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string time_text(std::chrono::system_clock::time_point time) {
    const auto since_epoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(since_epoch / 1000);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", std::gmtime(&seconds));
    const std::string thousandths = std::to_string(1000 + since_epoch % 1000).substr(1);
    return text.data() + thousandths + "Z";
}
