#include "kiv/platform/dynamic_library.h"

#include <dlfcn.h>

#include <utility>

namespace kiv::platform {

DynamicLibrary::DynamicLibrary(const std::string& path) : path_(path) {
    // The loader would take an empty name for the program itself, and read a name up to its first zero.
    if (path.empty()) throw LoadError("no file name of a library was given");
    if (path.find('\0') != path.npos) throw LoadError("the file name of a library holds a zero byte");
    // All symbols now: a module that lacks one is refused here, and does not end the process in the middle of a call.
    module_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module_) return;
    const char* reason = dlerror();
    throw LoadError("cannot load '" + path + "': " + (reason ? reason : "unknown reason"));
}

DynamicLibrary::~DynamicLibrary() {
    if (module_) dlclose(module_);
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : path_(std::move(other.path_)), module_(std::exchange(other.module_, nullptr)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(module_, other.module_);
    return *this;
}

void* DynamicLibrary::Symbol(const char* name) const noexcept { return module_ ? dlsym(module_, name) : nullptr; }

}  // namespace kiv::platform
