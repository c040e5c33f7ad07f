#include "kiv/platform/dynamic_library.h"

#include <utility>

#include "kiv/platform/paths.h"
#include "kiv/platform/text.h"
#include "win32/windows_lean.h"

namespace kiv::platform {

DynamicLibrary::DynamicLibrary(const std::string& path) : path_(path) {
    if (path.empty()) throw LoadError("no file name of a library was given");
    if (path.find('\0') != path.npos) throw LoadError("the file name of a library holds a zero byte");
    const std::wstring wide = wide_from_utf8(path);
    module_ = LoadLibraryW(wide.c_str());
    if (module_) return;
    const DWORD first_reason = GetLastError();
    // The usual search does not look beside the module for the libraries that it needs; this one does, but wants a whole path.
    if (path_from_utf8(path).is_absolute()) module_ = LoadLibraryExW(wide.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module_) throw LoadError("cannot load '" + path + "': " + error_text(first_reason));
}

DynamicLibrary::~DynamicLibrary() {
    if (module_) FreeLibrary(static_cast<HMODULE>(module_));
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : path_(std::move(other.path_)), module_(std::exchange(other.module_, nullptr)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(module_, other.module_);
    return *this;
}

void* DynamicLibrary::Symbol(const char* name) const noexcept {
    return module_ ? reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), name)) : nullptr;
}

}  // namespace kiv::platform
