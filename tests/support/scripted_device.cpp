// Entry points of a scripted producer: devices, ports, events.
#include <chrono>
#include <cstring>

#include "scripted_entry.h"

using namespace scripted;

namespace GenTL {

static const std::string& url_of(const Port& port, uint32_t index) {
    static const std::string none;
    return index < port.urls.size() ? port.urls[index] : none;
}

extern "C" {

GC_API DevGetPort(DEV_HANDLE handle, PORT_HANDLE* result) {
    return run(noted("DevGetPort", handle), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevGetPort", handle);
        *result = &device->remote;
        return GC_ERR_SUCCESS;
    });
}

GC_API DevGetNumDataStreams(DEV_HANDLE handle, uint32_t* count) {
    return run(noted("DevGetNumDataStreams", handle), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevGetNumDataStreams", handle);
        *count = static_cast<uint32_t>(device->streams.size());
        return GC_ERR_SUCCESS;
    });
}

GC_API DevGetDataStreamID(DEV_HANDLE handle, uint32_t index, char* id, size_t* size) {
    return run(noted("DevGetDataStreamID", handle, index, id, size ? *size : 0), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevGetDataStreamID", handle);
        if (index >= device->streams.size()) return GC_ERR_INVALID_INDEX;
        return answer_text(here, std::next(device->streams.begin(), index)->id, id, size);
    });
}

static GC_ERROR open_stream(Stream& stream, DS_HANDLE* result) {
    if (stream.open) return GC_ERR_RESOURCE_IN_USE;
    stream.open = true;
    *result = &stream;
    return GC_ERR_SUCCESS;
}

GC_API DevOpenDataStream(DEV_HANDLE handle, const char* id, DS_HANDLE* result) {
    return run(noted_text("DevOpenDataStream", id, handle), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevOpenDataStream", handle);
        for (auto& stream : device->streams)
            if (id && stream.id == id) return open_stream(stream, result);
        return GC_ERR_INVALID_ID;
    });
}

GC_API DevGetInfo(DEV_HANDLE handle, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("DevGetInfo", handle, command), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        return device ? answer_from(here, device->infos, command, type, buffer, size) : bad_handle(here, "DevGetInfo", handle);
    });
}

GC_API DevClose(DEV_HANDLE handle) {
    return run(noted("DevClose", handle), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevClose", handle);
        here.CloseDevice(*device);
        return GC_ERR_SUCCESS;
    });
}

GC_API DevGetParentIF(DEV_HANDLE, IF_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }

// ---- ports ----

static GC_ERROR transfer(World& here, const char* entry, void* handle, uint64_t address, size_t* size,
                         const std::function<void(char*)>& copy) {
    auto* port = here.FindPort(handle);
    if (!port) return bad_handle(here, entry, handle);
    char* bytes = port->Find(address, *size);
    if (!bytes) {
        *size = 0;
        return GC_ERR_INVALID_ADDRESS;
    }
    copy(bytes);
    return GC_ERR_SUCCESS;
}

GC_API GCReadPort(PORT_HANDLE handle, uint64_t address, void* buffer, size_t* size) {
    return run(noted("GCReadPort", handle, address, size ? *size : 0), [=](World& here) -> GC_ERROR {
        if (!buffer || !size) return here.Broken("GCReadPort without buffer or size", GC_ERR_INVALID_PARAMETER);
        return transfer(here, "GCReadPort", handle, address, size, [=](char* bytes) { std::memcpy(buffer, bytes, *size); });
    });
}

GC_API GCWritePort(PORT_HANDLE handle, uint64_t address, const void* buffer, size_t* size) {
    return run(noted("GCWritePort", handle, address, size ? *size : 0), [=](World& here) -> GC_ERROR {
        if (!buffer || !size) return here.Broken("GCWritePort without buffer or size", GC_ERR_INVALID_PARAMETER);
        return transfer(here, "GCWritePort", handle, address, size, [=](char* bytes) { std::memcpy(bytes, buffer, *size); });
    });
}

GC_API GCGetPortURL(PORT_HANDLE handle, char* url, size_t* size) {
    return run(noted("GCGetPortURL", handle), [=](World& here) -> GC_ERROR {
        auto* port = here.FindPort(handle);
        if (!port) return bad_handle(here, "GCGetPortURL", handle);
        std::string list;
        for (const auto& each : port->urls) list += each + '\0';
        return answer_text(here, list, url, size);
    });
}

GC_API GCGetNumPortURLs(PORT_HANDLE handle, uint32_t* count) {
    return run(noted("GCGetNumPortURLs", handle), [=](World& here) -> GC_ERROR {
        auto* port = here.FindPort(handle);
        if (!port) return bad_handle(here, "GCGetNumPortURLs", handle);
        *count = static_cast<uint32_t>(port->urls.size());
        return GC_ERR_SUCCESS;
    });
}

GC_API GCGetPortURLInfo(PORT_HANDLE handle, uint32_t index, URL_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                        size_t* size) {
    return run(noted("GCGetPortURLInfo", handle, index, command), [=](World& here) -> GC_ERROR {
        auto* port = here.FindPort(handle);
        if (!port) return bad_handle(here, "GCGetPortURLInfo", handle);
        if (index >= port->urls.size()) return GC_ERR_INVALID_INDEX;
        return answer_from(here, {{URL_INFO_URL, text_info(url_of(*port, index))}}, command, type, buffer, size);
    });
}

GC_API GCGetPortInfo(PORT_HANDLE handle, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("GCGetPortInfo", handle, command), [=](World& here) -> GC_ERROR {
        if (!here.FindPort(handle)) return bad_handle(here, "GCGetPortInfo", handle);
        return answer_from(here, {}, command, type, buffer, size);
    });
}

GC_API GCReadPortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API GCWritePortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }

// ---- events ----

GC_API GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* result) {
    return run(noted("GCRegisterEvent", source, type), [=](World& here) -> GC_ERROR {
        if (!here.FindPort(source)) return bad_handle(here, "GCRegisterEvent", source);
        if (here.FindRegistration(source, type)) return here.Broken("an event registered twice", GC_ERR_RESOURCE_IN_USE);
        Event& event = here.events.emplace_back();
        event.source = source;
        event.type = type;
        *result = &event;
        return GC_ERR_SUCCESS;
    });
}

GC_API GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type) {
    return run(noted("GCUnregisterEvent", source, type), [=](World& here) -> GC_ERROR {
        auto* event = here.FindRegistration(source, type);
        if (!event) return here.Broken("GCUnregisterEvent of what is not registered", GC_ERR_NOT_INITIALIZED);
        here.Unregister(*event);
        if (auto* stream = here.FindStream(source); stream && type == EVENT_NEW_BUFFER)
            for (auto& buffer : stream->buffers)
                if (buffer.place == Buffer::Place::output) buffer.place = Buffer::Place::announced;
        return GC_ERR_SUCCESS;
    });
}

static GC_ERROR take_event(World& here, Event& event, void* buffer, size_t* size) {
    if (!event.registered) return GC_ERR_ABORT;
    if (event.kills > 0) {
        --event.kills;
        return GC_ERR_ABORT;
    }
    if (event.queue.empty()) return GC_ERR_TIMEOUT;
    std::string data = event.queue.front();
    if (buffer && *size < data.size()) return GC_ERR_BUFFER_TOO_SMALL;
    event.queue.pop_front();
    *size = data.size();
    if (buffer) std::memcpy(buffer, data.data(), data.size());
    if (event.type == EVENT_NEW_BUFFER)
        if (auto* stream = here.FindStream(event.source)) {
            void* handle = nullptr;
            std::memcpy(&handle, data.data(), sizeof handle);
            if (auto* taken = here.FindBuffer(*stream, handle)) taken->place = Buffer::Place::announced;
        }
    return GC_ERR_SUCCESS;
}

GC_API EventGetData(EVENT_HANDLE handle, void* buffer, size_t* size, uint64_t timeout) {
    World& here = world();
    if (auto refused = here.Begin(noted("EventGetData", handle, size ? *size : 0, timeout))) return *refused;
    std::unique_lock guard(here.lock);
    auto* event = here.FindEvent(handle);
    if (!event) return bad_handle(here, "EventGetData", handle);
    auto ready = [&] { return !event->registered || event->kills > 0 || !event->queue.empty(); };
    if (timeout == GENTL_INFINITE)
        here.happened.wait(guard, ready);
    else
        here.happened.wait_for(guard, std::chrono::milliseconds(timeout), ready);
    return take_event(here, *event, buffer, size);
}

GC_API EventGetDataInfo(EVENT_HANDLE, const void*, size_t, EVENT_DATA_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
    return GC_ERR_NOT_IMPLEMENTED;
}

GC_API EventGetInfo(EVENT_HANDLE handle, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return run(noted("EventGetInfo", handle, command, size ? *size : 0), [=](World& here) -> GC_ERROR {
        auto* event = here.FindEvent(handle);
        if (!event || !event->registered) return bad_handle(here, "EventGetInfo", handle);
        const Infos infos = {{EVENT_EVENT_TYPE, number_info(INFO_DATATYPE_INT32, event->type)},
                             {EVENT_NUM_IN_QUEUE, number_info(INFO_DATATYPE_SIZET, event->queue.size())},
                             {EVENT_SIZE_MAX, number_info<std::size_t>(INFO_DATATYPE_SIZET, 1024)}};
        return answer_from(here, infos, command, type, buffer, size);
    });
}

GC_API EventFlush(EVENT_HANDLE handle) {
    return run(noted("EventFlush", handle), [=](World& here) -> GC_ERROR {
        auto* event = here.FindEvent(handle);
        if (!event || !event->registered) return bad_handle(here, "EventFlush", handle);
        event->queue.clear();
        return GC_ERR_SUCCESS;
    });
}

GC_API EventKill(EVENT_HANDLE handle) {
    return run(noted("EventKill", handle), [=](World& here) -> GC_ERROR {
        auto* event = here.FindEvent(handle);
        if (!event || !event->registered) return bad_handle(here, "EventKill", handle);
        ++event->kills;
        here.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}

#if SCRIPTED_EXTENSIONS
GC_API DevQueryCustomFeature(DEV_HANDLE handle, int32_t feature, void*, size_t*) {
    return run(noted("DevQueryCustomFeature", handle, feature), [](World&) -> GC_ERROR { return GC_ERR_NOT_IMPLEMENTED; });
}
#endif
#if SCRIPTED_EXTENSIONS && !SCRIPTED_LACKS_STREAM_MC
GC_API DevCreateDataStreamMc(DEV_HANDLE handle, uint32_t index, DS_HANDLE* result, uint32_t mode) {
    return run(noted("DevCreateDataStreamMc", handle, index, mode), [=](World& here) -> GC_ERROR {
        auto* device = here.FindDevice(handle);
        if (!device) return bad_handle(here, "DevCreateDataStreamMc", handle);
        if (index >= device->streams.size()) return GC_ERR_INVALID_INDEX;
        return open_stream(*std::next(device->streams.begin(), index), result);
    });
}
#endif

}  // extern "C"
}  // namespace GenTL
