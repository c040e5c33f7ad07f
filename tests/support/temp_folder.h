/// A folder of its own for each test, gone with everything in it when the test ends. Names and paths are UTF-8.
#pragma once

#include <kiv/platform/paths.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kiv_test {

class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string Path() const { return kiv::platform::utf8_from_path(path_); }
    /// The path of a name in the folder; nothing is made.
    std::string In(const std::string& name) const {
        return kiv::platform::utf8_from_path((path_ / kiv::platform::path_from_utf8(name)).make_preferred());
    }
    /// Writes a file (and the folders that its name wants) and gives its path.
    std::string Write(const std::string& name, const std::string& content) const;
    std::string MakeFolder(const std::string& name) const;

private:
    std::filesystem::path path_;
};

std::string read_file(const std::string& path);

/// One producer in a registry file.
struct RegistryEntry {
    std::string key;
    std::string path;
    std::string enabled = "true";
    std::string flag = "false";
};

/// Writes a registry file and gives its path.
std::string write_registry(const TempFolder& folder, const std::string& name, const std::vector<RegistryEntry>& entries);

/// A variable of the environment, until the end of the scope.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::string name, const std::string& value);
    ~ScopedEnvironment();
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string name_;
    bool was_set_;
    std::string former_;
};

}  // namespace kiv_test
