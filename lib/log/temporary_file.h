/// A file with a text in it, for a reader that takes file names only; it goes with the object.
#pragma once

#include <string>
#include <string_view>

namespace kiv::log {

class TemporaryFile {
public:
    /// Throws std::runtime_error when there is no place for it.
    explicit TemporaryFile(std::string_view text);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace kiv::log
