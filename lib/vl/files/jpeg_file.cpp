#include "files/jpeg_file.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <optional>

// It needs the two above.
#include <jpeglib.h>

#include "core/error.h"
#include "files/eight_bit.h"

namespace kiv::vl {
namespace {

/// libjpeg ends the program where it cannot go on, unless told otherwise; a jump runs no destructors. So everything that owns
/// something lives in this object, outside the jump.
class JpegEncoder {
public:
    JpegEncoder() {
        compress_.err = jpeg_std_error(&errors_);
        errors_.error_exit = OnError;
        errors_.output_message = OnMessage;
        compress_.client_data = this;
    }
    ~JpegEncoder() {
        jpeg_destroy_compress(&compress_);
        std::free(data_);  // NOLINT: taken by libjpeg
    }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    EncodedFile Encode(const Image& image, int quality) {
        if (!EncodeOrJump(image, quality)) throw Error(VL_ST_ERROR, std::string("JPEG: ") + message_);
        const auto* first = reinterpret_cast<const std::byte*>(data_);
        return {first, first + size_};
    }

private:
    bool EncodeOrJump(const Image& image, int quality) {
        if (setjmp(jump_) != 0) return false;
        jpeg_create_compress(&compress_);
        jpeg_mem_dest(&compress_, &data_, &size_);
        compress_.image_width = image.Width();
        compress_.image_height = image.Height();
        compress_.input_components = static_cast<int>(image.Channels());
        compress_.in_color_space = image.IsColour() ? JCS_EXT_BGR : JCS_GRAYSCALE;
        jpeg_set_defaults(&compress_);
        jpeg_set_quality(&compress_, quality, TRUE);
        if (quality > 90) FullColour();
        jpeg_start_compress(&compress_, TRUE);
        for (std::uint32_t y = 0; y < image.Height(); ++y) {
            JSAMPROW line = const_cast<JSAMPROW>(image.Line(y));  // an old interface: it is not written to
            jpeg_write_scanlines(&compress_, &line, 1);
        }
        jpeg_finish_compress(&compress_);
        return true;
    }

    /// Who asks for that much quality does not want half of the colour thrown away.
    void FullColour() {
        for (int i = 0; i < compress_.num_components; ++i)
            compress_.comp_info[i].h_samp_factor = compress_.comp_info[i].v_samp_factor = 1;
    }

    static void OnError(j_common_ptr common) {
        auto& self = *static_cast<JpegEncoder*>(common->client_data);
        char text[JMSG_LENGTH_MAX];
        common->err->format_message(common, text);
        std::snprintf(self.message_, sizeof self.message_, "%s", text);
        std::longjmp(self.jump_, 1);
    }
    static void OnMessage(j_common_ptr) {}

    jpeg_compress_struct compress_{};
    jpeg_error_mgr errors_{};
    std::jmp_buf jump_{};
    unsigned char* data_ = nullptr;
    unsigned long size_ = 0;  // NOLINT: libjpeg's type
    char message_[JMSG_LENGTH_MAX] = "";
};

}  // namespace

EncodedFile encode_jpeg(const Image& image, int quality) {
    std::optional<Image> copy;
    const Image& source = eight_bit(image, copy);
    if (source.Width() > JPEG_MAX_DIMENSION || source.Height() > JPEG_MAX_DIMENSION)
        throw Error(VL_ST_INVALID_PARAMETER, "JPEG: " + size_text(source.Width(), source.Height()) + " pixels are more than " +
                                                 std::to_string(JPEG_MAX_DIMENSION) + " a side");
    return JpegEncoder().Encode(source, quality);
}

}  // namespace kiv::vl
