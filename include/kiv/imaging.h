/* Images: allocation, conversion, look-up tables, histograms, files and windows.
 *
 * All of it is the imaging library's (VL.h), so that a program links against one library only. A function here has the arguments
 * and the result of the one that stands in the comment behind it, and adds nothing to it unless that is said; VL.h tells the
 * rules, and vlGetLastErrorText what went wrong. Names without A or W at the end take 8-bit texts.
 */
#ifndef KIV_IMAGING_H
#define KIV_IMAGING_H

#include <VL.h>
#include <kiv/types.h>

/* --- images ---------------------------------------------------------------------------------------------------------- */

/** vlMalloc */
K_API K_STATUS_CODES K_CALL K_Image_Malloc(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/** vlMallocEx */
K_API K_STATUS_CODES K_CALL K_Image_MallocEx(uint32_t width, uint32_t height, uint64_t imageType, void* buffer,
                                             uint64_t bufferSize, VL_IMAGE_HANDLE* phImage);
/** vlMallocDIB */
K_API K_STATUS_CODES K_CALL K_Image_MallocDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/** vlFree */
K_API K_STATUS_CODES K_CALL K_Image_Free(VL_IMAGE_HANDLE hImage);
/** vlGetPixel */
K_API K_STATUS_CODES K_CALL K_Image_GetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t* pRed, uint16_t* pGreen,
                                             uint16_t* pBlue);
/** vlGetPixelEx */
K_API K_STATUS_CODES K_CALL K_Image_GetPixelEx(const K_IMAGE_INFO* raw, uint32_t x, uint32_t y, uint16_t* values,
                                               uint32_t* pCount);
/** vlSetPixel */
K_API K_STATUS_CODES K_CALL K_Image_SetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t red, uint16_t green,
                                             uint16_t blue);
/** vlGetAverage */
K_API K_STATUS_CODES K_CALL K_Image_GetAverage(VL_IMAGE_HANDLE hImage, uint32_t left, uint32_t top, uint32_t right,
                                               uint32_t bottom, uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue);

/* --- from raw buffers ------------------------------------------------------------------------------------------------ */

/** vlFromRAWtoImage */
K_API K_STATUS_CODES K_CALL K_Image_FromRawToImage(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, uint32_t gainRed,
                                                   uint32_t gainGreen, uint32_t gainBlue);
/** vlFromRAWtoImageEx */
K_API K_STATUS_CODES K_CALL K_Image_FromRawToImageEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, VL_DEMOSAIC demosaic,
                                                     uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue, int32_t offset,
                                                     VL_LUT_HANDLE hLut);
/** vlFromRAWtoDIB */
K_API K_STATUS_CODES K_CALL K_Image_FromRawToDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, uint32_t gainRed,
                                                 uint32_t gainGreen, uint32_t gainBlue);
/** vlFromRAWtoDIBEx */
K_API K_STATUS_CODES K_CALL K_Image_FromRawToDIBEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, VL_DEMOSAIC demosaic,
                                                   uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue, int32_t offset,
                                                   VL_LUT_HANDLE hLut);
/** vlConvertImage */
K_API K_STATUS_CODES K_CALL K_Image_ConvertImage(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget);

/* --- look-up tables -------------------------------------------------------------------------------------------------- */

/** vlMallocLUT */
K_API K_STATUS_CODES K_CALL K_Image_MallocLUT(uint32_t inputBits, uint32_t outputBits, uint32_t channels, VL_LUT_HANDLE* phLut);
/** vlFreeLUT */
K_API K_STATUS_CODES K_CALL K_Image_FreeLUT(VL_LUT_HANDLE hLut);
/** vlConvertLUT */
K_API K_STATUS_CODES K_CALL K_Image_ConvertLUT(VL_LUT_HANDLE hSource, VL_LUT_HANDLE hTarget);
/** vlLUT */
K_API K_STATUS_CODES K_CALL K_Image_LUT(VL_IMAGE_HANDLE hSource, VL_LUT_HANDLE hLut, VL_IMAGE_HANDLE hTarget);
/** vlCreateGammaLUT */
K_API K_STATUS_CODES K_CALL K_Image_CreateGammaLUT(VL_LUT_HANDLE hLut, double gamma);
/** vlApplyGammaToLUT */
K_API K_STATUS_CODES K_CALL K_Image_ApplyGammaToLUT(VL_LUT_HANDLE hLut, double gamma);
/** vlCreateLinearLUT */
K_API K_STATUS_CODES K_CALL K_Image_CreateLinearLUT(VL_LUT_HANDLE hLut, double slope, double offset);
/** vlCreateKneeLUT */
K_API K_STATUS_CODES K_CALL K_Image_CreateKneeLUT(VL_LUT_HANDLE hLut, const VL_KNEE_POINT* points, uint32_t count);
/** vlGetLUTValue */
K_API K_STATUS_CODES K_CALL K_Image_GetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t* pValue);
/** vlSetLUTValue */
K_API K_STATUS_CODES K_CALL K_Image_SetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t value);
/** vlSaveLUTA */
K_API K_STATUS_CODES K_CALL K_Image_SaveLUT(VL_LUT_HANDLE hLut, const char* file);
/** vlSaveLUTA */
K_API K_STATUS_CODES K_CALL K_Image_SaveLUTA(VL_LUT_HANDLE hLut, const char* file);
/** vlSaveLUTW */
K_API K_STATUS_CODES K_CALL K_Image_SaveLUTW(VL_LUT_HANDLE hLut, const wchar_t* file);
/** vlLoadLUTA */
K_API K_STATUS_CODES K_CALL K_Image_LoadLUT(const char* file, VL_LUT_HANDLE* phLut);
/** vlLoadLUTA */
K_API K_STATUS_CODES K_CALL K_Image_LoadLUTA(const char* file, VL_LUT_HANDLE* phLut);
/** vlLoadLUTW */
K_API K_STATUS_CODES K_CALL K_Image_LoadLUTW(const wchar_t* file, VL_LUT_HANDLE* phLut);

/* --- histograms ------------------------------------------------------------------------------------------------------ */

/** vlMallocHistogram */
K_API K_STATUS_CODES K_CALL K_Image_MallocHistogram(uint32_t bits, VL_HISTOGRAM_HANDLE* phHistogram);
/** vlFreeHistogram */
K_API K_STATUS_CODES K_CALL K_Image_FreeHistogram(VL_HISTOGRAM_HANDLE hHistogram);
/** vlClearHistogram */
K_API K_STATUS_CODES K_CALL K_Image_ClearHistogram(VL_HISTOGRAM_HANDLE hHistogram);
/** vlCreateHistogram */
K_API K_STATUS_CODES K_CALL K_Image_CreateHistogram(VL_HISTOGRAM_HANDLE hHistogram, VL_IMAGE_HANDLE hImage);
/** vlGetHistogramValue */
K_API K_STATUS_CODES K_CALL K_Image_GetHistogramValue(VL_HISTOGRAM_HANDLE hHistogram, int32_t channel, uint32_t bin,
                                                      uint64_t* pCount);

/* --- geometry, high dynamic range, chains of operations -------------------------------------------------------------- */

/** vlFlip */
K_API K_STATUS_CODES K_CALL K_Image_Flip(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, VL_FLIP flip);
/** vlRotate */
K_API K_STATUS_CODES K_CALL K_Image_Rotate(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, double degrees);
/** vlMallocHDR */
K_API K_STATUS_CODES K_CALL K_Image_MallocHDR(VL_IMAGE_HANDLE hExposure, uint32_t bits, VL_IMAGE_HANDLE* phImage);
/** vlHDRAnalyzeImages */
K_API K_STATUS_CODES K_CALL K_Image_AnalyzeHDR(const VL_IMAGE_HANDLE* images, uint32_t count, VL_HDR_EXPOSURE* results);
/** vlCombineImagesHDR */
K_API K_STATUS_CODES K_CALL K_Image_FuseHDR(const VL_IMAGE_HANDLE* images, uint32_t count, const double* exposures,
                                            VL_HDR_METHOD method, VL_IMAGE_HANDLE hTarget);
/** vlImageProcessing */
K_API K_STATUS_CODES K_CALL K_Image_Processing(VL_IMAGE_HANDLE hSource, const char* operations, VL_IMAGE_HANDLE hTarget);
/** vlImageProcessingEx */
K_API K_STATUS_CODES K_CALL K_Image_ProcessingEx(const K_IMAGE_INFO* raw, const char* operations, VL_IMAGE_HANDLE* phImage);

/* --- files ----------------------------------------------------------------------------------------------------------- */

/** vlStoreToFileA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFile(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format);
/** vlStoreToFileA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format);
/** vlStoreToFileW */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format);
/** vlStoreToFileExA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileEx(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t setting);
/** vlStoreToFileExA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileExA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t setting);
/** vlStoreToFileExW */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileExW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format,
                                                int32_t setting);
/** vlStoreToFileRAWA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileRaw(const K_IMAGE_INFO* raw, const char* file);
/** vlStoreToFileRAWA */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileRawA(const K_IMAGE_INFO* raw, const char* file);
/** vlStoreToFileRAWW */
K_API K_STATUS_CODES K_CALL K_Image_SaveFileRawW(const K_IMAGE_INFO* raw, const wchar_t* file);
/** vlLoadFromFileRAWA */
K_API K_STATUS_CODES K_CALL K_Image_LoadFileRaw(const char* file, K_IMAGE_INFO* pRaw);
/** vlLoadFromFileRAWA */
K_API K_STATUS_CODES K_CALL K_Image_LoadFileRawA(const char* file, K_IMAGE_INFO* pRaw);
/** vlLoadFromFileRAWW */
K_API K_STATUS_CODES K_CALL K_Image_LoadFileRawW(const wchar_t* file, K_IMAGE_INFO* pRaw);

/* --- windows --------------------------------------------------------------------------------------------------------- */

/*
 * The window that was opened last, by whichever of these functions, is where image streams without a callback show their
 * images: one for the whole process. Closing it does not change that; such streams then show nothing until another one is
 * opened.
 */

/** vlOpenViewWindowAutoA, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindow(const char* title, VL_VIEW_HANDLE* phView);
/** vlOpenViewWindowAutoA, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowA(const char* title, VL_VIEW_HANDLE* phView);
/** vlOpenViewWindowAutoW, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowW(const wchar_t* title, VL_VIEW_HANDLE* phView);
/** vlOpenViewWindowA, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowEx(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                     VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView);
/** vlOpenViewWindowA, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowExA(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                      VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView);
/** vlOpenViewWindowW, and remembers *phView as the last view window, whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_OpenViewWindowExW(const wchar_t* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                                      VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView);
/** vlCloseViewWindow */
K_API K_STATUS_CODES K_CALL K_Image_CloseViewWindow(VL_VIEW_HANDLE hView);
/** vlShowImage */
K_API K_STATUS_CODES K_CALL K_Image_ShowImage(VL_VIEW_HANDLE hView, const K_IMAGE_INFO* raw, uint32_t gainRed, uint32_t gainGreen,
                                              uint32_t gainBlue);
/** vlShowImageEx */
K_API K_STATUS_CODES K_CALL K_Image_ShowImageEx(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE hImage, uint32_t gainRed,
                                                uint32_t gainGreen, uint32_t gainBlue);
/** vlSetImageOffset */
K_API K_STATUS_CODES K_CALL K_Image_SetImageOffset(VL_VIEW_HANDLE hView, int32_t x, int32_t y);
/** vlSetImageOffsetEx */
K_API K_STATUS_CODES K_CALL K_Image_SetImageOffsetEx(VL_VIEW_HANDLE hView, double x, double y, double zoom);
/** vlGetImageOffsetEx */
K_API K_STATUS_CODES K_CALL K_Image_GetImageOffsetEx(VL_VIEW_HANDLE hView, double* pX, double* pY, double* pZoom);
/** vlSetViewWindowOption */
K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t value);
/** vlGetViewWindowOption */
K_API K_STATUS_CODES K_CALL K_Image_GetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t* pValue);
/** vlSetViewWindowCallback */
K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowCallback(VL_VIEW_HANDLE hView, VL_VIEW_CALLBACK callback, void* context);
/** vlMoveViewWindow */
K_API K_STATUS_CODES K_CALL K_Image_MoveViewWindow(VL_VIEW_HANDLE hView, int32_t x, int32_t y, uint32_t width, uint32_t height);
/** vlResizeChildWindow */
K_API K_STATUS_CODES K_CALL K_Image_ResizeChildWindow(VL_VIEW_HANDLE hView, uint32_t width, uint32_t height);
/** vlGetViewWindowRect */
K_API K_STATUS_CODES K_CALL K_Image_GetViewWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth,
                                                      uint32_t* pHeight);
/** vlGetFrameWindowRect */
K_API K_STATUS_CODES K_CALL K_Image_GetFrameWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth,
                                                       uint32_t* pHeight);
/** vlSetViewWindowTitleA */
K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitle(VL_VIEW_HANDLE hView, const char* title);
/** vlSetViewWindowTitleA */
K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitleA(VL_VIEW_HANDLE hView, const char* title);
/** vlSetViewWindowTitleW */
K_API K_STATUS_CODES K_CALL K_Image_SetViewWindowTitleW(VL_VIEW_HANDLE hView, const wchar_t* title);

/* --- settings of the process ------------------------------------------------------------------------------------------ */

/** vlEnableParallelProcessing; always K_ST_SUCCESS, whatever it says. */
K_API K_STATUS_CODES K_CALL K_Image_EnableParallelProcessing(int32_t enable);

#endif
