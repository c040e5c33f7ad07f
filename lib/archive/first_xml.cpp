#include "kiv/archive/first_xml.h"

#include <zip.h>

#include <kiv/platform/paths.h>
#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace kiv::archive {
namespace {

struct Close {
    void operator()(zip_t* archive) const { zip_discard(archive); }
    void operator()(zip_source_t* source) const { zip_source_free(source); }
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Close>;

/// libzip's error record, with its texts.
class ZipReason {
public:
    ZipReason() { zip_error_init(&error_); }
    ~ZipReason() { zip_error_fini(&error_); }
    ZipReason(const ZipReason&) = delete;
    ZipReason& operator=(const ZipReason&) = delete;
    zip_error_t* Get() { return &error_; }
    const char* Text() { return zip_error_strerror(&error_); }

private:
    zip_error_t error_;
};

[[noreturn]] void fail(std::string_view archive_name, std::string_view reason) {
    throw ArchiveError("cannot unpack '" + std::string(archive_name) + "': " + std::string(reason));
}

Owned<zip_t> open_archive(std::span<const std::byte> archive, std::string_view archive_name) {
    ZipReason reason;
    Owned<zip_source_t> source(zip_source_buffer_create(archive.data(), archive.size(), 0, reason.Get()));
    if (!source) fail(archive_name, reason.Text());
    Owned<zip_t> opened(zip_open_from_source(source.get(), ZIP_RDONLY, reason.Get()));
    if (!opened) fail(archive_name, reason.Text());
    [[maybe_unused]] zip_source_t* owned_by_the_archive_now = source.release();
    return opened;
}

bool is_xml_name(std::string_view name) {
    constexpr std::string_view extension = ".xml";
    if (name.size() < extension.size()) return false;
    return std::ranges::equal(name.substr(name.size() - extension.size()), extension,
                              [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + ('a' - 'A') : a) == b; });
}

/// The last part of the entry's name. Every part has to be harmless: a folder named ".." tells what the maker was up to.
std::string safe_name(std::string_view entry, std::string_view archive_name) {
    std::string_view rest = entry;
    for (;;) {
        const std::string_view part = rest.substr(0, rest.find('/'));
        if (!platform::is_plain_file_name(part)) fail(archive_name, "the entry '" + std::string(entry) + "' has an unsafe name");
        if (part.size() == rest.size()) return std::string(part);
        rest.remove_prefix(part.size() + 1);
    }
}

std::optional<zip_uint64_t> find_first_xml(zip_t* archive) {
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const char* name = zip_get_name(archive, index, 0);
        if (name && is_xml_name(name)) return index;
    }
    return std::nullopt;
}

/// `expected` is the archive's own claim. It only decides how much room is made at first.
std::string read_entry(zip_t* archive, zip_uint64_t index, std::uint64_t expected, std::string_view archive_name,
                       std::uint64_t limit) {
    const Owned<zip_file_t> file(zip_fopen_index(archive, index, 0));
    if (!file) fail(archive_name, zip_strerror(archive));
    std::string content;
    content.reserve(static_cast<std::size_t>(std::min<std::uint64_t>({expected, limit, 1u << 20})));
    std::array<char, 65536> chunk;
    for (;;) {
        const zip_int64_t got = zip_fread(file.get(), chunk.data(), chunk.size());
        if (got < 0) fail(archive_name, zip_file_strerror(file.get()));
        if (got == 0) return content;
        content.append(chunk.data(), static_cast<std::size_t>(got));
        if (content.size() > limit) fail(archive_name, "an entry expands to more than " + std::to_string(limit) + " bytes");
    }
}

}  // namespace

bool is_zip(std::span<const std::byte> bytes) noexcept {
    constexpr std::array first_entry = {std::byte{'P'}, std::byte{'K'}, std::byte{3}, std::byte{4}};
    constexpr std::array no_entry = {std::byte{'P'}, std::byte{'K'}, std::byte{5}, std::byte{6}};
    const auto start = bytes.first(std::min(bytes.size(), first_entry.size()));
    return std::ranges::equal(start, first_entry) || std::ranges::equal(start, no_entry);
}

UnpackedFile first_xml_of_zip(std::span<const std::byte> archive, std::string_view archive_name, std::uint64_t limit) {
    if (!is_zip(archive)) fail(archive_name, "it is no zip archive");
    const Owned<zip_t> opened = open_archive(archive, archive_name);
    const auto index = find_first_xml(opened.get());
    if (!index) fail(archive_name, "no entry is named *.xml");
    UnpackedFile file;
    file.name = safe_name(zip_get_name(opened.get(), *index, 0), archive_name);
    zip_stat_t claims = {};
    const bool claimed = zip_stat_index(opened.get(), *index, 0, &claims) == 0 && (claims.valid & ZIP_STAT_SIZE) != 0;
    if (claimed && claims.size > limit)
        fail(archive_name, "the entry '" + file.name + "' expands to more than " + std::to_string(limit) + " bytes");
    file.content = read_entry(opened.get(), *index, claimed ? claims.size : 0, archive_name, limit);
    return file;
}

UnpackedFile first_xml_of_zip_file(std::string_view path, std::uint64_t limit) {
    std::string bytes;
    try {
        bytes = platform::read_file(path, limit);
    } catch (const platform::FileError& error) {
        throw ArchiveError(error.what());
    }
    return first_xml_of_zip(std::as_bytes(std::span(bytes)), path, limit);
}

}  // namespace kiv::archive
