/// A folder of a test's own that goes with everything in it when the test ends.
#pragma once

#include <kiv/platform/paths.h>

#include <filesystem>
#include <random>
#include <string>

namespace kiv::test {

class TemporaryFolder {
public:
    TemporaryFolder() {
        static std::random_device random;
        do path_ = std::filesystem::temp_directory_path() / ("kiv-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string Path() const { return platform::utf8_from_path(path_); }
    std::string operator/(const std::string& name) const {
        return platform::utf8_from_path(path_ / platform::path_from_utf8(name));
    }
    /// Writes the file and answers its path.
    std::string Write(const std::string& name, std::string_view text) const {
        platform::write_file_atomically(*this / name, text);
        return *this / name;
    }

private:
    std::filesystem::path path_;
};

}  // namespace kiv::test
