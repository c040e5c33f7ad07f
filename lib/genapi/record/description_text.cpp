#include "record/description_text.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace kiv::genapi {

namespace {

void append_utf8(std::string& text, uint32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        text += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::string from_utf16(std::string_view bytes, bool bigEndian) {
    const auto unit = [&](size_t i) -> uint32_t {
        const auto first = static_cast<uint8_t>(bytes[i]), second = static_cast<uint8_t>(bytes[i + 1]);
        return bigEndian ? first << 8 | second : second << 8 | first;
    };
    std::string text;
    text.reserve(bytes.size());
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        auto code = unit(i);
        if (code == 0) break;
        const bool pair = code >= 0xD800 && code < 0xDC00 && i + 3 < bytes.size();
        if (pair && unit(i + 2) >= 0xDC00 && unit(i + 2) < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
            i += 2;
        }
        append_utf8(text, code);
    }
    return text;
}

std::string from_latin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 16);
    for (const char c : bytes) append_utf8(text, static_cast<uint8_t>(c));
    return text;
}

size_t ascii_end(std::string_view text, size_t from) {
    for (; from + 8 <= text.size(); from += 8) {
        uint64_t word;
        std::memcpy(&word, text.data() + from, 8);
        if (word & 0x8080808080808080u) break;
    }
    while (from < text.size() && !(text[from] & 0x80)) ++from;
    return from;
}

bool is_utf8(std::string_view text) {
    for (size_t i = ascii_end(text, 0); i < text.size(); i = ascii_end(text, i)) {
        const auto lead = static_cast<uint8_t>(text[i]);
        const size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4 || i + more >= text.size()) return false;
        for (size_t k = 1; k <= more; ++k)
            if ((static_cast<uint8_t>(text[i + k]) & 0xC0) != 0x80) return false;
        i += more + 1;
    }
    return true;
}

/// Whether the XML declaration announces a one-byte character set.
bool is_announced_latin1(std::string_view text) {
    if (!text.starts_with("<?xml")) return false;
    const auto declaration = text.substr(0, text.find("?>"));
    for (const std::string_view name : {"ISO-8859-1", "iso-8859-1", "Latin1", "latin1", "windows-1252", "Windows-1252"})
        if (declaration.find(name) != declaration.npos) return true;
    return false;
}

}  // namespace

std::string clean_description(std::string bytes) {
    if (bytes.starts_with("\xFF\xFE")) return from_utf16(std::string_view(bytes).substr(2), false);
    if (bytes.starts_with("\xFE\xFF")) return from_utf16(std::string_view(bytes).substr(2), true);
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
    if (const auto end = bytes.find('\0'); end != bytes.npos) bytes.resize(end);
    bytes.erase(0, bytes.find_first_not_of(" \t\r\n"));
    if (is_announced_latin1(bytes) || !is_utf8(bytes)) return from_latin1(bytes);
    return bytes;
}

}  // namespace kiv::genapi
