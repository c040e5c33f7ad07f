// K_Image_*: the imaging library under this library's name.
#include <kiv/imaging.h>

#include "imaging/last_view.h"

namespace {

K_STATUS_CODES remember_view(VL_STATUS status, const VL_VIEW_HANDLE* view) {
    if (view) kiv::set_last_view(*view);
    return status;
}

}  // namespace

// --- images

K_API K_STATUS_CODES K_CALL K_Image_Malloc(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage) { return vlMalloc(raw, phImage); }

K_API K_STATUS_CODES K_CALL K_Image_MallocEx(uint32_t width, uint32_t height, uint64_t imageType, void* buffer,
                                             uint64_t bufferSize, VL_IMAGE_HANDLE* phImage) {
    return vlMallocEx(width, height, imageType, buffer, bufferSize, phImage);
}

K_API K_STATUS_CODES K_CALL K_Image_MallocDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage) {
    return vlMallocDIB(raw, phImage);
}

K_API K_STATUS_CODES K_CALL K_Image_Free(VL_IMAGE_HANDLE hImage) { return vlFree(hImage); }

K_API K_STATUS_CODES K_CALL K_Image_GetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t* pRed, uint16_t* pGreen,
                                             uint16_t* pBlue) {
    return vlGetPixel(hImage, x, y, pRed, pGreen, pBlue);
}

K_API K_STATUS_CODES K_CALL K_Image_GetPixelEx(const K_IMAGE_INFO* raw, uint32_t x, uint32_t y, uint16_t* values,
                                               uint32_t* pCount) {
    return vlGetPixelEx(raw, x, y, values, pCount);
}

K_API K_STATUS_CODES K_CALL K_Image_SetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t red, uint16_t green,
                                             uint16_t blue) {
    return vlSetPixel(hImage, x, y, red, green, blue);
}

K_API K_STATUS_CODES K_CALL K_Image_GetAverage(VL_IMAGE_HANDLE hImage, uint32_t left, uint32_t top, uint32_t right,
                                               uint32_t bottom, uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue) {
    return vlGetAverage(hImage, left, top, right, bottom, pRed, pGreen, pBlue);
}

// --- from raw buffers

K_API K_STATUS_CODES K_CALL K_Image_FromRawToImage(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, uint32_t gainRed,
                                                   uint32_t gainGreen, uint32_t gainBlue) {
    return vlFromRAWtoImage(raw, hImage, gainRed, gainGreen, gainBlue);
}

K_API K_STATUS_CODES K_CALL K_Image_FromRawToImageEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, VL_DEMOSAIC demosaic,
                                                     uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue, int32_t offset,
                                                     VL_LUT_HANDLE hLut) {
    return vlFromRAWtoImageEx(raw, hImage, demosaic, gainRed, gainGreen, gainBlue, offset, hLut);
}

K_API K_STATUS_CODES K_CALL K_Image_FromRawToDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, uint32_t gainRed,
                                                 uint32_t gainGreen, uint32_t gainBlue) {
    return vlFromRAWtoDIB(raw, hDib, gainRed, gainGreen, gainBlue);
}

K_API K_STATUS_CODES K_CALL K_Image_FromRawToDIBEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, VL_DEMOSAIC demosaic,
                                                   uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue, int32_t offset,
                                                   VL_LUT_HANDLE hLut) {
    return vlFromRAWtoDIBEx(raw, hDib, demosaic, gainRed, gainGreen, gainBlue, offset, hLut);
}

K_API K_STATUS_CODES K_CALL K_Image_ConvertImage(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget) {
    return vlConvertImage(hSource, hTarget);
}

// --- look-up tables

K_API K_STATUS_CODES K_CALL K_Image_MallocLUT(uint32_t inputBits, uint32_t outputBits, uint32_t channels, VL_LUT_HANDLE* phLut) {
    return vlMallocLUT(inputBits, outputBits, channels, phLut);
}

K_API K_STATUS_CODES K_CALL K_Image_FreeLUT(VL_LUT_HANDLE hLut) { return vlFreeLUT(hLut); }

K_API K_STATUS_CODES K_CALL K_Image_ConvertLUT(VL_LUT_HANDLE hSource, VL_LUT_HANDLE hTarget) {
    return vlConvertLUT(hSource, hTarget);
}

K_API K_STATUS_CODES K_CALL K_Image_LUT(VL_IMAGE_HANDLE hSource, VL_LUT_HANDLE hLut, VL_IMAGE_HANDLE hTarget) {
    return vlLUT(hSource, hLut, hTarget);
}

K_API K_STATUS_CODES K_CALL K_Image_CreateGammaLUT(VL_LUT_HANDLE hLut, double gamma) { return vlCreateGammaLUT(hLut, gamma); }

K_API K_STATUS_CODES K_CALL K_Image_ApplyGammaToLUT(VL_LUT_HANDLE hLut, double gamma) { return vlApplyGammaToLUT(hLut, gamma); }

K_API K_STATUS_CODES K_CALL K_Image_CreateLinearLUT(VL_LUT_HANDLE hLut, double slope, double offset) {
    return vlCreateLinearLUT(hLut, slope, offset);
}

K_API K_STATUS_CODES K_CALL K_Image_CreateKneeLUT(VL_LUT_HANDLE hLut, const VL_KNEE_POINT* points, uint32_t count) {
    return vlCreateKneeLUT(hLut, points, count);
}

K_API K_STATUS_CODES K_CALL K_Image_GetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t* pValue) {
    return vlGetLUTValue(hLut, channel, index, pValue);
}

K_API K_STATUS_CODES K_CALL K_Image_SetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t value) {
    return vlSetLUTValue(hLut, channel, index, value);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveLUT(VL_LUT_HANDLE hLut, const char* file) { return vlSaveLUTA(hLut, file); }

K_API K_STATUS_CODES K_CALL K_Image_SaveLUTA(VL_LUT_HANDLE hLut, const char* file) { return vlSaveLUTA(hLut, file); }

K_API K_STATUS_CODES K_CALL K_Image_SaveLUTW(VL_LUT_HANDLE hLut, const wchar_t* file) { return vlSaveLUTW(hLut, file); }

K_API K_STATUS_CODES K_CALL K_Image_LoadLUT(const char* file, VL_LUT_HANDLE* phLut) { return vlLoadLUTA(file, phLut); }

K_API K_STATUS_CODES K_CALL K_Image_LoadLUTA(const char* file, VL_LUT_HANDLE* phLut) { return vlLoadLUTA(file, phLut); }

K_API K_STATUS_CODES K_CALL K_Image_LoadLUTW(const wchar_t* file, VL_LUT_HANDLE* phLut) { return vlLoadLUTW(file, phLut); }

// --- histograms

K_API K_STATUS_CODES K_CALL K_Image_MallocHistogram(uint32_t bits, VL_HISTOGRAM_HANDLE* phHistogram) {
    return vlMallocHistogram(bits, phHistogram);
}

K_API K_STATUS_CODES K_CALL K_Image_FreeHistogram(VL_HISTOGRAM_HANDLE hHistogram) { return vlFreeHistogram(hHistogram); }

K_API K_STATUS_CODES K_CALL K_Image_ClearHistogram(VL_HISTOGRAM_HANDLE hHistogram) { return vlClearHistogram(hHistogram); }

K_API K_STATUS_CODES K_CALL K_Image_CreateHistogram(VL_HISTOGRAM_HANDLE hHistogram, VL_IMAGE_HANDLE hImage) {
    return vlCreateHistogram(hHistogram, hImage);
}

K_API K_STATUS_CODES K_CALL K_Image_GetHistogramValue(VL_HISTOGRAM_HANDLE hHistogram, int32_t channel, uint32_t bin,
                                                      uint64_t* pCount) {
    return vlGetHistogramValue(hHistogram, channel, bin, pCount);
}

// --- geometry, high dynamic range, chains of operations

K_API K_STATUS_CODES K_CALL K_Image_Flip(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, VL_FLIP flip) {
    return vlFlip(hSource, hTarget, flip);
}

K_API K_STATUS_CODES K_CALL K_Image_Rotate(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, double degrees) {
    return vlRotate(hSource, hTarget, degrees);
}

K_API K_STATUS_CODES K_CALL K_Image_MallocHDR(VL_IMAGE_HANDLE hExposure, uint32_t bits, VL_IMAGE_HANDLE* phImage) {
    return vlMallocHDR(hExposure, bits, phImage);
}

K_API K_STATUS_CODES K_CALL K_Image_AnalyzeHDR(const VL_IMAGE_HANDLE* images, uint32_t count, VL_HDR_EXPOSURE* results) {
    return vlHDRAnalyzeImages(images, count, results);
}

K_API K_STATUS_CODES K_CALL K_Image_FuseHDR(const VL_IMAGE_HANDLE* images, uint32_t count, const double* exposures,
                                            VL_HDR_METHOD method, VL_IMAGE_HANDLE hTarget) {
    return vlCombineImagesHDR(images, count, exposures, method, hTarget);
}

K_API K_STATUS_CODES K_CALL K_Image_Processing(VL_IMAGE_HANDLE hSource, const char* operations, VL_IMAGE_HANDLE hTarget) {
    return vlImageProcessing(hSource, operations, hTarget);
}

K_API K_STATUS_CODES K_CALL K_Image_ProcessingEx(const K_IMAGE_INFO* raw, const char* operations, VL_IMAGE_HANDLE* phImage) {
    return vlImageProcessingEx(raw, operations, phImage);
}

// --- files

K_API K_STATUS_CODES K_CALL K_Image_SaveFile(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format) {
    return vlStoreToFileA(hImage, file, format);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format) {
    return vlStoreToFileA(hImage, file, format);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format) {
    return vlStoreToFileW(hImage, file, format);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileEx(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t setting) {
    return vlStoreToFileExA(hImage, file, format, setting);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileExA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format,
                                                int32_t setting) {
    return vlStoreToFileExA(hImage, file, format, setting);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileExW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format,
                                                int32_t setting) {
    return vlStoreToFileExW(hImage, file, format, setting);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileRaw(const K_IMAGE_INFO* raw, const char* file) {
    return vlStoreToFileRAWA(raw, file);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileRawA(const K_IMAGE_INFO* raw, const char* file) {
    return vlStoreToFileRAWA(raw, file);
}

K_API K_STATUS_CODES K_CALL K_Image_SaveFileRawW(const K_IMAGE_INFO* raw, const wchar_t* file) {
    return vlStoreToFileRAWW(raw, file);
}

K_API K_STATUS_CODES K_CALL K_Image_LoadFileRaw(const char* file, K_IMAGE_INFO* pRaw) { return vlLoadFromFileRAWA(file, pRaw); }

K_API K_STATUS_CODES K_CALL K_Image_LoadFileRawA(const char* file, K_IMAGE_INFO* pRaw) { return vlLoadFromFileRAWA(file, pRaw); }

K_API K_STATUS_CODES K_CALL K_Image_LoadFileRawW(const wchar_t* file, K_IMAGE_INFO* pRaw) {
    return vlLoadFromFileRAWW(file, pRaw);
}

// --- windows

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindow(const char* title, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowAutoA(title, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowA(const char* title, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowAutoA(title, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowW(const wchar_t* title, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowAutoW(title, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowEx(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                     VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowA(title, x, y, width, height, hParent, nativeWindow, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowExA(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                      VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowA(title, x, y, width, height, hParent, nativeWindow, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowExW(const wchar_t* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                      VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView) {
    return remember_view(vlOpenViewWindowW(title, x, y, width, height, hParent, nativeWindow, phView), phView);
}

K_API K_STATUS_CODES K_CALL K_Image_CloseViewWindow(VL_VIEW_HANDLE hView) { return vlCloseViewWindow(hView); }

K_API K_STATUS_CODES K_CALL K_Image_ShowImage(VL_VIEW_HANDLE hView, const K_IMAGE_INFO* raw, uint32_t gainRed, uint32_t gainGreen,
                                              uint32_t gainBlue) {
    return vlShowImage(hView, raw, gainRed, gainGreen, gainBlue);
}

K_API K_STATUS_CODES K_CALL K_Image_ShowImageEx(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE hImage, uint32_t gainRed,
                                                uint32_t gainGreen, uint32_t gainBlue) {
    return vlShowImageEx(hView, hImage, gainRed, gainGreen, gainBlue);
}

K_API K_STATUS_CODES K_CALL K_Image_SetImageOffset(VL_VIEW_HANDLE hView, int32_t x, int32_t y) {
    return vlSetImageOffset(hView, x, y);
}

K_API K_STATUS_CODES K_CALL K_Image_SetImageOffsetEx(VL_VIEW_HANDLE hView, double x, double y, double zoom) {
    return vlSetImageOffsetEx(hView, x, y, zoom);
}

K_API K_STATUS_CODES K_CALL K_Image_GetImageOffsetEx(VL_VIEW_HANDLE hView, double* pX, double* pY, double* pZoom) {
    return vlGetImageOffsetEx(hView, pX, pY, pZoom);
}

K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t value) {
    return vlSetViewWindowOption(hView, option, value);
}

K_API K_STATUS_CODES K_CALL K_Image_GetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t* pValue) {
    return vlGetViewWindowOption(hView, option, pValue);
}

K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowCallback(VL_VIEW_HANDLE hView, VL_VIEW_CALLBACK callback, void* context) {
    return vlSetViewWindowCallback(hView, callback, context);
}

K_API K_STATUS_CODES K_CALL K_Image_MoveViewWindow(VL_VIEW_HANDLE hView, int32_t x, int32_t y, uint32_t width, uint32_t height) {
    return vlMoveViewWindow(hView, x, y, width, height);
}

K_API K_STATUS_CODES K_CALL K_Image_ResizeChildWindow(VL_VIEW_HANDLE hView, uint32_t width, uint32_t height) {
    return vlResizeChildWindow(hView, width, height);
}

K_API K_STATUS_CODES K_CALL K_Image_GetViewWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth,
                                                      uint32_t* pHeight) {
    return vlGetViewWindowRect(hView, pX, pY, pWidth, pHeight);
}

K_API K_STATUS_CODES K_CALL K_Image_GetFrameWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth,
                                                       uint32_t* pHeight) {
    return vlGetFrameWindowRect(hView, pX, pY, pWidth, pHeight);
}

K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitle(VL_VIEW_HANDLE hView, const char* title) {
    return vlSetViewWindowTitleA(hView, title);
}

K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitleA(VL_VIEW_HANDLE hView, const char* title) {
    return vlSetViewWindowTitleA(hView, title);
}

K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitleW(VL_VIEW_HANDLE hView, const wchar_t* title) {
    return vlSetViewWindowTitleW(hView, title);
}

K_API K_STATUS_CODES K_CALL K_Image_EnableParallelProcessing(int32_t enable) {
    vlEnableParallelProcessing(enable);
    return K_ST_SUCCESS;
}
