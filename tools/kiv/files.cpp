#include "files.h"

#include <fstream>

#include "error.h"

std::filesystem::path path_of(const std::string& name) { return std::u8string(name.begin(), name.end()); }

std::filesystem::path made_folder(const std::string& name) {
    const auto folder = path_of(name);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw ToolError(ExitCode::kFailed, "the folder \"" + name + "\" cannot be made: " + error.message());
    return folder;
}

void write_text_file(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw ToolError(ExitCode::kFailed, "\"" + path.string() + "\" could not be written");
}
