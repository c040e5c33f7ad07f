#include "stub_producer.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>

using namespace GenTL;
using kiv::bench::StubControl;
using kiv::bench::StubFrame;

namespace {

std::string description(const std::string& port, const std::string& nodes = {}) {
    return "<?xml version=\"1.0\"?><RegisterDescription ModelName=\"Stub\" VendorName=\"Stub\" ToolTip=\"\" "
           "StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"p\" VersionGuid=\"v\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
           nodes + "<Port Name=\"" + port + "\"/></RegisterDescription>";
}

const std::string camera_nodes = R"(
<Enumeration Name="PixelFormat"><EnumEntry Name="Mono8"><Value>0x01080001</Value></EnumEntry><Value>0x01080001</Value></Enumeration>
<IntReg Name="ChunkCounter"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Port Name="ChunkPort"><ChunkID>c0de</ChunkID></Port>)";

/// A module: its port's description, and a handle of its own.
struct Module {
    const char* name;
    std::string xml;
};
Module tl{"TL", description("TLPort")}, interface_module{"IF0", description("InterfacePort")},
    local{"CAM0", description("DevicePort")}, remote{"CAM0", description("Device", camera_nodes)},
    stream{"STREAM0", description("StreamPort")};

struct Buffer {
    char* base = nullptr;
    std::size_t size = 0;
    StubFrame frame;
};

/// Buffers in the order in which they wait.
struct Queue {
    std::array<Buffer*, 16> entries{};
    std::size_t first = 0, count = 0;
    void Push(Buffer* buffer) { entries[(first + count++) % entries.size()] = buffer; }
    Buffer* Pop() {
        if (count == 0) return nullptr;
        --count;
        return std::exchange(entries[first++ % entries.size()], nullptr);
    }
};

std::array<Buffer, 10> buffers;
std::size_t announced = 0;
std::mutex lock;
std::condition_variable came;
Queue input, ready;
bool killed = false;
std::uint64_t next_id = 0;
StubControl control;
std::array<std::byte, StubControl::register_bytes> registers;

/// The place of a transfer in the registers; null when it lies elsewhere.
std::byte* register_at(std::uint64_t address, std::size_t size) {
    const auto offset = address - StubControl::register_base;
    return address >= StubControl::register_base && offset <= registers.size() && size <= registers.size() - offset
               ? registers.data() + offset
               : nullptr;
}

template <class Value>
GC_ERROR give(Value value, void* buffer, std::size_t* size) {
    if (buffer && *size < sizeof value) return GC_ERR_BUFFER_TOO_SMALL;
    if (buffer) std::memcpy(buffer, &value, sizeof value);
    *size = sizeof value;
    return GC_ERR_SUCCESS;
}

GC_ERROR give_text(const std::string& text, void* buffer, std::size_t* size) {
    if (buffer && *size <= text.size()) return GC_ERR_BUFFER_TOO_SMALL;
    if (buffer) std::memcpy(buffer, text.c_str(), text.size() + 1);
    *size = text.size() + 1;
    return GC_ERR_SUCCESS;
}

GC_ERROR hand_out(Buffer* buffer, const StubFrame& frame, EVENT_NEW_BUFFER_DATA& data) {
    buffer->frame = frame;
    ++control.delivered;
    data = {buffer, nullptr};
    return GC_ERR_SUCCESS;
}

}  // namespace

namespace GenTL {
extern "C" {

GC_API GCInitLib() { return GC_ERR_SUCCESS; }
GC_API GCCloseLib() { return GC_ERR_SUCCESS; }
GC_API GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE*, void* buffer, size_t* size) {
    return give_text(command == TL_INFO_TLTYPE ? "U3V" : "Stub", buffer, size);
}
GC_API TLGetInfo(TL_HANDLE, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return GCGetInfo(command, type, buffer, size);
}
GC_API GCGetLastError(GC_ERROR* error, char* text, size_t* size) { return *error = 0, give_text("No Error", text, size); }
GC_API TLOpen(TL_HANDLE* handle) { return *handle = &tl, GC_ERR_SUCCESS; }
GC_API TLClose(TL_HANDLE) { return GC_ERR_SUCCESS; }
GC_API TLUpdateInterfaceList(TL_HANDLE, bool8_t*, uint64_t) { return GC_ERR_SUCCESS; }
GC_API TLGetNumInterfaces(TL_HANDLE, uint32_t* count) { return *count = 1, GC_ERR_SUCCESS; }
GC_API TLGetInterfaceID(TL_HANDLE, uint32_t, char* id, size_t* size) { return give_text("IF0", id, size); }
GC_API TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* handle) { return *handle = &interface_module, GC_ERR_SUCCESS; }
GC_API IFClose(IF_HANDLE) { return GC_ERR_SUCCESS; }
GC_API IFUpdateDeviceList(IF_HANDLE, bool8_t*, uint64_t) { return GC_ERR_SUCCESS; }
GC_API IFGetNumDevices(IF_HANDLE, uint32_t* count) { return *count = 1, GC_ERR_SUCCESS; }
GC_API IFGetDeviceID(IF_HANDLE, uint32_t, char* id, size_t* size) { return give_text("CAM0", id, size); }
GC_API IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD, INFO_DATATYPE*, void* buffer, size_t* size) {
    return give_text("CAM0", buffer, size);
}
GC_API IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE* handle) { return *handle = &local, GC_ERR_SUCCESS; }
GC_API DevGetPort(DEV_HANDLE, PORT_HANDLE* handle) { return *handle = &remote, GC_ERR_SUCCESS; }
GC_API DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API DevClose(DEV_HANDLE) { return GC_ERR_SUCCESS; }
GC_API DevGetNumDataStreams(DEV_HANDLE, uint32_t* count) { return *count = 1, GC_ERR_SUCCESS; }
GC_API DevGetDataStreamID(DEV_HANDLE, uint32_t, char* id, size_t* size) { return give_text("STREAM0", id, size); }
GC_API DevOpenDataStream(DEV_HANDLE, const char*, DS_HANDLE* handle) {
    announced = 0;
    input = ready = {};
    killed = false;
    next_id = 0;
    return *handle = &stream, GC_ERR_SUCCESS;
}
GC_API DSClose(DS_HANDLE) { return GC_ERR_SUCCESS; }

GC_API GCGetNumPortURLs(PORT_HANDLE, uint32_t* count) { return *count = 1, GC_ERR_SUCCESS; }
GC_API GCGetPortURLInfo(PORT_HANDLE handle, uint32_t, URL_INFO_CMD command, INFO_DATATYPE*, void* buffer, size_t* size) {
    if (command != URL_INFO_URL) return GC_ERR_NOT_IMPLEMENTED;
    auto& module = *static_cast<Module*>(handle);
    char url[64];
    std::snprintf(url, sizeof url, "local:stub_%s.xml;10000;%zx", handle == &remote ? "remote" : module.name, module.xml.size());
    return give_text(url, buffer, size);
}
GC_API GCGetPortURL(PORT_HANDLE handle, char* url, size_t* size) {
    INFO_DATATYPE type = 0;
    return GCGetPortURLInfo(handle, 0, URL_INFO_URL, &type, url, size);
}
GC_API GCReadPort(PORT_HANDLE handle, uint64_t address, void* buffer, size_t* size) {
    if (const auto* from = register_at(address, *size)) return std::memcpy(buffer, from, *size), GC_ERR_SUCCESS;
    auto& xml = static_cast<Module*>(handle)->xml;
    if (address < 0x10000 || address - 0x10000 > xml.size() || *size > xml.size() - (address - 0x10000))
        return GC_ERR_INVALID_ADDRESS;
    std::memcpy(buffer, xml.data() + (address - 0x10000), *size);
    return GC_ERR_SUCCESS;
}
GC_API GCWritePort(PORT_HANDLE, uint64_t address, const void* buffer, size_t* size) {
    auto* to = register_at(address, *size);
    return to ? (std::memcpy(to, buffer, *size), GC_ERR_SUCCESS) : GC_ERR_ACCESS_DENIED;
}

GC_API GCRegisterEvent(EVENTSRC_HANDLE, EVENT_TYPE, EVENT_HANDLE* handle) { return *handle = &input, GC_ERR_SUCCESS; }
GC_API GCUnregisterEvent(EVENTSRC_HANDLE, EVENT_TYPE) { return GC_ERR_SUCCESS; }
GC_API EventGetInfo(EVENT_HANDLE, EVENT_INFO_CMD, INFO_DATATYPE*, void*, size_t*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API EventFlush(EVENT_HANDLE) { return GC_ERR_SUCCESS; }
GC_API EventKill(EVENT_HANDLE) {
    std::lock_guard guard(lock);
    killed = true;
    came.notify_all();
    return GC_ERR_SUCCESS;
}

GC_API EventGetData(EVENT_HANDLE, void* result, size_t*, uint64_t timeout) {
    auto& data = *static_cast<EVENT_NEW_BUFFER_DATA*>(result);
    if (control.frames > 0) {
        StubFrame frame;
        frame.id = next_id + 1;
        if (std::lock_guard guard(lock); input.count == 0) return GC_ERR_TIMEOUT;
        if (auto script = control.script.load()) script(frame);
        if (frame.event != GC_ERR_SUCCESS) return frame.event;
        if (frame.without_buffer) return data = {nullptr, nullptr}, GC_ERR_SUCCESS;
        std::lock_guard guard(lock);
        next_id = frame.id;
        --control.frames;
        return hand_out(input.Pop(), frame, data);
    }
    std::unique_lock guard(lock);
    came.wait_for(guard, std::chrono::milliseconds(timeout), [] { return killed || ready.count > 0 || control.frames > 0; });
    if (std::exchange(killed, false)) return GC_ERR_ABORT;
    Buffer* buffer = ready.Pop();
    if (!buffer) return GC_ERR_TIMEOUT;
    StubFrame frame;
    frame.id = ++next_id;
    if (auto script = control.script.load()) script(frame);
    return hand_out(buffer, frame, data);
}

static void post() {
    {
        std::lock_guard guard(lock);
        if (Buffer* buffer = input.Pop()) ready.Push(buffer);
    }
    came.notify_one();
}

static void describe(const char* nodes) { remote.xml = description("Device", camera_nodes + nodes); }

static void wake() {
    std::lock_guard guard(lock);
    came.notify_all();
}

GC_API DSAnnounceBuffer(DS_HANDLE, void* base, size_t size, void*, BUFFER_HANDLE* handle) {
    if (announced == buffers.size()) return GC_ERR_RESOURCE_EXHAUSTED;
    Buffer& buffer = buffers[announced++];
    buffer = {static_cast<char*>(base), size, {}};
    return *handle = &buffer, GC_ERR_SUCCESS;
}
GC_API DSRevokeBuffer(DS_HANDLE, BUFFER_HANDLE, void**, void**) { return GC_ERR_SUCCESS; }
GC_API DSQueueBuffer(DS_HANDLE, BUFFER_HANDLE handle) {
    auto& buffer = *static_cast<Buffer*>(handle);
    if (auto refused = std::exchange(buffer.frame.queue, GC_ERR_SUCCESS)) return refused;
    std::lock_guard guard(lock);
    input.Push(&buffer);
    return GC_ERR_SUCCESS;
}
GC_API DSFlushQueue(DS_HANDLE, ACQ_QUEUE_TYPE) { return GC_ERR_SUCCESS; }
GC_API DSStartAcquisition(DS_HANDLE, ACQ_START_FLAGS, uint64_t) { return GC_ERR_SUCCESS; }
GC_API DSStopAcquisition(DS_HANDLE, ACQ_STOP_FLAGS) { return GC_ERR_SUCCESS; }
GC_API DSGetBufferID(DS_HANDLE, uint32_t, BUFFER_HANDLE*) { return GC_ERR_NOT_IMPLEMENTED; }
GC_API DSGetInfo(DS_HANDLE, STREAM_INFO_CMD command, INFO_DATATYPE*, void* buffer, size_t* size) {
    if (command == STREAM_INFO_NUM_QUEUED) return give(input.count, buffer, size);
    if (command == STREAM_INFO_NUM_AWAIT_DELIVERY) return give(ready.count, buffer, size);
    return GC_ERR_NOT_IMPLEMENTED;
}

GC_API DSGetBufferInfo(DS_HANDLE, BUFFER_HANDLE handle, BUFFER_INFO_CMD command, INFO_DATATYPE*, void* result, size_t* size) {
    auto& buffer = *static_cast<Buffer*>(handle);
    auto& frame = buffer.frame;
    if (command < 64 && frame.refused >> command & 1) return GC_ERR_NOT_AVAILABLE;
    switch (command) {
        case BUFFER_INFO_BASE:
            return give(buffer.base + frame.base_offset, result, size);
        case BUFFER_INFO_SIZE:
            return give(buffer.size + frame.size_surplus, result, size);
        case BUFFER_INFO_TIMESTAMP:
            return give(frame.id, result, size);
        case BUFFER_INFO_IS_INCOMPLETE:
            return give<bool8_t>(frame.incomplete, result, size);
        case BUFFER_INFO_WIDTH:
            return give<std::size_t>(64, result, size);
        case BUFFER_INFO_HEIGHT:
            return give<std::size_t>(buffer.size / 64, result, size);
        case BUFFER_INFO_XOFFSET:
        case BUFFER_INFO_YOFFSET:
        case BUFFER_INFO_XPADDING:
            return give<std::size_t>(0, result, size);
        case BUFFER_INFO_FRAMEID:
            return give(frame.id, result, size);
        case BUFFER_INFO_PIXELFORMAT:
            return give<std::uint64_t>(0x01080001, result, size);
        case BUFFER_INFO_CHUNKLAYOUTID:
            return give(frame.layout, result, size);
        default:
            return GC_ERR_NOT_IMPLEMENTED;
    }
}
GC_API DSGetBufferChunkData(DS_HANDLE, BUFFER_HANDLE handle, SINGLE_CHUNK_DATA* chunks, size_t* count) {
    auto& frame = static_cast<Buffer*>(handle)->frame;
    if (frame.chunks != GC_ERR_SUCCESS) return frame.chunks;
    *count = 1;
    if (chunks) *chunks = {0xC0DE, frame.chunk_offset, frame.chunk_length};
    return GC_ERR_SUCCESS;
}

__attribute__((visibility("default"))) StubControl* Stub_Control() {
    control.post = post;
    control.wake = wake;
    control.describe = describe;
    return &control;
}

}  // extern "C"
}  // namespace GenTL
