#include "description.h"

#include <zip.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <stdexcept>

#include "description_texts.h"
#include "kiv/platform/paths.h"
#include "registers.h"

namespace kivsim {
namespace {

// stable for a model: hosts may recognise it
std::string guid_of(std::string_view text, uint64_t salt) {
    uint64_t hash[2] = {0xCBF29CE484222325U ^ salt, 0x84222325CBF29CE4U + salt};
    for (char c : text)
        for (auto& half : hash) half = (half ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    char guid[40];
    std::snprintf(guid, sizeof guid, "%08X-%04X-%04X-%04X-%012llX", static_cast<unsigned>(hash[0] >> 32),
                  static_cast<unsigned>(hash[0] >> 16 & 0xFFFF), static_cast<unsigned>(hash[0] & 0xFFFF),
                  static_cast<unsigned>(hash[1] >> 48), static_cast<unsigned long long>(hash[1] & 0xFFFFFFFFFFFFU));
    return guid;
}

std::string root_element(const CameraConfig& config) {
    const std::string name = plain_name(config.model);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
           "<RegisterDescription\n"
           "  ModelName=\"" +
           name +
           "\"\n"
           "  VendorName=\"Kiv\"\n"
           "  ToolTip=\"Simulated " +
           std::string(config.color ? "colour" : "monochrome") + " camera " + name +
           "\"\n"
           "  StandardNameSpace=\"None\"\n"
           "  SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\"\n"
           "  MajorVersion=\"1\" MinorVersion=\"2\" SubMinorVersion=\"0\"\n"
           "  ProductGuid=\"" +
           guid_of(name, 1) +
           "\"\n"
           "  VersionGuid=\"" +
           guid_of(name, 0x10200) +
           "\"\n"
           "  xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"\n"
           "  xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
           "  xsi:schemaLocation=\"http://www.genicam.org/GenApi/Version_1_1 GenApiSchema_Version_1_1.xsd\">\n";
}

// "@Name@" becomes the address of that register
void append_with_addresses(std::string& out, std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        const size_t begin = text.find('@', at);
        out += text.substr(at, begin - at);
        if (begin == text.npos) return;
        const size_t end = text.find('@', begin + 1);
        const auto* row = end == text.npos ? nullptr : find_register(text.substr(begin + 1, end - begin - 1));
        if (!row) throw std::logic_error("the description names no register: " + std::string(text.substr(begin, 40)));
        char address[24];
        std::snprintf(address, sizeof address, "0x%llX", static_cast<unsigned long long>(row->address));
        out += address;
        at = end + 1;
    }
}

struct DiscardArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct FreeSource {
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;
using Source = std::unique_ptr<zip_source_t, FreeSource>;

struct ZipError {
    zip_error_t error;
    ZipError() { zip_error_init(&error); }
    ~ZipError() { zip_error_fini(&error); }
    ZipError(const ZipError&) = delete;
    ZipError& operator=(const ZipError&) = delete;
};

[[noreturn]] void zip_failed(const char* what, zip_error_t* error) {
    throw std::runtime_error(std::string("simulated camera: cannot zip the description: ") + what + ": " +
                             zip_error_strerror(error));
}

std::vector<std::byte> content_of(zip_source_t* source) {
    if (zip_source_open(source) != 0) zip_failed("open", zip_source_error(source));
    std::vector<std::byte> bytes;
    std::byte block[16384];
    for (zip_int64_t got; (got = zip_source_read(source, block, sizeof block)) != 0;) {
        if (got < 0) zip_failed("read", zip_source_error(source));
        bytes.insert(bytes.end(), block, block + got);
    }
    zip_source_close(source);
    return bytes;
}

}  // namespace

std::string plain_name(std::string_view model) {
    std::string name;
    for (char c : model) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (name.empty() && !letter) name = "C";
        name += letter || (c >= '0' && c <= '9') ? c : '_';
    }
    return name.empty() ? "Camera" : name;
}

std::string camera_description(const CameraConfig& config) {
    std::string text = root_element(config);
    for (std::string_view part : kDescriptionTexts) append_with_addresses(text, part);
    return text + "</RegisterDescription>\n";
}

std::vector<std::byte> zip_of(const std::string& file_name, std::string_view text) {
    ZipError failure;
    Source container(zip_source_buffer_create(nullptr, 0, 0, &failure.error));
    if (!container) zip_failed("create", &failure.error);
    zip_source_keep(container.get());  // the archive takes one reference, the result is read through the other
    Archive archive(zip_open_from_source(container.get(), ZIP_TRUNCATE, &failure.error));
    if (!archive) {
        zip_source_free(container.get());
        zip_failed("open", &failure.error);
    }
    Source content(zip_source_buffer(archive.get(), text.data(), text.size(), 0));
    if (!content) zip_failed("take", zip_get_error(archive.get()));
    const auto index = zip_file_add(archive.get(), file_name.c_str(), content.get(), ZIP_FL_ENC_UTF_8);
    if (index < 0) zip_failed("add", zip_get_error(archive.get()));
    [[maybe_unused]] const auto* belongs_to_archive = content.release();
    constexpr uint16_t midnight = 0, first_of_2026 = (2026 - 1980) << 9 | 1 << 5 | 1;
    zip_file_set_dostime(archive.get(), static_cast<zip_uint64_t>(index), midnight, first_of_2026, 0);
    if (zip_close(archive.get()) != 0) zip_failed("close", zip_get_error(archive.get()));
    [[maybe_unused]] const auto* closed = archive.release();
    return content_of(container.get());
}

std::string file_url(const std::filesystem::path& path) {
    const auto text = std::filesystem::absolute(path).generic_u8string();
    std::string url = "file://";
    if (text.empty() || text[0] != u8'/') url += '/';
    for (char8_t c : text) {
        const bool plain = (c >= u8'a' && c <= u8'z') || (c >= u8'A' && c <= u8'Z') || (c >= u8'0' && c <= u8'9') || c == u8'/' ||
                           c == u8'.' || c == u8'-' || c == u8'_' || c == u8'~' || c == u8':';
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned>(c));
        url += plain ? std::string(1, static_cast<char>(c)) : std::string(escaped);
    }
    return url;
}

}  // namespace kivsim
