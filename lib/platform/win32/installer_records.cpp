#include "kiv/platform/installer_records.h"

#include <algorithm>
#include <array>

#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

struct CloseKey {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

/// Read access is all that is needed, and all that most users have.
OwnedKey open_key(const std::string& key) {
    HKEY opened = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, wide_from_utf8(key).c_str(), 0, KEY_READ, &opened);
    return OwnedKey(opened);
}

}  // namespace

bool installer_key_exists(const std::string& key) { return open_key(key) != nullptr; }

std::optional<std::string> first_installer_value_name(const std::string& key) {
    const OwnedKey opened = open_key(key);
    if (!opened) return std::nullopt;
    std::array<wchar_t, 16384> name;  // the longest that the system allows
    auto length = static_cast<DWORD>(name.size());
    if (RegEnumValueW(opened.get(), 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        return std::nullopt;
    return utf8_from_wide(std::wstring_view(name.data(), length));
}

std::optional<std::uint32_t> installer_number(const std::string& key, const std::string& value) {
    const OwnedKey opened = open_key(key);
    if (!opened) return std::nullopt;
    DWORD number = 0, type = 0, size = sizeof number;
    const LSTATUS status =
        RegQueryValueExW(opened.get(), wide_from_utf8(value).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    if (status != ERROR_SUCCESS || type != REG_DWORD) return std::nullopt;
    return number;
}

std::optional<std::string> installer_text(const std::string& key, const std::string& value) {
    const OwnedKey opened = open_key(key);
    if (!opened) return std::nullopt;
    const std::wstring name = wide_from_utf8(value);
    std::wstring text(256, L'\0');
    for (;;) {
        auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS status = RegGetValueW(opened.get(), nullptr, name.c_str(), RRF_RT_REG_SZ, nullptr, text.data(), &size);
        if (status == ERROR_SUCCESS) return utf8_from_wide(text.c_str());
        if (status != ERROR_MORE_DATA) return std::nullopt;
        text.resize(std::max(text.size() * 2, size / sizeof(wchar_t) + 1));
    }
}

}  // namespace kiv::platform
