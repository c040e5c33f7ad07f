#include <VL.h>

#include "api/arguments.h"
#include "convert/convert.h"
#include "core/error.h"
#include "format/raw_view.h"
#include "image/image_handles.h"
#include "lut/lut_handles.h"

using namespace kiv::vl;

namespace {

VL_IMAGE_HANDLE image_from(const RawView& raw) {
    Image image(raw.Width(), raw.Height(), image_type_of(raw.Format()));
    convert_raw(raw, image, {});
    return give_image(std::move(image));
}

VL_DEMOSAIC known(VL_DEMOSAIC quality) {
    if (quality >= VL_DEMOSAIC_BILINEAR && quality <= VL_DEMOSAIC_BEST) return quality;
    throw Error(VL_ST_INVALID_PARAMETER, "there is no demosaicing " + std::to_string(quality));
}

void convert_with(const K_IMAGE_INFO* raw, Image& image, VL_DEMOSAIC demosaic, const Gains& gains, int32_t offset,
                  VL_LUT_HANDLE hLut) {
    const auto lut = hLut == nullptr ? nullptr : luts().Of(hLut);
    convert_raw(RawView(readable(raw)), image, {known(demosaic), {gains, offset, lut.get(), true}});
}

std::shared_ptr<Image> dib_of(VL_IMAGE_HANDLE handle) {
    auto image = image_of(handle);
    if (!image->IsDib()) throw Error(VL_ST_INVALID_PARAMETER, "the image is no DIB");
    return image;
}

}  // namespace

VL_STATUS VL_CALL vlGetPixelFormatName(uint64_t pixelType, const char** pName) {
    return guarded(__func__, [&] { required(pName, "pName") = pixel_format(pixelType).name; });
}

VL_STATUS VL_CALL vlGetPixelFormatByName(const char* name, uint64_t* pPixelType) {
    return guarded(__func__, [&] {
        refuse_null(name, "name");
        required(pPixelType, "pPixelType") = pixel_format(std::string_view(name)).code;
    });
}

VL_STATUS VL_CALL vlGetImageType(uint64_t pixelType, uint64_t* pImageType) {
    return guarded(__func__, [&] { required(pImageType, "pImageType") = image_type_of(pixel_format(pixelType)); });
}

VL_STATUS VL_CALL vlGetRawSize(const K_IMAGE_INFO* raw, uint64_t* pBytes) {
    return guarded(__func__, [&] {
        const RawView view(required(raw, "raw"));
        required(pBytes, "pBytes") = view.ImageBytes();
    });
}

VL_STATUS VL_CALL vlFromRAWtoImage(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, uint32_t gainRed, uint32_t gainGreen,
                                   uint32_t gainBlue) {
    return guarded(__func__, [&] {
        const auto image = image_of(hImage);
        convert_raw(RawView(readable(raw)), *image, {VL_DEMOSAIC_BILINEAR, {{gainRed, gainGreen, gainBlue}}});
    });
}

VL_STATUS VL_CALL vlFromRAWtoImageEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, VL_DEMOSAIC demosaic, uint32_t gainRed,
                                     uint32_t gainGreen, uint32_t gainBlue, int32_t offset, VL_LUT_HANDLE hLut) {
    return guarded(__func__, [&] {
        const auto image = image_of(hImage);
        convert_with(raw, *image, demosaic, {gainRed, gainGreen, gainBlue}, offset, hLut);
    });
}

VL_STATUS VL_CALL vlFromRAWtoDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, uint32_t gainRed, uint32_t gainGreen,
                                 uint32_t gainBlue) {
    return guarded(__func__, [&] {
        const auto dib = dib_of(hDib);
        convert_raw(RawView(readable(raw)), *dib, {VL_DEMOSAIC_BILINEAR, {{gainRed, gainGreen, gainBlue}}});
    });
}

VL_STATUS VL_CALL vlFromRAWtoDIBEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, VL_DEMOSAIC demosaic, uint32_t gainRed,
                                   uint32_t gainGreen, uint32_t gainBlue, int32_t offset, VL_LUT_HANDLE hLut) {
    return guarded(__func__, [&] {
        const auto dib = dib_of(hDib);
        convert_with(raw, *dib, demosaic, {gainRed, gainGreen, gainBlue}, offset, hLut);
    });
}

VL_STATUS VL_CALL vlImageFromRaw(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        auto& out = required(phImage, "phImage");
        out = image_from(RawView(readable(raw)));
    });
}

VL_STATUS VL_CALL vlImageFromBuffer(uint64_t pixelType, uint32_t width, uint32_t height, uint32_t paddingX, const void* data,
                                    uint64_t size, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        refuse_null(data, "data");
        auto& out = required(phImage, "phImage");
        out = image_from(RawView(pixel_format(pixelType), width, height, paddingX, data, size));
    });
}

VL_STATUS VL_CALL vlConvertImage(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        convert_image(*source, *image_of(hTarget));
    });
}
