#include "common/system_habits.h"

#include "kiv/platform/paths.h"
#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {

const char path_separator = '\\';
const std::string_view list_separators = ";";
const bool backslash_separates = true;

// Whoever watches the output without being a debugger cannot be seen from here.
bool system_debug_output_is_heard() noexcept { return true; }

void write_system_debug_output(std::string_view text) noexcept try {
    OutputDebugStringW(wide_from_utf8(text).c_str());
} catch (...) {
}

std::string error_text(DWORD error) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                                        static_cast<DWORD>(std::size(text)), nullptr);
    std::wstring_view message(text, length);
    while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r' || message.back() == L' '))
        message.remove_suffix(1);
    return message.empty() ? "error " + std::to_string(error) : utf8_from_wide(message) + " (" + std::to_string(error) + ")";
}

}  // namespace kiv::platform
