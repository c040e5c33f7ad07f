#include "convert_input.h"

#include <VL.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "error.h"
#include "image_file.h"
#include "text.h"

namespace {

constexpr std::string_view kSignature("\x89KIVR\r\n\x1A", 8);

[[noreturn]] void fail(const std::string& file, const std::string& why) {
    throw ToolError(ExitCode::kFailed, printable(file) + ": " + why);
}

std::ifstream opened(const std::string& file) {
    if (std::filesystem::is_directory(file)) fail(file, "is a folder");
    std::ifstream stream(file, std::ios::binary);
    if (!stream) fail(file, std::strerror(errno));
    return stream;
}

bool has_header(std::ifstream& stream) {
    std::string begin(kSignature.size(), '\0');
    stream.read(begin.data(), static_cast<std::streamsize>(begin.size()));
    const bool is_same = stream.gcount() == static_cast<std::streamsize>(begin.size()) && begin == kSignature;
    stream.clear();
    return is_same;
}

RawImage with_header(const std::string& file) {
    RawImage raw;
    check_vl(vlLoadFromFileRAWA(file.c_str(), &raw.info), "vlLoadFromFileRAW", file);
    raw.data.resize(raw.info.image_size);
    raw.info.image_data = raw.data.data();
    check_vl(vlLoadFromFileRAWA(file.c_str(), &raw.info), "vlLoadFromFileRAW", file);
    return raw;
}

RawImage without_header(std::ifstream& stream, const std::string& file, const BareFormat& bare) {
    RawImage raw;
    raw.info.pixel_type = bare.pixel_type;
    raw.info.width = bare.width;
    raw.info.height = bare.height;
    raw.info.padding_x = bare.padding;
    const uint64_t size = std::filesystem::file_size(file);
    const uint64_t there = size > bare.skip ? size - bare.skip : 0;
    raw.info.image_size = static_cast<uint32_t>(std::min<uint64_t>(there, UINT32_MAX));
    uint64_t bytes = 0;
    const VL_STATUS status = vlGetRawSize(&raw.info, &bytes);
    if (status == VL_ST_INVALID_BUFFER_SIZE) {
        raw.info.image_size = UINT32_MAX;
        check_vl(vlGetRawSize(&raw.info, &bytes), "vlGetRawSize", file);
        fail(file, "holds " + counted(there, "byte") + (bare.skip != 0 ? " behind those to skip" : "") + "; " +
                       std::to_string(bare.width) + " x " + std::to_string(bare.height) + " pixels of " +
                       pixel_format_name(bare.pixel_type) + " take " + std::to_string(bytes));
    }
    check_vl(status, "vlGetRawSize", file);
    if (there > bytes)
        raw.remark = "of " + counted(there, "byte") + " only the first " + std::to_string(bytes) + " are the image";
    raw.data.resize(bytes);
    raw.info.image_data = raw.data.data();
    raw.info.image_size = static_cast<uint32_t>(bytes);
    stream.seekg(static_cast<std::streamoff>(bare.skip));
    if (!stream.read(reinterpret_cast<char*>(raw.data.data()), static_cast<std::streamsize>(bytes)))
        fail(file, "cannot be read to the end");
    return raw;
}

}  // namespace

uint64_t pixel_type_of(const std::string& word) {
    uint64_t code = 0;
    if (vlGetPixelFormatByName(word.c_str(), &code) == VL_ST_SUCCESS) return code;
    char end = 0;
    unsigned long long number = 0;
    const char* name = nullptr;
    const bool is_number = std::sscanf(word.c_str(), "0x%llx%c", &number, &end) == 1;
    if (is_number && vlGetPixelFormatName(number, &name) == VL_ST_SUCCESS) return number;
    throw ToolError(ExitCode::kUsage, "--pixel-format: " + printable(word) +
                                          " is no pixel format that is known. Names are those of the PFNC, as Mono8, BayerRG12p, "
                                          "RGB8, YCbCr422_8; codes begin with 0x.");
}

std::string pixel_format_name(uint64_t pixel_type) {
    const char* name = nullptr;
    if (vlGetPixelFormatName(pixel_type, &name) == VL_ST_SUCCESS) return name;
    char code[24];
    std::snprintf(code, sizeof code, "0x%08llX", static_cast<unsigned long long>(pixel_type));
    return code;
}

RawImage read_raw_file(const std::string& file, const BareFormat& bare) {
    std::ifstream stream = opened(file);
    if (has_header(stream)) return with_header(file);
    if (bare.pixel_type == 0)
        fail(file, "has no header that tells what it holds; say it with --width, --height and --pixel-format");
    return without_header(stream, file, bare);
}
