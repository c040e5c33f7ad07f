#include "producer_fixture.h"

#include <kiv/platform/environment.h>

#include <thread>

namespace kiv::test {

ProducerTest::ProducerTest(const char* producer, const char* variable) : config_variable(variable), gentl(producer) {
    platform::set_environment("KIV_SIM_STATE", folder / "state");
    Configure(R"({"interfaces": [
        {"id": "SIM0", "cameras": [
            {"serial": "FAST", "width": 128, "height": 96, "frame_rate": 500, "unplug_file": "unplug_fast"},
            {"serial": "SLOW", "width": 128, "height": 96, "frame_rate": 500, "link_megabytes_per_second": 0.02}]},
        {"id": "SIM1"}]})");
}

ProducerTest::~ProducerTest() { gentl.GCCloseLib(); }

void ProducerTest::Configure(const std::string& json) {
    platform::set_environment(config_variable, folder.Write("config.json", json));
}

void ProducerTest::OpenSystem() {
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLOpen(&system)) << LastErrorText();
}

void ProducerTest::OpenInterface(const char* id) {
    if (!system) {
        ASSERT_NO_FATAL_FAILURE(OpenSystem());
    }
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLOpenInterface(system, id, &interface));
}

void ProducerTest::OpenDevice(const char* id, DEVICE_ACCESS_FLAGS access) {
    if (!interface) {
        ASSERT_NO_FATAL_FAILURE(OpenInterface());
    }
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFOpenDevice(interface, id, access, &device)) << LastErrorText();
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DevGetPort(device, &camera));
}

void ProducerTest::OpenStream() {
    const std::string id = ask_id([&](auto... out) { return gentl.DevGetDataStreamID(device, 0, out...); });
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DevOpenDataStream(device, id.c_str(), &stream));
}

void ProducerTest::Open(const char* id) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice(id));
    ASSERT_NO_FATAL_FAILURE(OpenStream());
}

void ProducerTest::AnnounceBuffers(size_t count, size_t size) {
    for (size_t i = 0; i < count; ++i) {
        memory.emplace_back(size);
        BUFFER_HANDLE buffer = nullptr;
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSAnnounceBuffer(stream, memory.back().data(), size, memory.back().data() + 1, &buffer));
        buffers.push_back(buffer);
    }
}

void ProducerTest::QueueAll() {
    for (BUFFER_HANDLE buffer : buffers) ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
}

EVENT_HANDLE ProducerTest::RegisterNewBuffer() {
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event));
    return event;
}

void ProducerTest::StartAcquisition(uint64_t count, bool triggered) {
    Write32(camera_register::exposure, 1000);
    Write32(camera_register::trigger_mode, triggered ? 1 : 0);
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, count));
    Write32(camera_register::start, 1);
}

void ProducerTest::Write32(uint64_t address, uint32_t value) {
    size_t size = sizeof value;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(camera, address, &value, &size)) << LastErrorText();
}

uint32_t ProducerTest::Read32(uint64_t address) {
    uint32_t value = 0;
    size_t size = sizeof value;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, address, &value, &size)) << LastErrorText();
    return value;
}

EVENT_NEW_BUFFER_DATA ProducerTest::NextBuffer(EVENT_HANDLE event) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, &data, &size, 20000));
    EXPECT_EQ(sizeof data, size);
    return data;
}

std::string ProducerTest::LastErrorText() {
    GC_ERROR code = 0;
    return ask_id([&](auto... out) { return gentl.GCGetLastError(&code, out...); });
}

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace kiv::test
