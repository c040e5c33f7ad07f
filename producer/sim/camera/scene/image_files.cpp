#include "image_files.h"

#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "kiv/platform/paths.h"

namespace kivsim {
namespace {

constexpr uint64_t kMaxPixels = 64'000'000;
constexpr uint64_t kMaxFileSize = 512U << 20;

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& why) {
    throw std::runtime_error("simulated camera: " + kiv::platform::utf8_from_path(file) + ": " + why);
}

void check_size(const std::filesystem::path& file, uint64_t width, uint64_t height) {
    if (width == 0 || height == 0 || width > kMaxPixels || height > kMaxPixels || width * height > kMaxPixels)
        refuse(file, "pictures of " + std::to_string(width) + " x " + std::to_string(height) + " pixels are not played");
}

uint16_t widen(uint8_t value) { return static_cast<uint16_t>(value * 257U); }

Picture read_png(const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const auto content = kiv::platform::read_file(kiv::platform::utf8_from_path(file), kMaxFileSize);
    if (!png_image_begin_read_from_memory(&image, content.data(), content.size())) refuse(file, image.message);
    const std::unique_ptr<png_image, void (*)(png_imagep)> owner(&image, png_image_free);
    check_size(file, image.width, image.height);
    Picture picture;
    picture.width = image.width;
    picture.height = image.height;
    picture.planes = image.format & PNG_FORMAT_FLAG_COLOR ? 3 : 1;
    // 8 bits with the file's own gamma: what a viewer shows is what the camera delivers
    image.format = picture.planes == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr)) refuse(file, image.message);
    picture.values.resize(bytes.size());
    std::ranges::transform(bytes, picture.values.begin(), widen);
    return picture;
}

// grey of 8 or 16 bits as it stands; every other kind through the library's conversion to RGBA
Picture read_tiff(const std::filesystem::path& file) {
    const auto name = file.string();
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(name.c_str(), "r"), TIFFClose);
    if (!tiff) refuse(file, "not a TIFF file");
    uint32_t width = 0, height = 0;
    uint16_t bits = 0, samples = 1, meaning = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &meaning);
    check_size(file, width, height);
    Picture picture;
    picture.width = width;
    picture.height = height;
    const bool grey = samples == 1 && meaning == PHOTOMETRIC_MINISBLACK && (bits == 8 || bits == 16) && !TIFFIsTiled(tiff.get());
    if (grey) {
        std::vector<uint8_t> line(static_cast<size_t>(std::max<tmsize_t>(TIFFScanlineSize(tiff.get()), 0)));
        if (line.size() < size_t{width} * bits / 8) refuse(file, "rows are shorter than the picture is wide");
        for (uint32_t y = 0; y < height; ++y) {
            if (TIFFReadScanline(tiff.get(), line.data(), y) < 0) refuse(file, "row " + std::to_string(y) + " cannot be read");
            for (uint32_t x = 0; x < width; ++x) {
                uint16_t value = widen(line[x]);
                if (bits == 16) std::memcpy(&value, &line[size_t{x} * 2], 2);
                picture.values.push_back(value);
            }
        }
        return picture;
    }
    std::vector<uint32_t> pixels(size_t{width} * height);
    if (!TIFFReadRGBAImageOriented(tiff.get(), width, height, pixels.data(), ORIENTATION_TOPLEFT))
        refuse(file, "cannot be decoded");
    picture.planes = 3;
    for (uint32_t pixel : pixels)
        for (uint32_t value : {TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel)})
            picture.values.push_back(widen(static_cast<uint8_t>(value)));
    return picture;
}

uint64_t read_pnm_number(std::istream& in) {
    for (in >> std::ws; in.peek() == '#'; in >> std::ws) in.ignore(1 << 16, '\n');
    uint64_t number = 0;
    in >> number;
    return number;
}

Picture read_pnm(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    char kind[2] = {};
    in.read(kind, 2);
    if (!in || kind[0] != 'P' || (kind[1] != '5' && kind[1] != '6')) refuse(file, "not a binary PGM or PPM file");
    const uint64_t width = read_pnm_number(in), height = read_pnm_number(in), top = read_pnm_number(in);
    in.get();  // one blank ends the header
    if (!in || top == 0 || top > 65535) refuse(file, "the header is damaged");
    check_size(file, width, height);
    Picture picture;
    picture.width = static_cast<uint32_t>(width);
    picture.height = static_cast<uint32_t>(height);
    picture.planes = kind[1] == '6' ? 3 : 1;
    const size_t count = static_cast<size_t>(width * height) * picture.planes, size = top > 255 ? 2 : 1;
    std::vector<uint8_t> bytes(count * size);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (static_cast<size_t>(in.gcount()) != bytes.size()) refuse(file, "the file ends before the picture does");
    picture.values.resize(count);
    for (size_t i = 0; i < count; ++i) {
        const uint64_t value = size == 1 ? bytes[i] : bytes[2 * i] << 8 | bytes[2 * i + 1];
        picture.values[i] = static_cast<uint16_t>(std::min(value, top) * 65535 / top);
    }
    return picture;
}

struct FileKind {
    const char* extension;
    Picture (*read)(const std::filesystem::path&);
};
constexpr FileKind kKinds[] = {{".png", read_png}, {".tif", read_tiff}, {".tiff", read_tiff},
                               {".pgm", read_pnm}, {".ppm", read_pnm},  {".pnm", read_pnm}};

const FileKind* kind_of(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto* found = std::ranges::find_if(kKinds, [&](const FileKind& kind) { return extension == kind.extension; });
    return found == std::end(kKinds) ? nullptr : found;
}

}  // namespace

std::vector<std::filesystem::path> playable_files(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.is_regular_file() && kind_of(entry.path())) files.push_back(entry.path());
    if (error) refuse(folder, error.message());
    if (files.empty()) refuse(folder, "no PNG, TIFF, PGM or PPM file is in this folder");
    std::ranges::sort(files);
    return files;
}

Picture read_picture(const std::filesystem::path& file) {
    const auto* kind = kind_of(file);
    if (!kind) refuse(file, "not a kind of picture that can be played");
    return kind->read(file);
}

}  // namespace kivsim
