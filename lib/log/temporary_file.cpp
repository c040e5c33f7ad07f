#include "temporary_file.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>

namespace kiv::log {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

TemporaryFile::TemporaryFile(std::string_view text) {
    std::random_device random;
    const auto folder = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 16; ++attempt) {
        std::array<char, 32> name{};
        std::snprintf(name.data(), name.size(), "kiv-%08x%08x.log4j", random(), random());
        path_ = (folder / name.data()).string();
        // "x": never somebody else's file, nor a link that somebody put there.
        std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path_.c_str(), "wbx"));
        if (!file) continue;
        const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() && std::fflush(file.get()) == 0;
        if (written) return;
        file.reset();
        std::remove(path_.c_str());
        break;
    }
    throw std::runtime_error("no temporary file can be written in " + folder.string());
}

TemporaryFile::~TemporaryFile() { std::remove(path_.c_str()); }

}  // namespace kiv::log
