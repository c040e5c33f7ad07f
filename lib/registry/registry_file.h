/// What a registry file says, as data. The format is described in docs/registry-file.md.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::registry {

/// The file is no registry; the text begins with "file:line: ".
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Producer {
    std::string name;  // unique in the file
    std::string key;
    std::string path;  // as it was written
    bool enabled = true;
    bool flag = false;
};

struct RegistryFile {
    std::string folder;  // absolute; what relative paths are looked up in
    std::vector<Producer> producers;

    const Producer* Find(std::string_view name) const;
    /// The producer's path, made usable: references to the environment replaced, absolute when the file exists in our folder.
    std::string ResolvedPath(const Producer& producer) const;
};

/// Reads the file (UTF-8 path). Throws FormatError, or platform::FileError when it cannot be read or is too large.
RegistryFile read_registry_file(const std::string& path);

/// Reads a registry from its text; `path` is where it stands.
RegistryFile parse_registry(const std::string& text, const std::string& path);

}  // namespace kiv::registry
