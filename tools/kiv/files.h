/// Folders and text files that kiv makes. What makes them throws ExitCode::kFailed with the reason.
#pragma once

#include <filesystem>
#include <string>

/// Of a name in UTF-8, as the command line gives it on every system.
std::filesystem::path path_of(const std::string& name);

/// Makes the folder unless it is there.
std::filesystem::path made_folder(const std::string& name);

/// Replaces the file.
void write_text_file(const std::filesystem::path& path, const std::string& text);
