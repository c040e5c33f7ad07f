#include "kiv/platform/environment.h"

#include <cstdlib>
#include <mutex>

#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {
namespace {

bool is_name(const std::string& name) { return !name.empty() && name.find('\0') == name.npos && name.find('=') == name.npos; }

std::mutex& environment_lock() {
    static std::mutex only;
    return only;
}

}  // namespace

std::optional<std::string> get_environment(const std::string& name) {
    const std::wstring wide_name = wide_from_utf8(name);
    std::wstring value(256, L'\0');
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetEnvironmentVariableW(wide_name.c_str(), value.data(), static_cast<DWORD>(value.size()));
        if (length == 0 && GetLastError() != ERROR_SUCCESS) return std::nullopt;
        if (length < value.size()) return utf8_from_wide(std::wstring_view(value).substr(0, length));
        value.resize(length + 1);
    }
}

bool set_environment(const std::string& name, const std::string& value) noexcept try {
    if (!is_name(name) || value.find('\0') != value.npos) return false;
    const std::wstring wide_name = wide_from_utf8(name), wide_value = wide_from_utf8(value);
    std::lock_guard guard(environment_lock());
    // The C library keeps a copy of its own, and would take an empty value for a removal: the system has the last word.
    _wputenv_s(wide_name.c_str(), wide_value.c_str());
    return SetEnvironmentVariableW(wide_name.c_str(), wide_value.c_str()) != 0;
} catch (...) {
    return false;
}

bool unset_environment(const std::string& name) noexcept try {
    if (!is_name(name)) return false;
    const std::wstring wide_name = wide_from_utf8(name);
    std::lock_guard guard(environment_lock());
    _wputenv_s(wide_name.c_str(), L"");
    return SetEnvironmentVariableW(wide_name.c_str(), nullptr) != 0 || GetLastError() == ERROR_ENVVAR_NOT_FOUND;
} catch (...) {
    return false;
}

}  // namespace kiv::platform
