// K_Camera_CreateDataStream..., K_DataStream_*: streams whose buffers are the caller's.
#include <kiv/data_stream.h>

#include "acquisition/data_stream.h"
#include "api/adaptors.h"
#include "api/checks.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CDataStreamClass;

K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfDataStreams(CAM_HANDLE hCamera, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto get = entry(opened.Producer().DevGetNumDataStreams);
        auto& result = out(pCount);
        uint32_t count = 0;
        auto status = get(opened.DeviceHandle(), &count);
        if (status == K_ST_SUCCESS) result = count;
        return status;
    });
}

// What was opened in the producer stays there until the camera closes; what was not need not wait for that.
static K_STATUS_CODES give_up(CDataStreamClass& stream, K_STATUS_CODES status) {
    if (!stream.Handle()) stream.Close();
    return status;
}

// The step that both ways of opening end with: whatever keeps the stream's own node map from being built is a bad handle.
static K_STATUS_CODES complete(std::shared_ptr<CDataStreamClass> stream, STREAM_HANDLE& result) {
    auto built = guarded([&] { return stream->BuildOwnNodeMap(), K_ST_SUCCESS; });
    if (built != K_ST_SUCCESS) return give_up(*stream, K_ST_INVALID_HANDLE);
    result = open_handle<STREAM_HANDLE>(std::move(stream));
    return K_ST_SUCCESS;
}

K_API K_STATUS_CODES K_CALL K_Camera_CreateDataStream(CAM_HANDLE hCamera, uint32_t index, STREAM_HANDLE* phStream) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto& result = out(phStream);
        auto stream = CDataStreamClass::On(opened);
        auto status = stream->Open(index);
        if (status != K_ST_SUCCESS) return give_up(*stream, status);
        return complete(std::move(stream), result);
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_CreateDataStreamMc(CAM_HANDLE hCamera, uint32_t index, STREAM_HANDLE* phStream,
                                                        uint32_t mode) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto& result = out(phStream);
        auto stream = CDataStreamClass::On(opened);
        stream->OpenMulticast(index, mode);
        return complete(std::move(stream), result);
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_Close(STREAM_HANDLE hStream) {
    return guarded([&] { return closed<CDataStreamClass>(hStream)->Close(), K_ST_SUCCESS; });
}

K_API K_STATUS_CODES K_CALL K_DataStream_AnnounceBuffer(STREAM_HANDLE hStream, void* buffer, uint32_t size, void* context,
                                                        BUF_HANDLE* phBuffer) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        auto announce = entry(stream->Producer().DSAnnounceBuffer);
        out(buffer);
        auto& result = out(phBuffer);
        BUF_HANDLE announced = nullptr;
        auto status = announce(stream->Handle(), buffer, size, context, &announced);
        if (status == K_ST_SUCCESS) result = announced;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_RevokeBuffer(STREAM_HANDLE hStream, BUF_HANDLE hBuffer, void** pBuffer,
                                                      void** pContext) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        handle(hBuffer);
        auto revoke = entry(stream->Producer().DSRevokeBuffer);
        auto& result = out(pBuffer);
        void* buffer = nullptr;
        void* context = nullptr;
        auto status = revoke(stream->Handle(), hBuffer, &buffer, &context);
        if (status != K_ST_SUCCESS) return status;
        result = buffer;
        if (pContext) *pContext = context;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_QueueBuffer(STREAM_HANDLE hStream, BUF_HANDLE hBuffer) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        handle(hBuffer);
        return entry(stream->Producer().DSQueueBuffer)(stream->Handle(), hBuffer);
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_FlushQueue(STREAM_HANDLE hStream, int32_t operation) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        auto flush = entry(stream->Producer().DSFlushQueue);
        require(operation >= 0);
        return flush(stream->Handle(), operation);
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferID(STREAM_HANDLE hStream, uint32_t index, BUF_HANDLE* phBuffer) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        auto get = entry(stream->Producer().DSGetBufferID);
        auto& result = out(phBuffer);
        BUF_HANDLE found = nullptr;
        auto status = get(stream->Handle(), index, &found);
        if (status == K_ST_SUCCESS) result = found;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_StartAcquisition(STREAM_HANDLE hStream, uint32_t flags, uint64_t count) {
    return guarded([&] { return data_stream(hStream)->Start(flags, count); });
}

K_API K_STATUS_CODES K_CALL K_DataStream_StopAcquisition(STREAM_HANDLE hStream) {
    return guarded([&] { return data_stream(hStream)->Stop(); });
}

K_API K_STATUS_CODES K_CALL K_DataStream_GetStreamInfo(STREAM_HANDLE hStream, int32_t infoCmd, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        auto get = entry(stream->Producer().DSGetInfo);
        out(buffer);
        auto& size = out(pSize);
        return get(stream->Handle(), infoCmd, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferInfo(STREAM_HANDLE hStream, BUF_HANDLE hBuffer, int32_t infoCmd, void* buffer,
                                                       uint32_t* pSize) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        handle(hBuffer);
        auto get = entry(stream->Producer().DSGetBufferInfo);
        out(buffer);
        auto& size = out(pSize);
        return get(stream->Handle(), hBuffer, infoCmd, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferChunkData(STREAM_HANDLE hStream, BUF_HANDLE hBuffer,
                                                            K_SINGLE_CHUNK_DATA* chunks, uint64_t* pCount) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        handle(hBuffer);
        auto get = entry(stream->Producer().DSGetBufferChunkData);
        require(chunks || pCount);
        // Without a count there is no room, and the producer says so.
        std::size_t count = pCount ? static_cast<std::size_t>(*pCount) : 0;
        auto status = get(stream->Handle(), hBuffer, reinterpret_cast<GenTL::SINGLE_CHUNK_DATA*>(chunks), &count);
        if (pCount) *pCount = count;
        return status;
    });
}

using StreamParameter = ProducerEntry<GenTL::PDSGetStreamParam>;

static K_STATUS_CODES pass_parameter(STREAM_HANDLE hStream, StreamParameter ProducerEntries::*pass_on, int32_t parameter,
                                     void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        auto pass = entry(stream->Producer().*pass_on);
        require(parameter >= 0);
        out(buffer);
        auto& size = out(pSize);
        return pass(stream->Handle(), parameter, buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_GetParam(STREAM_HANDLE hStream, int32_t parameter, void* buffer, uint32_t* pSize) {
    return pass_parameter(hStream, &ProducerEntries::DSGetStreamParam, parameter, buffer, pSize);
}

K_API K_STATUS_CODES K_CALL K_DataStream_SetParam(STREAM_HANDLE hStream, int32_t parameter, void* buffer, uint32_t* pSize) {
    return pass_parameter(hStream, &ProducerEntries::DSSetStreamParam, parameter, buffer, pSize);
}
