#include "files/image_file.h"

#include <kiv/platform/paths.h>

#include <algorithm>
#include <span>
#include <string>

#include "core/error.h"
#include "files/bmp_file.h"
#include "files/jpeg_file.h"
#include "files/png_file.h"
#include "files/tiff_file.h"

namespace kiv::vl {
namespace {

struct FormatRow {
    VL_FILE_FORMAT format;
    std::string_view extensions[2];
    std::int32_t usual;  ///< the setting that -1 stands for
    std::int32_t least;
    std::int32_t most;
    EncodedFile (*encode)(const Image& image, int setting);
};

constexpr FormatRow rows[] = {
    {VL_FILE_PNG, {".png", ""}, 1, 0, 9, encode_png},
    {VL_FILE_TIFF, {".tif", ".tiff"}, 0, 0, 9, encode_tiff},
    {VL_FILE_BMP, {".bmp", ".dib"}, 0, 0, 0, encode_bmp},
    {VL_FILE_JPEG, {".jpg", ".jpeg"}, 90, 1, 100, encode_jpeg},
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
        throw Error(VL_ST_INVALID_PARAMETER,
                    std::string(path) + ": the extension is none of .png, .tif, .tiff, .bmp, .dib, .jpg, .jpeg");
    throw Error(VL_ST_INVALID_PARAMETER, "there is no file format " + std::to_string(format));
}

}  // namespace

void store_image(const Image& image, std::string_view path, VL_FILE_FORMAT format, std::int32_t setting) {
    const auto& row = row_of(format, path);
    if (setting == usual_setting) setting = row.usual;
    if (setting < row.least || setting > row.most)
        throw Error(VL_ST_INVALID_PARAMETER, "a setting of " + std::to_string(setting) + ": this format has " +
                                                 std::to_string(row.least) + " to " + std::to_string(row.most));
    const EncodedFile bytes = row.encode(image, setting);
    platform::write_file_atomically(path, std::span<const std::byte>(bytes));
}

}  // namespace kiv::vl
