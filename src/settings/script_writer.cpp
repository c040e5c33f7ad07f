#include "settings/script_writer.h"

#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>
#include <kiv/platform/text.h>

#include <optional>
#include <string_view>

namespace kiv {

namespace {

// As DOM serializers of the XML library lay a document out; readers of scripts compare files.
constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"no\" ?>\r\n<Script>\r\n\r\n  <CommandList>\r\n";
constexpr std::string_view before_name = "    <Command>\r\n      <FeatureName>";
constexpr std::string_view between = "</FeatureName>\r\n      <FeatureValue";
constexpr std::string_view after_value = "    </Command>\r\n";
constexpr std::string_view tail = "  </CommandList>\r\n\r\n</Script>\r\n";

/// Bytes that are no UTF-8 are read as Latin-1, so that no value is lost.
std::string utf8_or_latin1(const std::string& text) {
    if (platform::is_valid_utf8(text)) return text;
    std::string utf8;
    for (const char each : text) {
        const auto code = static_cast<unsigned char>(each);
        if (code < 0x80) {
            utf8 += each;
        } else {
            utf8 += static_cast<char>(0xC0 | code >> 6);
            utf8 += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return utf8;
}

/// False: `text` has a character that no XML document can hold.
bool append_escaped(std::string& out, const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char each = text[i];
        switch (each) {
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '&':
                out += "&amp;";
                break;
            case '\r':
                out += "&#xD;";
                break;
            default:
                if (static_cast<unsigned char>(each) < ' ' && each != '\t' && each != '\n') return false;
                if (text.compare(i, 2, "\xEF\xBF") == 0 && i + 2 < text.size() && static_cast<unsigned char>(text[i + 2]) >= 0xBE)
                    return false;  // U+FFFE and U+FFFF
                out += each;
        }
    }
    return true;
}

/// Nothing when a setting cannot be written; the debugger output says which.
std::optional<std::string> script_text(const std::string& file, const Settings& settings) {
    std::string text(head);
    for (auto& setting : settings) {
        text += before_name;
        bool is_whole = append_escaped(text, utf8_or_latin1(setting.feature));
        text += between;
        if (setting.value.empty()) {
            text += "/>\r\n";
        } else {
            text += '>';
            is_whole = append_escaped(text, utf8_or_latin1(setting.value)) && is_whole;
            text += "</FeatureValue>\r\n";
        }
        text += after_value;
        if (is_whole) continue;
        platform::debug_print("Writing " + file + ": the value of '" + setting.feature +
                              "' has a character that XML cannot hold\n");
        return std::nullopt;
    }
    return text.append(tail);
}

}  // namespace

bool write_script(const std::string& file, const Settings& settings) {
    if (settings.empty()) return true;
    const auto text = script_text(file, settings);
    if (!text) return true;
    try {
        platform::write_file_atomically(file, *text);
        return true;
    } catch (const platform::FileError& error) {
        platform::debug_print(std::string(error.what()) + "\n");
        return false;
    }
}

}  // namespace kiv
