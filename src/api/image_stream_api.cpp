// K_Image_*: the image stream.
#include <kiv/image.h>

#include "acquisition/image_stream.h"
#include "api/adaptors.h"
#include "api/checks.h"

using namespace kiv;
using namespace kiv::api;
using ImageLib::CImageStream;

static K_STATUS_CODES open_stream(CAM_HANDLE hCamera, uint32_t streamIndex, ImageLib::ImageCallback callback,
                                  THRD_HANDLE* phThread, uint32_t bufferSize, uint32_t multicast) {
    auto& opened = camera(hCamera);
    auto& result = out(phThread);
    auto stream = std::make_unique<CImageStream>(opened);
    stream->Open(streamIndex, bufferSize, multicast, callback);
    auto& owned_by_caller = *stream;
    result = handle_to<THRD_HANDLE>(stream.release());
    // Whatever keeps the stream's own node map from being built: the handle is the caller's already.
    return guarded_as(K_ST_INVALID_HANDLE, [&] {
        try {
            owned_by_caller.BuildOwnNodeMap();
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
    return guarded([&]() -> K_STATUS_CODES {
        if (!retire_handle(hThread, HandleKind::thread)) return K_ST_INVALID_HANDLE;
        std::unique_ptr<CImageStream> closed(reinterpret_cast<CImageStream*>(hThread));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetStreamInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& stream = image_stream(hThread);
        auto get = entry(stream.Producer().DSGetInfo);
        auto& size = out(pSize);
        auto opened = stream.Stream();
        handle(opened);
        return get(opened, infoCmd, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_Image_GetStreamHandle(THRD_HANDLE hThread, void** phStream) {
    return guarded([&] {
        auto& stream = image_stream(hThread);
        out(phStream) = stream.Stream();
        return K_ST_SUCCESS;
    });
}
