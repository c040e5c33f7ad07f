#include "files/image_file.h"

#include <kiv/platform/paths.h>

#include <algorithm>
#include <span>
#include <string>

#include "core/error.h"
#include "files/png_file.h"
#include "files/tiff_file.h"

namespace kiv::vl {
namespace {

struct FormatRow {
    VL_FILE_FORMAT format;
    std::string_view extensions[2];
    std::int32_t fast;  ///< the compression that -1 stands for
    EncodedFile (*encode)(const Image& image, int compression);
};

constexpr FormatRow rows[] = {
    {VL_FILE_PNG, {".png", ""}, 1, encode_png},
    {VL_FILE_TIFF, {".tif", ".tiff"}, 0, encode_tiff},
};

bool ends_with_any_case(std::string_view text, std::string_view ending) {
    if (ending.empty() || text.size() < ending.size()) return false;
    const auto tail = text.substr(text.size() - ending.size());
    return std::equal(tail.begin(), tail.end(), ending.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

const FormatRow& row_of(VL_FILE_FORMAT format, std::string_view path) {
    for (const auto& row : rows) {
        if (row.format == format) return row;
        if (format != VL_FILE_AUTO) continue;
        for (auto extension : row.extensions)
            if (ends_with_any_case(path, extension)) return row;
    }
    if (format == VL_FILE_AUTO)
        throw Error(VL_ST_INVALID_PARAMETER, std::string(path) + ": the extension is none of .png, .tif, .tiff");
    throw Error(VL_ST_INVALID_PARAMETER, "there is no file format " + std::to_string(format));
}

}  // namespace

void store_image(const Image& image, std::string_view path, VL_FILE_FORMAT format, std::int32_t compression) {
    if (compression < default_compression || compression > 9)
        throw Error(VL_ST_INVALID_PARAMETER, "a compression of " + std::to_string(compression) + ": -1 to 9 are known");
    const auto& row = row_of(format, path);
    const EncodedFile bytes = row.encode(image, compression == default_compression ? row.fast : compression);
    platform::write_file_atomically(path, std::span<const std::byte>(bytes));
}

}  // namespace kiv::vl
