#include "files/tiff_file.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

#include "core/error.h"

namespace kiv::vl {
namespace {

/// A file in memory, as libtiff wants it: it seeks back to fill in what it did not know at first.
class MemoryFile {
public:
    EncodedFile Take() { return std::move(bytes_); }
    const char* Message() const { return message_; }

    static tmsize_t Read(thandle_t self, void* to, tmsize_t size) {
        return Of(self).ReadSome(to, static_cast<std::size_t>(size));
    }
    static tmsize_t Write(thandle_t self, void* from, tmsize_t size) {
        return Of(self).WriteAll(from, static_cast<std::size_t>(size));
    }
    static toff_t Seek(thandle_t self, toff_t offset, int whence) {
        auto& file = Of(self);
        const toff_t base = whence == SEEK_CUR ? file.position_ : whence == SEEK_END ? file.bytes_.size() : 0;
        return file.position_ = base + offset;
    }
    static toff_t Size(thandle_t self) { return Of(self).bytes_.size(); }
    static int Close(thandle_t) { return 0; }

    /// Keeps the first complaint; later ones follow from it. Returning 1 keeps the text off the error stream.
    static int OnError(TIFF*, void* self, const char*, const char* format, va_list arguments) {
        auto& file = Of(self);
        if (file.message_[0] == '\0') std::vsnprintf(file.message_, sizeof file.message_, format, arguments);
        return 1;
    }
    static int OnWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

private:
    static MemoryFile& Of(void* self) { return *static_cast<MemoryFile*>(self); }

    tmsize_t ReadSome(void* to, std::size_t size) const {
        if (position_ >= bytes_.size()) return 0;
        const std::size_t there = std::min<std::size_t>(size, bytes_.size() - position_);
        std::memcpy(to, bytes_.data() + position_, there);
        position_ += there;
        return static_cast<tmsize_t>(there);
    }
    tmsize_t WriteAll(const void* from, std::size_t size) noexcept {
        try {
            if (position_ + size > bytes_.size()) bytes_.resize(position_ + size);
        } catch (...) {
            return 0;
        }
        std::memcpy(bytes_.data() + position_, from, size);
        position_ += size;
        return static_cast<tmsize_t>(size);
    }

    EncodedFile bytes_;
    mutable toff_t position_ = 0;
    char message_[256] = "";
};

using OpenOptions = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;
using OpenTiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

[[noreturn]] void fail(const MemoryFile& file) {
    throw Error(VL_ST_ERROR, std::string("TIFF: ") + (file.Message()[0] != '\0' ? file.Message() : "cannot be encoded"));
}

OpenTiff open_for_writing(MemoryFile& file) {
    const OpenOptions options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (!options) throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), MemoryFile::OnError, &file);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), MemoryFile::OnWarning, &file);
    OpenTiff tiff(TIFFClientOpenExt("image", "w", &file, MemoryFile::Read, MemoryFile::Write, MemoryFile::Seek, MemoryFile::Close,
                                    MemoryFile::Size, nullptr, nullptr, options.get()),
                  TIFFClose);
    if (!tiff) fail(file);
    return tiff;
}

struct Tag {
    std::uint32_t tag;
    std::uint32_t value;
};

bool set_tags(TIFF* tiff, const Image& image, int compression) {
    const auto strip_lines = std::max<std::size_t>(1, 64 * 1024 / image.LineBytes());
    const Tag always[] = {
        {TIFFTAG_IMAGEWIDTH, image.Width()},
        {TIFFTAG_IMAGELENGTH, image.Height()},
        {TIFFTAG_BITSPERSAMPLE, 8 * image.BytesPerChannel()},
        {TIFFTAG_SAMPLESPERPIXEL, image.Channels()},
        {TIFFTAG_PHOTOMETRIC, image.IsColour() ? std::uint32_t{PHOTOMETRIC_RGB} : std::uint32_t{PHOTOMETRIC_MINISBLACK}},
        {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
        {TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT},
        {TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(strip_lines)},
        {TIFFTAG_COMPRESSION, compression == 0 ? std::uint32_t{COMPRESSION_NONE} : std::uint32_t{COMPRESSION_ADOBE_DEFLATE}},
    };
    for (const auto& [tag, value] : always)
        if (TIFFSetField(tiff, tag, value) != 1) return false;
    // Colours are as they are, not multiplied by alpha.
    const std::uint16_t extra = EXTRASAMPLE_UNASSALPHA;
    if (image.HasAlpha() && TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra) != 1) return false;
    if (compression == 0) return true;
    return TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ZIPQUALITY, compression) == 1;
}

template <class Component>
void swap_red_and_blue(std::uint8_t* line, std::size_t pixels, unsigned channels) {
    auto* pixel = reinterpret_cast<Component*>(line);
    for (std::size_t x = 0; x < pixels; ++x, pixel += channels) std::swap(pixel[0], pixel[2]);
}

// Strips are copied: TIFF wants red first, and the predictor works in the buffer that it is given.
bool write_strips(TIFF* tiff, const Image& image) {
    const auto strip_lines = static_cast<std::uint32_t>(std::max<std::size_t>(1, 64 * 1024 / image.LineBytes()));
    std::vector<std::uint8_t> strip(strip_lines * image.LineBytes());
    for (std::uint32_t first = 0, number = 0; first < image.Height(); first += strip_lines, ++number) {
        const std::uint32_t lines = std::min(strip_lines, image.Height() - first);
        for (std::uint32_t y = 0; y < lines; ++y)
            std::memcpy(strip.data() + y * image.LineBytes(), image.Line(first + y), image.LineBytes());
        if (image.IsColour()) {
            const std::size_t pixels = std::size_t{lines} * image.Width();
            image.IsDeep() ? swap_red_and_blue<std::uint16_t>(strip.data(), pixels, image.Channels())
                           : swap_red_and_blue<std::uint8_t>(strip.data(), pixels, image.Channels());
        }
        if (TIFFWriteEncodedStrip(tiff, number, strip.data(), static_cast<tmsize_t>(lines * image.LineBytes())) < 0) return false;
    }
    return true;
}

}  // namespace

EncodedFile encode_tiff(const Image& image, int compression) {
    MemoryFile file;
    OpenTiff tiff = open_for_writing(file);
    // Flushing reports what closing would keep to itself.
    if (!set_tags(tiff.get(), image, compression) || !write_strips(tiff.get(), image) || TIFFFlush(tiff.get()) != 1) fail(file);
    tiff.reset();
    if (file.Message()[0] != '\0') fail(file);
    return file.Take();
}

}  // namespace kiv::vl
