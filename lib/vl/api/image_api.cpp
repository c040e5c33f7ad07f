#include <VL.h>

#include "convert/convert.h"
#include "core/error.h"
#include "format/raw_view.h"
#include "image/image_handles.h"

using namespace kiv::vl;

VL_STATUS VL_CALL vlMalloc(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        const auto& record = required(raw, "raw");
        auto& out = required(phImage, "phImage");
        out = give_image(Image(record.width, record.height, image_type_of(pixel_format(record.pixel_type))));
    });
}

VL_STATUS VL_CALL vlMallocEx(uint32_t width, uint32_t height, uint64_t imageType, void* buffer, uint64_t bufferSize,
                             VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        auto& out = required(phImage, "phImage");
        out =
            give_image(buffer == nullptr ? Image(width, height, imageType) : Image(width, height, imageType, buffer, bufferSize));
    });
}

VL_STATUS VL_CALL vlMallocDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        const auto& record = required(raw, "raw");
        auto& out = required(phImage, "phImage");
        const bool colour = pixel_format(record.pixel_type).IsColour();
        out = give_image(Image::Dib(record.width, record.height, colour ? VL_IMAGE_BGR8 : VL_IMAGE_MONO8));
    });
}

VL_STATUS VL_CALL vlFree(VL_IMAGE_HANDLE hImage) {
    return guarded(__func__, [&] { free_image(hImage); });
}

VL_STATUS VL_CALL vlGetImageInfo(VL_IMAGE_HANDLE hImage, K_IMAGE_INFO* pInfo) {
    return guarded(__func__, [&] {
        const auto image = image_of(hImage);
        auto& out = required(pInfo, "pInfo");
        if (image->IsDib()) throw Error(VL_ST_NOT_IMPLEMENTED, "the lines of a DIB stand bottom-up");
        out = {};
        out.pixel_type = image->Type();
        out.width = image->Width();
        out.height = image->Height();
        out.image_size = static_cast<uint32_t>(image->Bytes());
        out.image_data = image->Line(0);
    });
}
