/// Files and folders: where things are on this system, and safe reading and writing of whole files.
///
/// Every path and file name in and out of these functions is UTF-8. Failures are FileErrors that name the file and the
/// system's reason.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::platform {

class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::filesystem::path path_from_utf8(std::string_view text);
std::string utf8_from_path(const std::filesystem::path& path);

/// The separator that composed paths get on this system.
extern const char path_separator;

/// A path as somebody wrote it into a configuration: where "\" is no separator of the system it is read as one.
std::string normalise_path(std::string_view configured);
/// `folder`, one separator, `name`.
std::string join_path(std::string_view folder, std::string_view name);
/// The folder part without its last separator; "." when there is none.
std::string folder_of(std::string_view path);

/// Cuts a list of folders as it stands in an environment variable: at ";" everywhere, also at ":" where that is the system's
/// habit (never inside "C:\"). Empty pieces are left out.
std::vector<std::string> split_search_path(std::string_view list);

/// Whether `name` is safe as the name of a file in a folder of ours when somebody else chose it: no separator of any system, no
/// "." or "..", no control character, no name of a Windows device, no trailing dot or blank, at most 255 bytes, valid UTF-8.
bool is_plain_file_name(std::string_view name) noexcept;

/// The file of the program or library that contains the address; empty when none does.
std::string module_file(const void* address);

/// Whether something exists at `path`; what cannot be looked at does not.
bool path_exists(std::string_view path) noexcept;
/// Makes the folder and every missing one above it, one level at a time. Existing folders are no error.
void create_folders(std::string_view path);

std::string temp_folder();
/// The folder under which programs of this user keep what can be fetched again. It need not exist.
std::string user_cache_root();
/// A folder for locks and names that live as long as a session: only this user can enter it. It exists on return.
std::string user_runtime_folder();

/// Replaces the file as one step: readers see the old content or the new one, and a failure leaves the old.
void write_file_atomically(std::string_view path, std::span<const std::byte> bytes);
void write_file_atomically(std::string_view path, std::string_view text);

/// The whole file. A file of more than `limit` bytes is refused.
std::string read_file(std::string_view path, std::uint64_t limit);

}  // namespace kiv::platform
