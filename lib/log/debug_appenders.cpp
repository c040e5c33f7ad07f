#include "debug_appenders.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace kiv::log {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trim(std::string_view text) {
    auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

struct Line {
    std::string key;  ///< without the prefix "log4j." or "log4cpp."; empty for a line that is no property
    std::string value;
    std::string whole;
};

Line read_line(const std::string& whole) {
    auto text = trim(whole);
    auto equals = text.find('=');
    if (text.starts_with('#') || equals == std::string_view::npos) return {{}, {}, whole};
    auto key = trim(text.substr(0, equals));
    for (std::string_view prefix : {"log4j.", "log4cpp."})
        if (key.starts_with(prefix)) key.remove_prefix(prefix.size());
    return {std::string(key), std::string(trim(text.substr(equals + 1))), whole};
}

std::vector<Line> read_lines(std::string_view properties) {
    std::vector<Line> lines;
    std::istringstream in{std::string(properties)};
    for (std::string each; std::getline(in, each);) lines.push_back(read_line(each));
    return lines;
}

std::vector<std::string> comma_list(std::string_view text) {
    std::vector<std::string> parts;
    while (true) {
        auto comma = text.find(',');
        parts.emplace_back(trim(text.substr(0, comma)));
        if (comma == std::string_view::npos) return parts;
        text.remove_prefix(comma + 1);
    }
}

/// The name of the category that the property configures; "" for the root.
std::optional<std::string> category_of(const Line& line) {
    if (line.key == "rootCategory") return "";
    constexpr std::string_view prefix = "category.";
    if (!line.key.starts_with(prefix)) return std::nullopt;
    return line.key.substr(prefix.size());
}

bool ends_with_type(const std::string& value, std::string_view type) {
    return value == type || (value.ends_with(type) && value[value.size() - type.size() - 1] == '.');
}

/// The appender whose type this line gives; "" for another line.
std::string appender_of(const Line& line) {
    constexpr std::string_view prefix = "appender.";
    if (!line.key.starts_with(prefix)) return {};
    auto name = line.key.substr(prefix.size());
    return name.find('.') == std::string::npos ? name : std::string();
}

std::string value_of(const std::vector<Line>& lines, const std::string& key) {
    auto found = std::ranges::find(lines, key, &Line::key);
    return found == lines.end() ? std::string() : found->value;
}

}  // namespace

SplitProperties split_properties(std::string_view properties) {
    const auto lines = read_lines(properties);
    SplitProperties split;
    for (auto& line : lines) {
        auto name = appender_of(line);
        if (name.empty()) continue;
        auto own = "appender." + name;
        if (ends_with_type(line.value, "Win32DebugAppender")) {
            split.debug_appenders.push_back({name, value_of(lines, own + ".layout.ConversionPattern"), {}});
            continue;
        }
        split.appenders.push_back(name);
        if (auto file = value_of(lines, own + ".fileName"); !file.empty()) split.files.push_back(file);
    }
    auto find_appender = [&](const std::string& name) {
        return std::ranges::find(split.debug_appenders, name, &DebugAppender::name);
    };
    for (auto& line : lines) {
        if (auto category = category_of(line)) {
            auto parts = comma_list(line.value);
            // The first part is the level.
            for (auto part = parts.begin() + 1; part != parts.end();) {
                auto appender = find_appender(*part);
                if (appender == split.debug_appenders.end()) {
                    ++part;
                    continue;
                }
                appender->categories.push_back(*category);
                part = parts.erase(part);
            }
            split.rest += "log4j." + line.key + "=";
            for (auto& part : parts) split.rest += (&part == &parts.front() ? "" : ", ") + part;
            split.rest += '\n';
            continue;
        }
        constexpr std::string_view prefix = "appender.";
        auto of_debug = line.key.starts_with(prefix) &&
                        find_appender(line.key.substr(prefix.size(), line.key.find('.', prefix.size()) - prefix.size())) !=
                            split.debug_appenders.end();
        if (!of_debug) split.rest += line.whole + '\n';
    }
    return split;
}

}  // namespace kiv::log
