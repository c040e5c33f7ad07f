#include "image_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <map>

#include "files.h"
#include "options.h"
#include "status_names.h"
#include "text.h"

namespace {

struct KindRow {
    const char* name;
    const char* extension;  ///< of files that are written
    const char* other;      ///< that is understood as well, or null
    VL_FILE_FORMAT format;  ///< of no meaning for raw files, which the imaging library writes by a function of their own
};

/// In the order of FileKind.
constexpr std::array kKinds{
    KindRow{"raw", ".raw", nullptr, VL_FILE_AUTO},  KindRow{"png", ".png", nullptr, VL_FILE_PNG},
    KindRow{"tiff", ".tif", ".tiff", VL_FILE_TIFF}, KindRow{"bmp", ".bmp", ".dib", VL_FILE_BMP},
    KindRow{"jpeg", ".jpg", ".jpeg", VL_FILE_JPEG},
};

const std::map<std::string, FileKind> kFormats{{"raw", FileKind::kRaw},  {"png", FileKind::kPng}, {"tiff", FileKind::kTiff},
                                               {"tif", FileKind::kTiff}, {"bmp", FileKind::kBmp}, {"jpeg", FileKind::kJpeg},
                                               {"jpg", FileKind::kJpeg}};
const std::map<std::string, VL_DEMOSAIC> kQualities{
    {"bilinear", VL_DEMOSAIC_BILINEAR}, {"edge", VL_DEMOSAIC_EDGE_AWARE}, {"best", VL_DEMOSAIC_BEST}};

const KindRow& row_of(FileKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

}  // namespace

const char* file_kind_name(FileKind kind) { return row_of(kind).name; }
const char* file_extension(FileKind kind) { return row_of(kind).extension; }

std::optional<FileKind> file_kind_of(const std::string& file) {
    std::string extension = path_of(file).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto* row = std::find_if(kKinds.begin(), kKinds.end(), [&](const KindRow& kind) {
        return extension == kind.extension || (kind.other != nullptr && extension == kind.other);
    });
    if (row == kKinds.end()) return std::nullopt;
    return static_cast<FileKind>(row - kKinds.begin());
}

void add_quality_options(CLI::App& command, FileStyle& style) {
    command
        .add_option("--quality", style.demosaic,
                    "How the colours of a colour filter are completed: bilinear (fast), edge, best (slow)")
        ->type_name("QUALITY")
        ->transform(one_of(kQualities))
        ->default_str("bilinear");
    command.add_option("--jpeg-quality", style.jpeg_quality, "Of JPEG files: 1 (small) to 100 (good)")
        ->type_name("N")
        ->check(CLI::Range(1, 100).description(""))
        ->capture_default_str();
}

void add_file_options(CLI::App& command, FileStyle& style) {
    command.add_option("--format", style.kind, "Kind of files: bmp, png, tiff, jpeg, raw")
        ->type_name("FORMAT")
        ->transform(one_of(kFormats))
        ->default_str("png");
    add_quality_options(command, style);
}

void check_vl(VL_STATUS status, const char* call, const std::string& about) {
    if (status == VL_ST_SUCCESS) return;
    throw ToolError(ExitCode::kFailed, std::string(call) + "(\"" + printable(about) + "\") failed: " + status_text(status) +
                                           ": " + vlGetLastErrorText());
}

Image image_of(const K_IMAGE_INFO& raw, VL_DEMOSAIC demosaic, const std::string& about) {
    VL_IMAGE_HANDLE handle = nullptr;
    check_vl(vlMalloc(&raw, &handle), "vlMalloc", about);
    Image image(handle);
    check_vl(vlFromRAWtoImageEx(&raw, handle, demosaic, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE, 0, nullptr), "vlFromRAWtoImageEx",
             about);
    return image;
}

void write_image_file(const K_IMAGE_INFO& raw, const std::string& file, const FileStyle& style) {
    if (style.kind == FileKind::kRaw) return check_vl(vlStoreToFileRAWA(&raw, file.c_str()), "vlStoreToFileRAW", file);
    write_image_file(image_of(raw, style.demosaic, file).get(), file, style);
}

void write_image_file(VL_IMAGE_HANDLE image, const std::string& file, const FileStyle& style) {
    if (style.kind == FileKind::kRaw) {
        K_IMAGE_INFO raw{};
        check_vl(vlGetImageInfo(image, &raw), "vlGetImageInfo", file);
        return check_vl(vlStoreToFileRAWA(&raw, file.c_str()), "vlStoreToFileRAW", file);
    }
    const int setting = style.kind == FileKind::kJpeg ? style.jpeg_quality : -1;
    check_vl(vlStoreToFileExA(image, file.c_str(), row_of(style.kind).format, setting), "vlStoreToFileEx", file);
}
