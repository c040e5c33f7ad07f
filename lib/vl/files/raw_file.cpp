#include "files/raw_file.h"

#include <kiv/platform/paths.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <system_error>

#include "core/error.h"
#include "format/raw_view.h"

namespace kiv::vl {
namespace {

constexpr std::array<std::uint8_t, 8> magic = {0x89, 'K', 'I', 'V', 'R', '\r', '\n', 0x1A};
constexpr std::uint32_t version = 1;
constexpr std::uint32_t header_size = 80;
constexpr std::uint32_t largest_header = 1u << 20;

using Header = std::array<std::uint8_t, header_size>;

template <class Number>
void put(Header& header, std::size_t at, Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i) header[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

template <class Number>
Number get(const Header& header, std::size_t at) {
    Number value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i) value |= static_cast<Number>(Number{header[at + i]} << 8 * i);
    return value;
}

std::uint64_t bytes_to_store(const K_IMAGE_INFO& raw) {
    return find_pixel_format(raw.pixel_type) != nullptr ? RawView(raw).ImageBytes() : raw.image_size;
}

Header make_header(const K_IMAGE_INFO& raw, std::uint64_t size) {
    Header header{};
    std::memcpy(header.data(), magic.data(), magic.size());
    put(header, 8, version);
    put(header, 12, header_size);
    put(header, 16, raw.pixel_type);
    put(header, 24, raw.width);
    put(header, 28, raw.height);
    put(header, 32, raw.padding_x);
    put(header, 40, raw.offset_x);
    put(header, 44, raw.offset_y);
    put(header, 48, size);
    put(header, 56, raw.frame_id);
    put(header, 64, raw.timestamp);
    return header;
}

struct Stored {
    K_IMAGE_INFO raw{};
    std::uint64_t data_at = 0;
};

[[noreturn]] void refuse(std::string_view path, const std::string& why) {
    throw Error(VL_ST_INVALID_DATA, std::string(path) + " is not a raw image: " + why);
}

Stored read_header(const Header& header, std::string_view path, std::uint64_t file_size) {
    if (std::memcmp(header.data(), magic.data(), magic.size()) != 0) refuse(path, "it does not begin as one");
    if (const auto found = get<std::uint32_t>(header, 8); found != version)
        refuse(path, "its version is " + std::to_string(found) + ", known is " + std::to_string(version));
    Stored stored;
    stored.data_at = get<std::uint32_t>(header, 12);
    const auto size = get<std::uint64_t>(header, 48);
    if (stored.data_at < header_size || stored.data_at > largest_header)
        refuse(path, "its header claims " + std::to_string(stored.data_at) + " bytes");
    if (size > std::numeric_limits<std::uint32_t>::max() || stored.data_at + size > file_size)
        refuse(path,
               "it claims " + std::to_string(size) + " bytes of data, the file has " + std::to_string(file_size) + " bytes");
    stored.raw.pixel_type = get<std::uint64_t>(header, 16);
    stored.raw.width = get<std::uint32_t>(header, 24);
    stored.raw.height = get<std::uint32_t>(header, 28);
    stored.raw.padding_x = get<std::uint32_t>(header, 32);
    stored.raw.offset_x = get<std::uint32_t>(header, 40);
    stored.raw.offset_y = get<std::uint32_t>(header, 44);
    stored.raw.image_size = static_cast<std::uint32_t>(size);
    stored.raw.frame_id = get<std::uint64_t>(header, 56);
    stored.raw.timestamp = get<std::uint64_t>(header, 64);
    return stored;
}

}  // namespace

EncodedFile encode_raw(const K_IMAGE_INFO& raw) {
    refuse_null(raw.image_data, "image_data");
    const std::uint64_t size = bytes_to_store(raw);
    const Header header = make_header(raw, size);
    EncodedFile bytes(header_size + size);
    std::memcpy(bytes.data(), header.data(), header_size);
    std::memcpy(bytes.data() + header_size, raw.image_data, size);
    return bytes;
}

void load_raw(std::string_view path, K_IMAGE_INFO& raw) {
    const auto file_path = platform::path_from_utf8(path);
    std::error_code trouble;
    const std::uint64_t file_size = std::filesystem::file_size(file_path, trouble);
    if (trouble) throw Error(VL_ST_IO, std::string(path) + " cannot be read: " + trouble.message());
    std::ifstream file(file_path, std::ios::binary);
    if (!file) throw Error(VL_ST_IO, std::string(path) + " cannot be opened: " + std::generic_category().message(errno));

    Header header;
    if (!file.read(reinterpret_cast<char*>(header.data()), header.size())) refuse(path, "it ends within its header");
    Stored stored = read_header(header, path, file_size);
    if (raw.image_data != nullptr) {
        if (raw.image_size < stored.raw.image_size)
            throw Error(VL_ST_INVALID_BUFFER_SIZE, std::string(path) + " holds " + std::to_string(stored.raw.image_size) +
                                                       " bytes of data, the buffer has room for " +
                                                       std::to_string(raw.image_size));
        file.seekg(static_cast<std::streamoff>(stored.data_at));
        if (!file.read(static_cast<char*>(raw.image_data), stored.raw.image_size))
            throw Error(VL_ST_IO, std::string(path) + " cannot be read to its end");
    }
    stored.raw.image_data = raw.image_data;
    raw = stored.raw;
}

}  // namespace kiv::vl
