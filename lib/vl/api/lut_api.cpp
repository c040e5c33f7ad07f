#include <VL.h>

#include "api/names.h"
#include "core/error.h"
#include "image/image_handles.h"
#include "lut/lut_file.h"
#include "lut/lut_handles.h"

using namespace kiv::vl;

namespace {

template <class Character>
VL_STATUS save(const char* function, VL_LUT_HANDLE hLut, const Character* file) {
    return guarded(function, [&] {
        const auto lut = luts().Of(hLut);
        save_lut(*lut, name_of(file));
    });
}

template <class Character>
VL_STATUS load(const char* function, const Character* file, VL_LUT_HANDLE* phLut) {
    return guarded(function, [&] {
        const std::string name = name_of(file);
        auto& out = required(phLut, "phLut");
        out = luts().Give(std::make_shared<Lut>(load_lut(name)));
    });
}

}  // namespace

VL_STATUS VL_CALL vlMallocLUT(uint32_t inputBits, uint32_t outputBits, uint32_t channels, VL_LUT_HANDLE* phLut) {
    return guarded(__func__, [&] {
        auto& out = required(phLut, "phLut");
        out = luts().Give(std::make_shared<Lut>(inputBits, outputBits, channels));
    });
}

VL_STATUS VL_CALL vlFreeLUT(VL_LUT_HANDLE hLut) {
    return guarded(__func__, [&] { luts().Take(hLut); });
}

VL_STATUS VL_CALL vlGetLUTInfo(VL_LUT_HANDLE hLut, uint32_t* pInputBits, uint32_t* pOutputBits, uint32_t* pChannels) {
    return guarded(__func__, [&] {
        const auto lut = luts().Of(hLut);
        auto& input_bits = required(pInputBits, "pInputBits");
        auto& output_bits = required(pOutputBits, "pOutputBits");
        auto& channels = required(pChannels, "pChannels");
        input_bits = lut->InputBits();
        output_bits = lut->OutputBits();
        channels = lut->Channels();
    });
}

VL_STATUS VL_CALL vlConvertLUT(VL_LUT_HANDLE hSource, VL_LUT_HANDLE hTarget) {
    return guarded(__func__, [&] {
        const auto source = luts().Of(hSource);
        luts().Of(hTarget)->FillFrom(*source);
    });
}

VL_STATUS VL_CALL vlLUT(VL_IMAGE_HANDLE hSource, VL_LUT_HANDLE hLut, VL_IMAGE_HANDLE hTarget) {
    return guarded(__func__, [&] {
        const auto source = image_of(hSource);
        const auto lut = luts().Of(hLut);
        apply_lut(*source, *lut, *image_of(hTarget));
    });
}

VL_STATUS VL_CALL vlCreateGammaLUT(VL_LUT_HANDLE hLut, double gamma) {
    return guarded(__func__, [&] { luts().Of(hLut)->Fill(gamma_curve(gamma)); });
}

VL_STATUS VL_CALL vlApplyGammaToLUT(VL_LUT_HANDLE hLut, double gamma) {
    return guarded(__func__, [&] { luts().Of(hLut)->Follow(gamma_curve(gamma)); });
}

VL_STATUS VL_CALL vlCreateLinearLUT(VL_LUT_HANDLE hLut, double slope, double offset) {
    return guarded(__func__, [&] { luts().Of(hLut)->Fill(linear_curve(slope, offset)); });
}

VL_STATUS VL_CALL vlCreateKneeLUT(VL_LUT_HANDLE hLut, const VL_KNEE_POINT* points, uint32_t count) {
    return guarded(__func__, [&] {
        const auto lut = luts().Of(hLut);
        refuse_null(points, "points");
        lut->Fill(knee_curve({points, count}));
    });
}

VL_STATUS VL_CALL vlGetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t* pValue) {
    return guarded(__func__, [&] {
        const auto lut = luts().Of(hLut);
        auto& out = required(pValue, "pValue");
        out = lut->Value(channel, index);
    });
}

VL_STATUS VL_CALL vlSetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t value) {
    return guarded(__func__, [&] { luts().Of(hLut)->Set(channel, index, value); });
}

VL_STATUS VL_CALL vlSaveLUTA(VL_LUT_HANDLE hLut, const char* file) { return save(__func__, hLut, file); }
VL_STATUS VL_CALL vlSaveLUTW(VL_LUT_HANDLE hLut, const wchar_t* file) { return save(__func__, hLut, file); }
VL_STATUS VL_CALL vlLoadLUTA(const char* file, VL_LUT_HANDLE* phLut) { return load(__func__, file, phLut); }
VL_STATUS VL_CALL vlLoadLUTW(const wchar_t* file, VL_LUT_HANDLE* phLut) { return load(__func__, file, phLut); }
