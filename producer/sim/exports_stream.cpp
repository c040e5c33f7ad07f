// The exported functions of data streams and buffers. No decision is taken here.

#include <algorithm>

#include "session.h"
#include "stream.h"

namespace GenTL {

using namespace kivsim;

namespace {

/// A stream and a buffer of it.
class StreamBuffer {
public:
    StreamBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer) : stream_(stream), buffer_(buffer) {
        stream_->CheckOwn(buffer_.Shared());
    }
    Stream& InStream() const { return *stream_; }
    const std::shared_ptr<Buffer>& Shared() const { return buffer_.Shared(); }

private:
    Found<Stream> stream_;
    Found<Buffer> buffer_;
};

}  // namespace

extern "C" {

GC_API DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer) {
    return guarded(__func__, hDataStream, [&] {
        const Found<Stream> stream(hDataStream);
        check_pointer(pBuffer, "pBuffer", false);
        BUFFER_HANDLE& handle = mandatory(phBuffer, "phBuffer");
        handle = stream->Announce(pBuffer, iSize, pPrivate)->Handle();
    });
}

GC_API DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer) {
    return guarded(__func__, hDataStream, [&] {
        const Found<Stream> stream(hDataStream);
        BUFFER_HANDLE& handle = mandatory(phBuffer, "phBuffer");
        handle = stream->Announce(nullptr, iSize, pPrivate)->Handle();
    });
}

GC_API DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation) {
    return guarded(__func__, hDataStream, [&] { Found<Stream>(hDataStream)->Flush(iOperation); });
}

GC_API DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags, uint64_t iNumToAcquire) {
    return guarded(__func__, hDataStream, [&] { Found<Stream>(hDataStream)->Start(iStartFlags, iNumToAcquire); });
}

GC_API DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags) {
    return guarded(__func__, hDataStream, [&] { Found<Stream>(hDataStream)->Stop(iStopFlags); });
}

GC_API DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDataStream,
                   [&] { write_info(Found<Stream>(hDataStream)->GetInfo(iInfoCmd), piType, pBuffer, piSize); });
}

GC_API DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer) {
    return guarded(__func__, hDataStream, [&] {
        const Found<Stream> stream(hDataStream);
        BUFFER_HANDLE& handle = mandatory(phBuffer, "phBuffer");
        handle = stream->BufferAt(iIndex)->Handle();
    });
}

GC_API DSClose(DS_HANDLE hDataStream) {
    return guarded(__func__, hDataStream, [&] { Locked<Stream>(hDataStream)->Close(); });
}

GC_API DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer, void** pPrivate) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        check_pointer(pBuffer, "pBuffer", true);
        check_pointer(pPrivate, "pPrivate", true);
        buffer.InStream().Revoke(buffer.Shared());
        if (pBuffer) *pBuffer = buffer.Shared()->OwnsMemory() ? nullptr : buffer.Shared()->Memory();
        if (pPrivate) *pPrivate = buffer.Shared()->UserPointer();
    });
}

GC_API DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        buffer.InStream().Queue(buffer.Shared());
    });
}

GC_API DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                       void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        write_info(buffer.InStream().BufferInfo(buffer.Shared(), iInfoCmd), piType, pBuffer, piSize);
    });
}

GC_API DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        check_pointer(pChunkData, "pChunkData", true);
        size_t& count = mandatory(piNumChunks, "piNumChunks");
        const auto chunks = buffer.InStream().Chunks(buffer.Shared());
        if (pChunkData && count < chunks.size())
            fail(GC_ERR_BUFFER_TOO_SMALL,
                 "There is room for " + std::to_string(count) + " of " + std::to_string(chunks.size()) + " chunks");
        if (pChunkData) std::copy(chunks.begin(), chunks.end(), pChunkData);
        count = chunks.size();
    });
}

GC_API DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice) {
    return guarded(__func__, hDataStream, [&] {
        const Found<Stream> stream(hDataStream);
        mandatory(phDevice, "phDevice") = stream->Owner()->Handle();
    });
}

GC_API DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        mandatory(piNumParts, "piNumParts");
        fail(GC_ERR_NO_DATA, "An image has no parts");
    });
}

GC_API DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t, BUFFER_PART_INFO_CMD, INFO_DATATYPE* piType,
                           void*, size_t* piSize) {
    return guarded(__func__, hDataStream, [&] {
        const StreamBuffer buffer(hDataStream, hBuffer);
        mandatory(piType, "piType");
        mandatory(piSize, "piSize");
        fail(GC_ERR_NO_DATA, "An image has no parts");
    });
}

}  // extern "C"
}  // namespace GenTL
