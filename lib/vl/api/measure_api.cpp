#include <VL.h>

#include "api/arguments.h"
#include "core/error.h"
#include "image/image_handles.h"
#include "measure/histogram.h"
#include "measure/pixels.h"

using namespace kiv::vl;

namespace {

struct ColourOut {
    uint16_t& red;
    uint16_t& green;
    uint16_t& blue;

    ColourOut(uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue)
        : red(required(pRed, "pRed")), green(required(pGreen, "pGreen")), blue(required(pBlue, "pBlue")) {}
    void Set(const Colour16& colour) const {
        red = colour.red;
        green = colour.green;
        blue = colour.blue;
    }
};

}  // namespace

VL_STATUS VL_CALL vlGetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue) {
    return guarded(__func__, [&] {
        const auto image = image_of(hImage);
        const ColourOut out(pRed, pGreen, pBlue);
        out.Set(pixel_at(*image, x, y));
    });
}

VL_STATUS VL_CALL vlGetPixelEx(const K_IMAGE_INFO* raw, uint32_t x, uint32_t y, uint16_t* values, uint32_t* pCount) {
    return guarded(__func__, [&] {
        const RawView view(readable(raw));
        refuse_null(values, "values");
        auto& count = required(pCount, "pCount");
        const auto pixel = stored_pixel(view, x, y);
        std::copy(pixel.begin(), pixel.end(), values);
        count = static_cast<uint32_t>(pixel.size());
    });
}

VL_STATUS VL_CALL vlSetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t red, uint16_t green, uint16_t blue) {
    return guarded(__func__, [&] { set_pixel(*image_of(hImage), x, y, {red, green, blue}); });
}

VL_STATUS VL_CALL vlGetAverage(VL_IMAGE_HANDLE hImage, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom,
                               uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue) {
    return guarded(__func__, [&] {
        const auto image = image_of(hImage);
        const ColourOut out(pRed, pGreen, pBlue);
        out.Set(average(*image, {left, top, right, bottom}));
    });
}

VL_STATUS VL_CALL vlMallocHistogram(uint32_t bits, VL_HISTOGRAM_HANDLE* phHistogram) {
    return guarded(__func__, [&] {
        auto& out = required(phHistogram, "phHistogram");
        out = histograms().Give(std::make_shared<Histogram>(bits));
    });
}

VL_STATUS VL_CALL vlFreeHistogram(VL_HISTOGRAM_HANDLE hHistogram) {
    return guarded(__func__, [&] { histograms().Take(hHistogram); });
}

VL_STATUS VL_CALL vlClearHistogram(VL_HISTOGRAM_HANDLE hHistogram) {
    return guarded(__func__, [&] { histograms().Of(hHistogram)->Clear(); });
}

VL_STATUS VL_CALL vlCreateHistogram(VL_HISTOGRAM_HANDLE hHistogram, VL_IMAGE_HANDLE hImage) {
    return guarded(__func__, [&] {
        const auto histogram = histograms().Of(hHistogram);
        histogram->Add(*image_of(hImage));
    });
}

VL_STATUS VL_CALL vlGetHistogramValue(VL_HISTOGRAM_HANDLE hHistogram, int32_t channel, uint32_t bin, uint64_t* pCount) {
    return guarded(__func__, [&] {
        const auto histogram = histograms().Of(hHistogram);
        auto& out = required(pCount, "pCount");
        out = histogram->Count(channel, bin);
    });
}
