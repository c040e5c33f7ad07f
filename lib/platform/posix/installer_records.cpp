#include "kiv/platform/installer_records.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "common/utf8.h"
#include "kiv/platform/environment.h"
#include "kiv/platform/paths.h"

namespace kiv::platform {
namespace {

constexpr std::uint64_t largest_file = 64u << 20;
constexpr std::string_view hive = "HKEY_LOCAL_MACHINE\\";

struct Value {
    std::string name;
    std::optional<std::uint32_t> number;  // one of the two, or none: a value of a type that nobody asks for
    std::optional<std::string> text;
};

struct Key {
    std::string name;  // below the hive
    std::vector<Value> values;
};

bool same_name(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

/// Such files are UTF-16 with a mark at the start when an editor of records wrote them, and UTF-8 when a person did.
std::string to_utf8(std::string bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
    if (!bytes.starts_with("\xFF\xFE")) return bytes;
    std::string text;
    const auto unit = [&bytes](std::size_t i) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8);
    };
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        char32_t code = unit(i);
        const bool pair = code >= 0xD800 && code < 0xDC00 && i + 3 < bytes.size();
        if (pair) code = 0x10000 + ((code - 0xD800) << 10) + (unit(i += 2) & 0x3FF);
        append_utf8(text, code);
    }
    return text;
}

std::string_view trim(std::string_view line) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == line.npos) return {};
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

/// Takes the quoted text at the front of the line, with its backslashes resolved.
std::optional<std::string> take_quoted(std::string_view& line) {
    if (!line.starts_with('"')) return std::nullopt;
    std::string text;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return text;
        }
        if (line[i] == '\\' && i + 1 < line.size()) ++i;
        text += line[i];
    }
    return std::nullopt;
}

/// `"name"=dword:0001` or `@="text"`; nothing for a line of another form, such as the later lines of a long binary value.
std::optional<Value> parse_value(std::string_view line) {
    std::optional<std::string> name = line.starts_with('@') ? std::string() : take_quoted(line);
    if (!name) return std::nullopt;
    if (line.starts_with('@')) line.remove_prefix(1);
    line = trim(line);
    if (!line.starts_with('=')) return std::nullopt;
    line = trim(line.substr(1));
    Value value{*name, std::nullopt, take_quoted(line)};
    constexpr std::string_view number_mark = "dword:";
    if (!same_name(line.substr(0, number_mark.size()), number_mark)) return value;
    line.remove_prefix(number_mark.size());
    std::uint32_t number = 0;
    const auto [rest, error] = std::from_chars(line.data(), line.data() + line.size(), number, 16);
    if (error == std::errc() && rest == line.data() + line.size()) value.number = number;
    return value;
}

std::vector<Key> parse_records(std::string_view text) {
    std::vector<Key> keys;
    bool inside = false;  // in a key of the hive
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[') && line.ends_with(']')) {
            const std::string_view name = line.substr(1, line.size() - 2);
            inside = same_name(name.substr(0, hive.size()), hive);
            if (inside) keys.push_back({std::string(name.substr(hive.size())), {}});
        } else if (auto value = parse_value(line); value && inside) {
            keys.back().values.push_back(std::move(*value));
        }
    }
    return keys;
}

/// The key as the file tells it now; the file is small and asked for rarely.
std::optional<Key> find_key(const std::string& name) try {
    const auto file = get_environment("KIV_INSTALLER_REGISTRY");
    if (!file) return std::nullopt;
    std::optional<Key> found;
    for (Key& key : parse_records(to_utf8(read_file(*file, largest_file)))) {
        if (!same_name(key.name, name)) continue;
        if (!found) found = Key{key.name, {}};
        std::ranges::move(key.values, std::back_inserter(found->values));  // a key may stand in the file in two parts
    }
    return found;
} catch (const FileError&) {
    return std::nullopt;
}

std::optional<Value> find_value(const std::string& key, const std::string& value) {
    const auto found = find_key(key);
    if (!found) return std::nullopt;
    const auto named = std::ranges::find_if(found->values, [&](const Value& v) { return same_name(v.name, value); });
    if (named == found->values.end()) return std::nullopt;
    return *named;
}

}  // namespace

bool installer_key_exists(const std::string& key) { return find_key(key).has_value(); }

std::optional<std::string> first_installer_value_name(const std::string& key) {
    const auto found = find_key(key);
    if (!found || found->values.empty()) return std::nullopt;
    return found->values.front().name;
}

std::optional<std::uint32_t> installer_number(const std::string& key, const std::string& value) {
    const auto found = find_value(key, value);
    return found ? found->number : std::nullopt;
}

std::optional<std::string> installer_text(const std::string& key, const std::string& value) {
    const auto found = find_value(key, value);
    return found ? found->text : std::nullopt;
}

}  // namespace kiv::platform
