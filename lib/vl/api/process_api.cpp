#include <VL.h>
#include <kiv/platform/text.h>

#include <span>
#include <vector>

#include "api/arguments.h"
#include "convert/convert.h"
#include "core/error.h"
#include "core/parallel.h"
#include "geometry/geometry.h"
#include "hdr/hdr.h"
#include "image/image_handles.h"
#include "process/chain.h"

using namespace kiv::vl;

namespace {

std::vector<std::shared_ptr<Image>> series_of(const VL_IMAGE_HANDLE* images, uint32_t count) {
    refuse_null(images, "images");
    // Not more than could be of use: the number may be as wrong as anything else.
    constexpr uint32_t most = 16;
    if (count > most) throw Error(VL_ST_INVALID_PARAMETER, std::to_string(count) + " exposures: 2 to 16 are possible");
    std::vector<std::shared_ptr<Image>> series;
    for (uint32_t i = 0; i < count; ++i) series.push_back(image_of(images[i]));
    return series;
}

Chain chain_of(const char* operations) {
    refuse_null(operations, "operations");
    return Chain(kiv::platform::utf8_from_local(operations));
}

Image copy_of(const Image& image) {
    Image copy(image.Width(), image.Height(), image.Type());
    copy_pixels(image, copy);
    copy.SetSignificantBits(image.SignificantBits());
    return copy;
}

}  // namespace

VL_STATUS VL_CALL vlFlip(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, VL_FLIP how) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        flip(*source, *image_of(hTarget), how);
    });
}

VL_STATUS VL_CALL vlRotate(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, double degrees) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        rotate(*source, *image_of(hTarget), degrees);
    });
}

VL_STATUS VL_CALL vlGetRotatedSize(VL_IMAGE_HANDLE hSource, double degrees, uint32_t* pWidth, uint32_t* pHeight) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        auto& width = required(pWidth, "pWidth");
        auto& height = required(pHeight, "pHeight");
        const Size size = rotated_size(*source, degrees);
        width = size.width;
        height = size.height;
    });
}

VL_STATUS VL_CALL vlMallocHDR(VL_IMAGE_HANDLE hExposure, uint32_t bits, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        const auto exposure = image_of(hExposure);
        auto& out = required(phImage, "phImage");
        if (bits != 8 && bits != 16) throw Error(VL_ST_INVALID_PARAMETER, std::to_string(bits) + " bits: 8 and 16 are possible");
        const uint64_t grey = bits == 8 ? VL_IMAGE_MONO8 : VL_IMAGE_MONO16;
        const uint64_t colour = bits == 8 ? VL_IMAGE_BGR8 : VL_IMAGE_BGR16;
        out = give_image(Image(exposure->Width(), exposure->Height(), exposure->IsColour() ? colour : grey));
    });
}

VL_STATUS VL_CALL vlHDRAnalyzeImages(const VL_IMAGE_HANDLE* images, uint32_t count, VL_HDR_EXPOSURE* results) {
    return guarded(__func__, [&] {
        const auto series = series_of(images, count);
        refuse_null(results, "results");
        const auto found = analyse_exposures(series);
        std::copy(found.begin(), found.end(), results);
    });
}

VL_STATUS VL_CALL vlCombineImagesHDR(const VL_IMAGE_HANDLE* images, uint32_t count, const double* exposures, VL_HDR_METHOD method,
                                     VL_IMAGE_HANDLE hTarget) {
    return guarded(__func__, [&] {
        const auto series = series_of(images, count);
        const auto target = image_of(hTarget);
        combine_exposures(series, {exposures, exposures == nullptr ? 0 : count}, method, *target);
    });
}

VL_STATUS VL_CALL vlImageProcessing(VL_IMAGE_HANDLE hSource, const char* operations, VL_IMAGE_HANDLE hTarget) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        const auto target = image_of(hTarget);
        convert_image(chain_of(operations).Run(copy_of(*source)), *target);
    });
}

VL_STATUS VL_CALL vlImageProcessingEx(const K_IMAGE_INFO* raw, const char* operations, VL_IMAGE_HANDLE* phImage) {
    return guarded(__func__, [&] {
        const RawView view(readable(raw));
        Chain chain = chain_of(operations);
        auto& out = required(phImage, "phImage");
        const VL_DEMOSAIC demosaic = chain.TakeDemosaic();
        Image image(view.Width(), view.Height(), image_type_of(view.Format()));
        convert_raw(view, image, {demosaic, {}, 0});
        out = give_image(chain.Run(std::move(image)));
    });
}

VL_STATUS VL_CALL vlEnableParallelProcessing(int32_t enable) {
    return guarded(__func__, [&] {
        if (enable != 0 && enable != 1) throw Error(VL_ST_INVALID_PARAMETER, "1 and 0 are possible");
        enable_parallel(enable == 1);
    });
}
