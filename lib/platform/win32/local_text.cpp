#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {

std::string utf8_from_local(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // no code page needs more characters than bytes
    const int made = MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length);
    return utf8_from_wide(std::wstring_view(wide).substr(0, static_cast<std::size_t>(made)));
}

std::string local_from_utf8(std::string_view text) {
    const std::wstring wide = wide_from_utf8(text);
    const int length = static_cast<int>(wide.size());
    const int needed = WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string local(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), length, local.data(), needed, nullptr, nullptr);
    return local;
}

}  // namespace kiv::platform
