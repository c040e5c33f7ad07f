/// Folders and text files that kiv makes. Both throw ExitCode::kFailed with the reason.
#pragma once

#include <filesystem>
#include <string>

/// Makes the folder unless it is there.
std::filesystem::path made_folder(const std::string& name);

/// Replaces the file.
void write_text_file(const std::filesystem::path& path, const std::string& text);
