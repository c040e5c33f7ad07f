// Faults on demand: by configuration and at run time, each seen from the consumer's side.

#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

constexpr uint64_t test_pattern = 0x20128, repeat_every = 0x20C08, tear_every = 0x20C0C, wrong_size = 0x20C18,
                   wrong_size_of = 0x20C1C, event_copies = 0x20C24, unplug = 0x20C34, entry_name = 0x20C50,
                   entry_status = 0x20C90, entry_first_call = 0x20C94, entry_calls = 0x20C98, entry_apply = 0x20CA0,
                   entry_clear = 0x20CA4;

class Faults : public ProducerTest {
protected:
    void OpenWith(const std::string& faults, const std::string& of_all = "{}") {
        Configure(R"({"faults": )" + of_all + R"(, "interfaces": [{"id": "SIM0", "cameras": [
            {"serial": "FAST", "width": 128, "height": 96, "frame_rate": 500, "faults": )" +
                  faults + R"(}, {"serial": "OTHER"}]}]})");
        Open();
    }
    /// Opens, and has `count` frames taken, each with a moving ramp as its image.
    void Acquire(const std::string& faults, size_t count) {
        ASSERT_NO_FATAL_FAILURE(OpenWith(faults));
        ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(count, 128 * 96));
        event = RegisterNewBuffer();
        QueueAll();
        Write32(test_pattern, 6);
        ASSERT_NO_FATAL_FAILURE(StartAcquisition(GENTL_INFINITE, false));
    }
    std::vector<uint64_t> FrameIds(size_t count) {
        std::vector<uint64_t> ids;
        while (ids.size() < count)
            ids.push_back(BufferInfo<uint64_t>(NextBuffer(event).BufferHandle, BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64));
        return ids;
    }
    GC_ERROR Ask(STREAM_INFO_CMD command) {
        INFO_DATATYPE type = 0;
        uint64_t value = 0;
        size_t size = sizeof value;
        return gentl.DSGetInfo(stream, command, &type, &value, &size);
    }
    using Ids = std::vector<uint64_t>;
    EVENT_HANDLE event = nullptr;
};

TEST_F(Faults, AFunctionFailsAtTheCallsThatWereAskedFor) {
    ASSERT_NO_FATAL_FAILURE(OpenWith(R"({"entries": [{"entry": "DSGetInfo", "status": -1001, "first_call": 2, "calls": 2},
        {"entry": "IFGetDeviceInfo", "status": -1014}, {"entry": "DSGetBufferID"}]})",
                                     R"({"entries": [{"entry": "TLUpdateInterfaceList", "status": -1011}]})"));
    for (const GC_ERROR expected : {GC_ERR_SUCCESS, GC_ERR_ERROR, GC_ERR_ERROR, GC_ERR_SUCCESS})
        EXPECT_EQ(expected, Ask(STREAM_INFO_NUM_QUEUED));
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.TLUpdateInterfaceList(system, nullptr, 0));
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(GC_ERR_IO, gentl.DSGetBufferID(stream, 0, &buffer)) << "unless another status is named";
    INFO_DATATYPE type = 0;
    size_t size = 0;
    EXPECT_EQ(GC_ERR_NOT_AVAILABLE, gentl.IFGetDeviceInfo(interface, "SIM0_FAST", DEVICE_INFO_ID, &type, nullptr, &size));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetDeviceInfo(interface, "SIM0_OTHER", DEVICE_INFO_ID, &type, nullptr, &size))
        << "another camera is not concerned";
    EXPECT_NE(std::string::npos, LastErrorText().find("was asked to fail"));
}

TEST_F(Faults, AFunctionIsMadeToFailThroughRegisters) {
    ASSERT_NO_FATAL_FAILURE(OpenWith("{}"));
    const auto name = [&](const char* entry) {
        char text[64] = {};
        std::strncpy(text, entry, sizeof text - 1);
        size_t size = sizeof text;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(camera, entry_name, text, &size));
    };
    name("DSGetInfo");
    Write32(entry_status, static_cast<uint32_t>(GC_ERR_BUSY));
    Write32(entry_first_call, 2);
    Write32(entry_calls, 1);
    Write32(entry_apply, 1);
    for (const GC_ERROR expected : {GC_ERR_SUCCESS, GC_ERR_BUSY, GC_ERR_SUCCESS})
        EXPECT_EQ(expected, Ask(STREAM_INFO_NUM_QUEUED));
    Write32(entry_calls, 0);
    Write32(entry_apply, 1);
    EXPECT_EQ(GC_ERR_SUCCESS, Ask(STREAM_INFO_NUM_QUEUED));
    EXPECT_EQ(GC_ERR_BUSY, Ask(STREAM_INFO_NUM_QUEUED));
    EXPECT_EQ(GC_ERR_BUSY, Ask(STREAM_INFO_NUM_QUEUED));
    Write32(entry_clear, 1);
    EXPECT_EQ(GC_ERR_SUCCESS, Ask(STREAM_INFO_NUM_QUEUED));
    name("DSGetEverything");
    const uint32_t one = 1;
    size_t size = sizeof one;
    EXPECT_EQ(GC_ERR_INVALID_VALUE, gentl.GCWritePort(camera, entry_apply, &one, &size));
}

TEST_F(Faults, AFunctionThatIsLateIsLetGoWhenTheLibraryCloses) {
    ASSERT_NO_FATAL_FAILURE(OpenWith(R"({"entries": [{"entry": "DSGetInfo", "status": 0, "delay_ms": 10000}]})"));
    std::thread waiter([&] { Ask(STREAM_INFO_NUM_QUEUED); });
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCCloseLib());
    waiter.join();  // takes the delay when the close does not end it: the test's own limit of time is the check
}

TEST_F(Faults, ARegisterTimesOut) {
    ASSERT_NO_FATAL_FAILURE(OpenWith(R"({"register": {"address": 131328, "delay_ms": 1}})"));
    uint64_t values = 0;
    size_t size = 4;
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.GCReadPort(camera, camera_register::width, &values, &size));
    size = 8;
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.GCReadPort(camera, camera_register::width, &values, &size)) << "any access that touches it";
    size = 4;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::width + 4, &values, &size));
    Write32(0x20C48, 0);
    EXPECT_EQ(128u, Read32(camera_register::width));
}

TEST_F(Faults, FramesAreLostAndCounted) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"drop_every": 2})", 3));
    EXPECT_EQ((Ids{1, 3, 5}), FrameIds(3));
    EXPECT_GE(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN, INFO_DATATYPE_UINT64), 2u);
}

TEST_F(Faults, FramesComeAgain) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"repeat_every": 3})", 4));
    EXPECT_EQ((Ids{1, 2, 2, 4}), FrameIds(4));
    EXPECT_EQ(memory[1], memory[2]);
    EXPECT_NE(memory[2], memory[3]);
}

TEST_F(Faults, FramesAreTorn) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"tear_every": 2})", 2));
    EXPECT_EQ((Ids{1, 2}), FrameIds(2));
    const auto half = [&](size_t frame, size_t from) {
        return std::vector(&memory[frame][from], &memory[frame][from] + 128 * 48);
    };
    EXPECT_NE(half(0, 0), half(1, 0)) << "the upper half is new";
    EXPECT_EQ(half(0, 128 * 48), half(1, 128 * 48)) << "the lower one old";
}

TEST_F(Faults, FramesArriveInPart) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"incomplete_every": 2, "incomplete_percent": 25})", 2));
    const BUFFER_HANDLE whole = NextBuffer(event).BufferHandle, part = NextBuffer(event).BufferHandle;
    EXPECT_FALSE(BufferFlag(whole, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_TRUE(BufferFlag(part, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_FALSE(BufferFlag(part, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_EQ(128u * 96 / 4, BufferSize(part, BUFFER_INFO_SIZE_FILLED));
    EXPECT_EQ(24u, BufferSize(part, BUFFER_INFO_DELIVERED_IMAGEHEIGHT));
}

TEST_F(Faults, SizesAreMisstated) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"size": "zero"})", 3));
    BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    for (const BUFFER_INFO_CMD command : {BUFFER_INFO_SIZE, BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT})
        EXPECT_EQ(0u, BufferSize(buffer, command)) << command;
    EXPECT_EQ(0u, StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE, INFO_DATATYPE_SIZET));
    Write32(camera_register::stop, 1);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
    Write32(wrong_size, 2);
    Write32(wrong_size_of, 3);
    QueueAll();
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    buffer = NextBuffer(event).BufferHandle;
    EXPECT_EQ(16u * 128 * 96, BufferSize(buffer, BUFFER_INFO_SIZE_FILLED));
    EXPECT_EQ(128u, BufferSize(buffer, BUFFER_INFO_WIDTH)) << "only the one that was named";
}

TEST_F(Faults, TheStreamTakesSoManyBuffers) {
    ASSERT_NO_FATAL_FAILURE(OpenWith(R"({"announce_limit": 2})"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(2));
    std::byte more[64];
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(GC_ERR_RESOURCE_EXHAUSTED, gentl.DSAnnounceBuffer(stream, more, sizeof more, nullptr, &buffer));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSAnnounceBuffer(stream, more, sizeof more, nullptr, &buffer));
}

TEST_F(Faults, FramesAreShownInTurnOnRequest) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"frame_cache": 2})", 4));
    EXPECT_EQ((Ids{1, 2, 3, 4}), FrameIds(4));
    EXPECT_EQ(memory[0], memory[2]);
    EXPECT_EQ(memory[1], memory[3]);
    EXPECT_NE(memory[0], memory[1]);
}

TEST_F(Faults, TheCameraVanishesAtAFrameAndComesBack) {
    ASSERT_NO_FATAL_FAILURE(Acquire(R"({"unplug_at_frame": 2, "return_after_ms": 1})", 4));
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, EVENT_ERROR, &error));
    EXPECT_EQ((Ids{1, 2}), FrameIds(2));
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    EXPECT_EQ(GC_ERR_IO, gentl.EventGetData(event, &data, &size, GENTL_INFINITE)) << "the third frame never comes";
    uint32_t value = 0;
    size = sizeof value;
    EXPECT_EQ(GC_ERR_IO, gentl.GCReadPort(camera, camera_register::width, &value, &size)) << "the handle stays dead";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevClose(device));
    EXPECT_TRUE(eventually(
        [&] { return gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_EXCLUSIVE, &device) == GC_ERR_SUCCESS; }));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DevGetPort(device, &camera));
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    buffers.clear();
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(3));
    event = RegisterNewBuffer();
    QueueAll();
    ASSERT_NO_FATAL_FAILURE(StartAcquisition(GENTL_INFINITE, false));
    EXPECT_EQ((Ids{1, 2, 3}), FrameIds(3)) << "once is enough";
}

TEST_F(Faults, APulledCameraStaysAwayUntilItIsPluggedIn) {
    ASSERT_NO_FATAL_FAILURE(OpenWith("{}"));
    const auto count = [&] {
        uint32_t devices = 99;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 0));
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetNumDevices(interface, &devices));
        return devices;
    };
    EXPECT_EQ(2u, count());
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, EVENT_ERROR, &error));
    Write32(unplug, 1);
    char data[512];
    size_t size = sizeof data;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(error, data, &size, 20000)) << "without anybody's looking";
    EXPECT_EQ(1u, count());
    const std::string url = ask_text([&](auto... out) { return gentl.GCGetPortURLInfo(interface, 0, URL_INFO_URL, out...); });
    uint64_t address = 0;  // of the last register but the last feature's: the command stands before EventSelector
    const std::string xml = [&] {
        const size_t first = url.find(';') + 1, second = url.find(';', first) + 1;
        std::string text(std::stoull(url.substr(second), nullptr, 16), '\0');
        size = text.size();
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(interface, std::stoull(url.substr(first), nullptr, 16), text.data(), &size));
        return text;
    }();
    const size_t node = xml.find("<IntReg Name=\"SimulationPlugInValue\"");
    ASSERT_NE(std::string::npos, node);
    address = std::stoull(xml.substr(xml.find("<Address>", node) + 9), nullptr, 16);
    uint64_t one = 1;
    size = sizeof one;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(interface, address, &one, &size));
    EXPECT_EQ(2u, count());
}

TEST_F(Faults, EventsFloodAQueueThatHasAnEnd) {
    ASSERT_NO_FATAL_FAILURE(OpenWith("{}"));
    EVENT_HANDLE told = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, EVENT_REMOTE_DEVICE, &told));
    const auto waiting = [&] {
        return ask_value<size_t>([&](auto... out) { return gentl.EventGetInfo(told, EVENT_NUM_IN_QUEUE, out...); },
                                 INFO_DATATYPE_SIZET);
    };
    Write32(0x20A00 + 4 * 6, 1);
    Write32(event_copies, 9);
    Write32(0x20A20, 1);
    EXPECT_EQ(10u, waiting());
    Write32(event_copies, 10000);
    Write32(0x20A20, 1);
    EXPECT_EQ(4096u, waiting());
}

TEST_F(Faults, BeginAnewWithEachOpening) {
    ASSERT_NO_FATAL_FAILURE(OpenWith(R"({"repeat_every": 3})"));
    Write32(tear_every, 5);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevClose(device));
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    EXPECT_EQ(3u, Read32(repeat_every));
    EXPECT_EQ(0u, Read32(tear_every));
}

}  // namespace
}  // namespace kiv::test
