// K_Image_*: the image stream.
#include <kiv/camera.h>
#include <kiv/image.h>

#include "acquisition/image_stream.h"
#include "api/adaptors.h"
#include "api/checks.h"
#include "imaging/view_display.h"

using namespace kiv;
using namespace kiv::api;
using ImageLib::CImageStream;

static K_STATUS_CODES open_stream(CAM_HANDLE hCamera, uint32_t streamIndex, ImageLib::ImageCallback callback,
                                  THRD_HANDLE* phThread, uint32_t bufferSize, uint32_t multicast) {
    auto& opened = camera(hCamera);
    auto& result = out(phThread);
    provide_view_display();
    auto stream = CImageStream::On(opened);
    stream->Open(streamIndex, bufferSize, multicast, callback);
    result = static_cast<THRD_HANDLE>(share_handle(stream, HandleKind::thread));
    // Whatever keeps the stream's own node map from being built: the handle is the caller's already.
    return guarded_as(K_ST_INVALID_HANDLE, [&] {
        try {
            stream->BuildOwnNodeMap();
        } catch (const StatusError&) {
            fail(K_ST_INVALID_HANDLE);
        }
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_OpenStream(CAM_HANDLE hCamera, uint32_t streamIndex, void* context, void (*callback)(void),
                                               THRD_HANDLE* phThread, uint32_t bufferSize, uint32_t multicast) {
    return guarded([&] { return open_stream(hCamera, streamIndex, {context, callback}, phThread, bufferSize, multicast); });
}

K_API K_STATUS_CODES K_CALL K_Image_OpenStreamLight(CAM_HANDLE hCamera, uint32_t streamIndex, THRD_HANDLE* phThread) {
    return guarded([&] {
        auto size = ImageLib::payload_size(camera(hCamera));
        return open_stream(hCamera, streamIndex, {}, phThread, size, 0);
    });
}

K_API K_STATUS_CODES K_CALL K_Image_CloseStream(THRD_HANDLE hThread) {
    return guarded([&] {
        closed<CImageStream>(hThread)->End();
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetStreamInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto get = entry(stream->Producer().DSGetInfo);
        auto& size = out(pSize);
        auto opened = stream->Stream();
        handle(opened);
        return get(opened, infoCmd, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetStreamHandle(THRD_HANDLE hThread, void** phStream) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        out(phStream) = stream->Stream();
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_DSStartAcquisition(THRD_HANDLE hThread, int32_t flags, uint64_t count) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto start = entry(stream->Producer().DSStartAcquisition);
        auto opened = stream->Stream();
        handle(opened);
        return start(opened, flags, count);
    });
}

K_API K_STATUS_CODES K_CALL K_Image_DSStopAcquisition(THRD_HANDLE hThread, int32_t flags) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto stop = entry(stream->Producer().DSStopAcquisition);
        auto opened = stream->Stream();
        handle(opened);
        return stop(opened, flags);
    });
}

K_API K_STATUS_CODES K_CALL K_Image_DSExecuteCommand(CAM_HANDLE hCamera, const char* featureName) {
    return K_Camera_ExecuteCommand(hCamera, featureName);
}

K_API K_STATUS_CODES K_CALL K_Image_DSGetValueInt64(CAM_HANDLE hCamera, const char* featureName, int64_t* pValue) {
    return K_Camera_GetValueInt64(hCamera, featureName, pValue);
}

K_API K_STATUS_CODES K_CALL K_Image_DSSetValueInt64(CAM_HANDLE hCamera, const char* featureName, int64_t value) {
    return K_Camera_SetValueInt64(hCamera, featureName, value);
}

K_API K_STATUS_CODES K_CALL K_Image_GetBufferInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto& size = out(pSize);
        auto* thread = stream->Thread();
        handle(thread);
        return thread->BufferInfo(infoCmd, buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetEventTime(THRD_HANDLE hThread, uint64_t* pNanoseconds) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto& result = out(pNanoseconds);
        auto* thread = stream->Thread();
        handle(thread);
        return thread->EventTime(result);
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetStreamStatistics(THRD_HANDLE hThread, K_STREAM_STATISTICS* pStatistics) {
    return guarded([&] {
        auto stream = image_stream(hThread);
        auto& statistics = out(pStatistics);
        statistics = stream->Thread() ? stream->Thread()->Statistics() : K_STREAM_STATISTICS{};
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_SetGain(THRD_HANDLE hThread, uint32_t red, uint32_t green, uint32_t blue) {
    return guarded([&] {
        image_stream(hThread)->Display().SetGains({red, green, blue});
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetGain(THRD_HANDLE hThread, uint32_t* pRed, uint32_t* pGreen, uint32_t* pBlue) {
    return guarded([&] {
        auto gains = image_stream(hThread)->Display().Gains();
        out(pRed), out(pGreen), out(pBlue);
        *pRed = gains.red, *pGreen = gains.green, *pBlue = gains.blue;
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_ExecuteWhiteBalance(THRD_HANDLE hThread) {
    return guarded([&] {
        image_stream(hThread)->Display().RequestWhiteBalance();
        return K_ST_SUCCESS;
    });
}
