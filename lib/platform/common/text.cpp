#include "kiv/platform/text.h"

#include "common/utf8.h"

namespace kiv::platform {
namespace {

bool is_surrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

struct LeadByte {
    unsigned char mask, pattern;
    std::size_t length;
    char32_t smallest;  // what a shorter form can hold must not be written in this one
};
constexpr LeadByte lead_bytes[] = {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

void append_wide(std::wstring& text, char32_t code) {
    if (sizeof(wchar_t) == 2 && code >= 0x10000) {
        code -= 0x10000;
        text += static_cast<wchar_t>(0xD800 + (code >> 10));
        text += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
        return;
    }
    text += static_cast<wchar_t>(code);
}

}  // namespace

DecodedCharacter decode_utf8(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text.front());
    for (const LeadByte& lead : lead_bytes) {
        if ((first & lead.mask) != lead.pattern) continue;
        if (text.size() < lead.length) return {};
        char32_t code = first & static_cast<unsigned char>(~lead.mask);
        for (std::size_t i = 1; i < lead.length; ++i) {
            const auto next = static_cast<unsigned char>(text[i]);
            if ((next & 0xC0) != 0x80) return {};
            code = (code << 6) | (next & 0x3F);
        }
        if (code < lead.smallest || code > 0x10FFFF || is_surrogate(code)) return {};
        return {code, lead.length, true};
    }
    return {};
}

void append_utf8(std::string& text, char32_t code) {
    if (code > 0x10FFFF || is_surrogate(code)) code = replacement_character;
    const auto tail = [&text, code](int shift) { text += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        tail(6), tail(0);
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        tail(12), tail(6), tail(0);
    }
}

std::wstring wide_from_utf8(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter next = decode_utf8(text);
        append_wide(wide, next.code);
        text.remove_prefix(next.length);
    }
    return wide;
}

std::string utf8_from_wide(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            const char32_t second = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
            if (code >= 0xD800 && code < 0xDC00 && second >= 0xDC00 && second < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (second - 0xDC00);
                ++i;
            }
        }
        append_utf8(utf8, code);
    }
    return utf8;
}

bool is_valid_utf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const DecodedCharacter next = decode_utf8(text);
        if (!next.valid) return false;
        text.remove_prefix(next.length);
    }
    return true;
}

}  // namespace kiv::platform
