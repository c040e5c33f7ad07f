/// Images in files: the kinds of files, how they are chosen on the command line or by a file's name, and the writing. For any
/// thread. What fails is a ToolError that names the file.
#pragma once

#include <VL.h>

#include <memory>
#include <optional>
#include <string>

#include "session.h"

namespace CLI {
class App;
}

using Image = std::unique_ptr<VL_IMAGE, Closer<vlFree>>;

enum class FileKind { kRaw, kPng, kTiff, kBmp, kJpeg };

/// How an image becomes a file.
struct FileStyle {
    FileKind kind = FileKind::kPng;
    VL_DEMOSAIC demosaic = VL_DEMOSAIC_BILINEAR;  ///< of colour filter images, where the file is not raw
    int jpeg_quality = 90;                        ///< 1 to 100
};

/// "raw", "png", "tiff", "bmp", "jpeg"
const char* file_kind_name(FileKind kind);
/// ".raw", ".png", ".tif", ".bmp", ".jpg"
const char* file_extension(FileKind kind);
/// By the extension of a file name, in any case of letters; nothing for one that belongs to no kind.
std::optional<FileKind> file_kind_of(const std::string& file);

/// --quality and --jpeg-quality.
void add_quality_options(CLI::App& command, FileStyle& style);
/// --format, and the qualities.
void add_file_options(CLI::App& command, FileStyle& style);

/// Throws unless a call of the imaging library succeeded; `about` is the file or the camera that it was for.
void check_vl(VL_STATUS status, const char* call, const std::string& about);

/// The image as it is without loss: 8 or 16 bits, grey or colour. `about` is for the message of a failure.
Image image_of(const K_IMAGE_INFO& raw, VL_DEMOSAIC demosaic, const std::string& about);

/// Replaces the file. A raw one holds the buffer as it is, others the image in it.
void write_image_file(const K_IMAGE_INFO& raw, const std::string& file, const FileStyle& style);
/// The same for an image; a raw file holds its pixels. Not for DIBs.
void write_image_file(VL_IMAGE_HANDLE image, const std::string& file, const FileStyle& style);
