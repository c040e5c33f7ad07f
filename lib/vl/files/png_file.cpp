#include "files/png_file.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <new>

#include "core/error.h"

namespace kiv::vl {
namespace {

/// libpng leaves a failed call with longjmp, which runs no destructors. So everything that owns something lives in this object,
/// outside the jump, and the functions between setjmp and longjmp have nothing but plain variables.
class PngEncoder {
public:
    PngEncoder() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_write_struct(&png_, nullptr);
            throw std::bad_alloc();
        }
        png_set_write_fn(png_, this, OnWrite, OnFlush);
    }
    ~PngEncoder() { png_destroy_write_struct(&png_, &info_); }
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    EncodedFile Encode(const Image& image, int compression) {
        bytes_.reserve(image.Bytes() / 2 + 1024);
        if (!EncodeOrJump(image, compression)) {
            if (out_of_memory_) throw std::bad_alloc();
            throw Error(VL_ST_ERROR, std::string("PNG: ") + message_);
        }
        return std::move(bytes_);
    }

private:
    bool EncodeOrJump(const Image& image, int compression) {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        WriteHeader(image, compression);
        WriteLines(image);
        png_write_end(png_, info_);
        return true;
    }

    void WriteHeader(const Image& image, int compression) {
        const int depth = static_cast<int>(8 * image.BytesPerChannel());
        png_set_user_limits(png_, 0x7FFFFFFF, 0x7FFFFFFF);
        png_set_compression_level(png_, compression);
        // Trying all filters for each line costs more than everything else together; images of cameras are smooth along lines.
        png_set_filter(png_, PNG_FILTER_TYPE_BASE,
                       compression == 0  ? PNG_FILTER_NONE
                       : compression < 6 ? PNG_FILTER_SUB
                                         : PNG_ALL_FILTERS);
        png_set_IHDR(png_, info_, image.Width(), image.Height(), depth,
                     image.HasAlpha()   ? PNG_COLOR_TYPE_RGB_ALPHA
                     : image.IsColour() ? PNG_COLOR_TYPE_RGB
                                        : PNG_COLOR_TYPE_GRAY,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (image.SignificantBits() < static_cast<unsigned>(depth)) {
            const auto bits = static_cast<png_byte>(image.SignificantBits());
            const png_color_8 significant = {bits, bits, bits, bits, bits};
            png_set_sBIT(png_, info_, &significant);
        }
        png_write_info(png_, info_);
        if (image.IsColour()) png_set_bgr(png_);
        if (image.IsDeep() && std::endian::native == std::endian::little) png_set_swap(png_);
    }

    void WriteLines(const Image& image) {
        for (std::uint32_t y = 0; y < image.Height(); ++y) png_write_row(png_, image.Line(y));
    }

    static PngEncoder& Self(png_structp png) { return *static_cast<PngEncoder*>(png_get_error_ptr(png)); }

    static void OnError(png_structp png, png_const_charp text) {
        std::snprintf(Self(png).message_, sizeof message_, "%s", text);
        png_longjmp(png, 1);
    }
    static void OnWarning(png_structp, png_const_charp) {}
    static void OnFlush(png_structp) {}

    static void OnWrite(png_structp png, png_bytep data, std::size_t size) {
        // An exception must not pass through libpng either.
        if (!Self(png).Append(data, size)) png_error(png, "out of memory");
    }
    bool Append(const png_byte* data, std::size_t size) noexcept {
        try {
            const auto* first = reinterpret_cast<const std::byte*>(data);
            bytes_.insert(bytes_.end(), first, first + size);
        } catch (...) {
            out_of_memory_ = true;
        }
        return !out_of_memory_;
    }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    EncodedFile bytes_;
    char message_[256] = "";
    bool out_of_memory_ = false;
};

}  // namespace

EncodedFile encode_png(const Image& image, int compression) { return PngEncoder().Encode(image, compression); }

}  // namespace kiv::vl
