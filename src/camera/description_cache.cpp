#include "camera/description_cache.h"

#include <kiv/archive/first_xml.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/paths.h>

#include <algorithm>
#include <span>

#include "camera/description.h"
#include "transport/sdk_paths.h"
#include "transport/status.h"

namespace kiv {

namespace {

// The folder levels below the root, made one by one.
constexpr std::string_view levels[] = {"GenICam", "xml", "TransportLayers", "KIV"};

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

// Devices name archives ".zip" in any letter case; some forget to.
bool is_zipped(const std::string& name, const std::string& bytes) {
    return upper(name).find(".ZIP") != name.npos || archive::is_zip(std::as_bytes(std::span(bytes)));
}

// Runs a file operation; any failure is K_ST_IO for the caller and a line in the debugger output for people.
template <class Operation>
auto stored(Operation&& operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const std::runtime_error& error) {
        platform::debug_print(std::string("DescriptionCache: ") + error.what() + "\n");
        fail(K_ST_IO);
    }
}

// FNV-1a: tells two archives apart well enough to know whether a file was unpacked from this one.
std::string fingerprint(const std::string& bytes) {
    std::uint64_t hash = 14695981039346656037ull;
    for (unsigned char byte : bytes) hash = (hash ^ byte) * 1099511628211ull;
    return std::to_string(bytes.size()) + " " + std::to_string(hash);
}

}  // namespace

DescriptionCache::DescriptionCache() : folder_(expand_path("$(KIVSDK_ROOT)")) {
    for (auto level : levels) folder_ = platform::join_path(folder_, level);
}

std::string DescriptionCache::Keep(const std::string& name, std::string bytes) const {
    auto path = platform::join_path(folder_, name);
    return stored([&] {
        platform::create_folders(folder_);
        platform::write_file_atomically(path, bytes);
        if (!is_zipped(name, bytes)) return std::move(bytes);

        auto unpacked = archive::first_xml_of_zip(std::as_bytes(std::span(bytes)), name);
        auto xml_path = platform::join_path(folder_, unpacked.name);
        // A file that was unpacked from this very archive is used as it is. The note beside it says from which: two
        // cameras may well use one name for two descriptions.
        auto note_path = xml_path + ".from";
        auto note = name + " " + fingerprint(bytes);
        bool unpacked_before =
            platform::path_exists(xml_path) && platform::path_exists(note_path) && platform::read_file(note_path, 4096) == note;
        if (!unpacked_before) {
            platform::write_file_atomically(xml_path, unpacked.content);
            platform::write_file_atomically(note_path, note);
        }
        return platform::read_file(xml_path, longest_description);
    });
}

std::string DescriptionCache::Open(const std::string& path) const {
    return stored([&] {
        auto bytes = platform::read_file(path, longest_description);
        if (!is_zipped(path, bytes)) return bytes;
        return archive::first_xml_of_zip(std::as_bytes(std::span(bytes)), path, longest_description).content;
    });
}

}  // namespace kiv
