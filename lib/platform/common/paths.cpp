#include "kiv/platform/paths.h"

#include <algorithm>
#include <cctype>
#include <system_error>

#include "common/system_habits.h"
#include "kiv/platform/text.h"

namespace fs = std::filesystem;

namespace kiv::platform {
namespace {

// Reserved in every folder of Windows, whatever extension follows. Refused everywhere: caches are copied between systems.
constexpr std::string_view device_names[] = {"con",  "prn",  "aux",  "nul",  "conin$", "conout$", "clock$", "com0", "com1",
                                             "com2", "com3", "com4", "com5", "com6",   "com7",    "com8",   "com9", "lpt0",
                                             "lpt1", "lpt2", "lpt3", "lpt4", "lpt5",   "lpt6",    "lpt7",   "lpt8", "lpt9",
                                             "com¹", "com²", "com³", "lpt¹", "lpt²",   "lpt³"};

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool is_device_name(std::string_view name) {
    std::string_view stem = name.substr(0, name.find('.'));
    while (stem.ends_with(' ')) stem.remove_suffix(1);
    return std::ranges::any_of(device_names, [stem](std::string_view device) {
        return std::ranges::equal(stem, device, [](char a, char b) { return lower(a) == b; });
    });
}

bool is_refused_in_names(char c) {
    constexpr std::string_view refused = "/\\:*?\"<>|";
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || refused.find(c) != refused.npos;
}

/// Whether the ":" at `position` belongs to a drive: "C:\".
bool is_drive_colon(std::string_view list, std::size_t start, std::size_t position) {
    return position == start + 1 && std::isalpha(static_cast<unsigned char>(list[start])) && position + 1 < list.size() &&
           list[position + 1] == '\\';
}

}  // namespace

fs::path path_from_utf8(std::string_view text) {
    const auto* first = reinterpret_cast<const char8_t*>(text.data());
    return fs::path(std::u8string_view(first, text.size()));
}

std::string utf8_from_path(const fs::path& path) {
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

std::string normalise_path(std::string_view configured) {
    std::string path(configured);
    if (!backslash_separates) std::ranges::replace(path, '\\', path_separator);
    return path;
}

std::string join_path(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && path.back() != '/' && !(backslash_separates && path.back() == '\\')) path += path_separator;
    return path.append(name);
}

std::string folder_of(std::string_view path) {
    const std::string folder = utf8_from_path(path_from_utf8(path).parent_path());
    return folder.empty() ? "." : folder;
}

std::vector<std::string> split_search_path(std::string_view list) {
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= list.size(); ++i) {
        const bool ends =
            i == list.size() || (list_separators.find(list[i]) != list_separators.npos && !is_drive_colon(list, start, i));
        if (!ends) continue;
        if (i > start) pieces.emplace_back(list.substr(start, i - start));
        start = i + 1;
    }
    return pieces;
}

bool is_plain_file_name(std::string_view name) noexcept {
    if (name.empty() || name.size() > 255 || name == "." || name == "..") return false;
    if (name.ends_with('.') || name.ends_with(' ') || name.starts_with(' ')) return false;
    if (std::ranges::any_of(name, is_refused_in_names)) return false;
    return !is_device_name(name) && is_valid_utf8(name);
}

bool path_exists(std::string_view path) noexcept try {
    std::error_code error;
    return fs::exists(path_from_utf8(path), error);
} catch (...) {
    return false;
}

void create_folders(std::string_view path) {
    const fs::path whole = path_from_utf8(path);
    fs::path level = whole.root_path();
    for (const fs::path& part : whole.relative_path()) {
        level /= part;
        std::error_code error;
        if (fs::is_directory(level, error)) continue;
        fs::create_directory(level, error);
        if (!error && fs::is_directory(level)) continue;
        const std::string reason = error ? error.message() : "something else has that name";
        throw FileError("cannot make the folder '" + utf8_from_path(level) + "': " + reason);
    }
}

std::string temp_folder() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    return error ? utf8_from_path(fs::path("/tmp")) : utf8_from_path(folder);
}

void write_file_atomically(std::string_view path, std::string_view text) {
    write_file_atomically(path, std::as_bytes(std::span(text)));
}

}  // namespace kiv::platform
