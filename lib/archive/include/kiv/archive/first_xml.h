/// Camera descriptions come as XML or as a zip archive with the XML in it. This takes the XML out of the archive.
///
/// An archive is what a device or a stranger's file says: names, sizes and contents are checked, and a bad one is an ArchiveError
/// whose text names the archive and the reason. Nothing is written to disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kiv::archive {

class ArchiveError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct UnpackedFile {
    std::string name;     // UTF-8, without folders: safe as the name of a file
    std::string content;  // the bytes as they were packed, in whatever encoding they say
};

inline constexpr std::uint64_t largest_expansion = 256u << 20;

/// Whether the bytes begin as zip archives do.
bool is_zip(std::span<const std::byte> bytes) noexcept;

/// The first entry of the archive whose name ends in ".xml", in any letter case. Entries in folders count. An entry whose name
/// could lead out of a folder is refused, and so is one that expands to more than `limit` bytes, whatever size it claims.
/// `archive_name` is for the messages.
UnpackedFile first_xml_of_zip(std::span<const std::byte> archive, std::string_view archive_name,
                              std::uint64_t limit = largest_expansion);

/// The same for a file (UTF-8 path), which itself may have no more than `limit` bytes.
UnpackedFile first_xml_of_zip_file(std::string_view path, std::uint64_t limit = largest_expansion);

}  // namespace kiv::archive
