// Entry points of a scripted producer: data streams and buffers, with the standard's pools and rules.
#include <algorithm>
#include <utility>

#include "scripted_entry.h"

using namespace scripted;

namespace GenTL {

static void queue(Stream& stream, Buffer& buffer) {
    buffer.place = Buffer::Place::input;
    buffer.infos.clear();
    buffer.chunks.clear();
    stream.input.push_back(&buffer);
}

/// Takes everything out of the output queue, with its events.
static void empty_output(World& here, Stream& stream, const std::function<void(Buffer&)>& then) {
    if (auto* event = here.FindRegistration(&stream, EVENT_NEW_BUFFER)) event->queue.clear();
    for (auto& buffer : stream.buffers)
        if (buffer.place == Buffer::Place::output) {
            buffer.place = Buffer::Place::announced;
            then(buffer);
        }
}

static std::size_t count_in(const Stream& stream, Buffer::Place place) {
    return static_cast<std::size_t>(std::ranges::count(stream.buffers, place, &Buffer::place));
}

static Infos buffer_infos(const Buffer& buffer) {
    auto flag = [](bool value) { return number_info<std::uint8_t>(INFO_DATATYPE_BOOL8, value); };
    Infos infos = buffer.infos;
    infos.try_emplace(BUFFER_INFO_BASE, number_info(INFO_DATATYPE_PTR, buffer.base));
    infos.try_emplace(BUFFER_INFO_SIZE, number_info(INFO_DATATYPE_SIZET, buffer.size));
    infos.try_emplace(BUFFER_INFO_USER_PTR, number_info(INFO_DATATYPE_PTR, buffer.user));
    infos.try_emplace(BUFFER_INFO_NEW_DATA, flag(buffer.new_data));
    infos.try_emplace(BUFFER_INFO_IS_QUEUED, flag(buffer.place != Buffer::Place::announced));
    infos.try_emplace(BUFFER_INFO_IS_INCOMPLETE, flag(false));
    return infos;
}

extern "C" {

GC_API DSAnnounceBuffer(DS_HANDLE handle, void* base, size_t size, void* user, BUFFER_HANDLE* result) {
    return run(noted("DSAnnounceBuffer", handle, base, size, user), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSAnnounceBuffer", handle);
        if (stream->buffers.size() >= here.max_buffers) return GC_ERR_RESOURCE_EXHAUSTED;
        Buffer& buffer = stream->buffers.emplace_back();
        buffer.base = base;
        buffer.size = size;
        buffer.user = user;
        *result = &buffer;
        return GC_ERR_SUCCESS;
    });
}

GC_API DSAllocAndAnnounceBuffer(DS_HANDLE, size_t, void*, BUFFER_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }

GC_API DSRevokeBuffer(DS_HANDLE handle, BUFFER_HANDLE buffer_handle, void** base, void** user) {
    return run(noted("DSRevokeBuffer", handle, buffer_handle), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        auto* buffer = stream ? here.FindBuffer(*stream, buffer_handle) : nullptr;
        if (!buffer) return bad_handle(here, "DSRevokeBuffer", buffer_handle);
        if (buffer->place != Buffer::Place::announced) return here.Broken("DSRevokeBuffer of a queued buffer", GC_ERR_BUSY);
        if (base) *base = buffer->base;
        if (user) *user = buffer->user;
        stream->buffers.remove_if([&](const Buffer& each) { return &each == buffer; });
        return GC_ERR_SUCCESS;
    });
}

GC_API DSQueueBuffer(DS_HANDLE handle, BUFFER_HANDLE buffer_handle) {
    return run(noted("DSQueueBuffer", handle, buffer_handle), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        auto* buffer = stream ? here.FindBuffer(*stream, buffer_handle) : nullptr;
        if (!buffer) return bad_handle(here, "DSQueueBuffer", buffer_handle);
        if (buffer->place != Buffer::Place::announced)
            return here.Broken("DSQueueBuffer of a queued buffer", GC_ERR_RESOURCE_IN_USE);
        queue(*stream, *buffer);
        here.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}

GC_API DSFlushQueue(DS_HANDLE handle, ACQ_QUEUE_TYPE operation) {
    return run(noted("DSFlushQueue", handle, operation), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSFlushQueue", handle);
        switch (operation) {
            case ACQ_QUEUE_INPUT_TO_OUTPUT:
                for (auto* buffer : std::exchange(stream->input, {})) here.MoveToOutput(*stream, *buffer, false);
                return GC_ERR_SUCCESS;
            case ACQ_QUEUE_OUTPUT_DISCARD:
                empty_output(here, *stream, [](Buffer&) {});
                return GC_ERR_SUCCESS;
            case ACQ_QUEUE_ALL_TO_INPUT:
                empty_output(here, *stream, [&](Buffer& buffer) { queue(*stream, buffer); });
                return GC_ERR_SUCCESS;
            case ACQ_QUEUE_UNQUEUED_TO_INPUT:
                for (auto& buffer : stream->buffers)
                    if (buffer.place == Buffer::Place::announced) queue(*stream, buffer);
                return GC_ERR_SUCCESS;
            case ACQ_QUEUE_ALL_DISCARD:
                for (auto* buffer : std::exchange(stream->input, {})) buffer->place = Buffer::Place::announced;
                empty_output(here, *stream, [](Buffer&) {});
                return GC_ERR_SUCCESS;
            default:
                return here.Broken("unknown flush operation", GC_ERR_NOT_IMPLEMENTED);
        }
    });
}

GC_API DSStartAcquisition(DS_HANDLE handle, ACQ_START_FLAGS flags, uint64_t count) {
    return run(noted("DSStartAcquisition", handle, flags, count), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSStartAcquisition", handle);
        if (stream->started) return here.Broken("DSStartAcquisition twice", GC_ERR_RESOURCE_IN_USE);
        if (count == 0) return here.Broken("DSStartAcquisition of no image", GC_ERR_INVALID_PARAMETER);
        stream->started = true;
        stream->delivered = 0;
        here.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}

GC_API DSStopAcquisition(DS_HANDLE handle, ACQ_STOP_FLAGS flags) {
    return run(noted("DSStopAcquisition", handle, flags), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSStopAcquisition", handle);
        if (!stream->started) return GC_ERR_RESOURCE_IN_USE;
        stream->started = false;
        return GC_ERR_SUCCESS;
    });
}

GC_API DSGetInfo(DS_HANDLE handle, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("DSGetInfo", handle, command), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSGetInfo", handle);
        auto number = [](std::size_t value) { return number_info(INFO_DATATYPE_SIZET, value); };
        auto flag = [](bool value) { return number_info<std::uint8_t>(INFO_DATATYPE_BOOL8, value); };
        Infos infos = stream->infos;
        infos.try_emplace(STREAM_INFO_ID, text_info(stream->id));
        infos.try_emplace(STREAM_INFO_NUM_DELIVERED, number_info(INFO_DATATYPE_UINT64, stream->delivered));
        infos.try_emplace(STREAM_INFO_NUM_ANNOUNCED, number(stream->buffers.size()));
        infos.try_emplace(STREAM_INFO_NUM_QUEUED, number(stream->input.size()));
        infos.try_emplace(STREAM_INFO_NUM_AWAIT_DELIVERY, number(count_in(*stream, Buffer::Place::output)));
        infos.try_emplace(STREAM_INFO_IS_GRABBING, flag(stream->started));
        infos.try_emplace(STREAM_INFO_DEFINES_PAYLOADSIZE, flag(false));
        infos.try_emplace(STREAM_INFO_BUF_ANNOUNCE_MIN, number(1));
        return answer_from(here, infos, command, type, buffer, size);
    });
}

GC_API DSGetBufferID(DS_HANDLE handle, uint32_t index, BUFFER_HANDLE* result) {
    return run(noted("DSGetBufferID", handle, index), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSGetBufferID", handle);
        if (index >= stream->buffers.size()) return GC_ERR_INVALID_INDEX;
        *result = &*std::next(stream->buffers.begin(), index);
        return GC_ERR_SUCCESS;
    });
}

GC_API DSGetBufferInfo(DS_HANDLE handle, BUFFER_HANDLE buffer_handle, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* result,
                       size_t* size) {
    return run(noted("DSGetBufferInfo", handle, buffer_handle, command, size ? *size : 0), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        auto* buffer = stream ? here.FindBuffer(*stream, buffer_handle) : nullptr;
        if (!buffer) return bad_handle(here, "DSGetBufferInfo", buffer_handle);
        return answer_from(here, buffer_infos(*buffer), command, type, result, size);
    });
}

#if !SCRIPTED_LACKS_CHUNK_DATA
GC_API DSGetBufferChunkData(DS_HANDLE handle, BUFFER_HANDLE buffer_handle, SINGLE_CHUNK_DATA* chunks, size_t* count) {
    return run(noted("DSGetBufferChunkData", handle, buffer_handle, chunks), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        auto* buffer = stream ? here.FindBuffer(*stream, buffer_handle) : nullptr;
        if (!buffer) return bad_handle(here, "DSGetBufferChunkData", buffer_handle);
        if (buffer->chunks.empty()) return GC_ERR_NO_DATA;
        if (chunks && *count < buffer->chunks.size()) return GC_ERR_BUFFER_TOO_SMALL;
        *count = buffer->chunks.size();
        if (chunks) std::ranges::copy(buffer->chunks, chunks);
        return GC_ERR_SUCCESS;
    });
}
#endif

GC_API DSClose(DS_HANDLE handle) {
    return run(noted("DSClose", handle), [=](World& here) -> GC_ERROR {
        auto* stream = here.FindStream(handle);
        if (!stream) return bad_handle(here, "DSClose", handle);
        here.CloseStream(*stream);
        return GC_ERR_SUCCESS;
    });
}

GC_API DSGetParentDev(DS_HANDLE, DEV_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API DSGetNumBufferParts(DS_HANDLE, BUFFER_HANDLE, uint32_t*) { return GC_ERR_NO_DATA; }
GC_API DSGetBufferPartInfo(DS_HANDLE, BUFFER_HANDLE, uint32_t, BUFFER_PART_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
    return GC_ERR_NO_DATA;
}

#if SCRIPTED_EXTENSIONS
GC_API DSGetStreamParam(DS_HANDLE handle, int32_t parameter, void* buffer, size_t* size) {
    return run(noted("DSGetStreamParam", handle, parameter, buffer, size ? *size : 0), [=](World& here) -> GC_ERROR {
        if (!here.FindStream(handle)) return bad_handle(here, "DSGetStreamParam", handle);
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        return answer(here, number_info<std::int32_t>(INFO_DATATYPE_INT32, parameter), &type, buffer, size);
    });
}

GC_API DSSetStreamParam(DS_HANDLE handle, int32_t parameter, void* buffer, size_t* size) {
    return run(noted("DSSetStreamParam", handle, parameter, buffer, size ? *size : 0), [=](World& here) -> GC_ERROR {
        return here.FindStream(handle) ? static_cast<GC_ERROR>(GC_ERR_SUCCESS) : bad_handle(here, "DSSetStreamParam", handle);
    });
}
#endif

}  // extern "C"
}  // namespace GenTL
