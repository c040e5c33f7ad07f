/// Loading foreign code at run time: GenTL producers, serial drivers, optional system libraries.
///
/// The module stays loaded as long as its DynamicLibrary lives. Whoever keeps a symbol keeps the library object too.
#pragma once

#include <stdexcept>
#include <string>

namespace kiv::platform {

/// What the system's loader said; the text names the file and the reason ("libfoo.so: cannot open shared object file").
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A loaded module. Closing it invalidates every symbol taken from it.
class DynamicLibrary {
public:
    /// Loads the module at `path` (UTF-8). A path without a separator is looked up along the system's library path.
    /// Throws LoadError when the path names no loadable module or one of the libraries that it needs is missing.
    explicit DynamicLibrary(const std::string& path);
    ~DynamicLibrary();

    DynamicLibrary(DynamicLibrary&& other) noexcept;
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /// Null when the module does not export `name`.
    void* Symbol(const char* name) const noexcept;

    /// The same, as a pointer to a function: `library.Function<int(const char*)>("atoi")`.
    template <typename Signature>
    Signature* Function(const char* name) const noexcept {
        return reinterpret_cast<Signature*>(Symbol(name));
    }

    const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
    void* module_ = nullptr;
};

}  // namespace kiv::platform
