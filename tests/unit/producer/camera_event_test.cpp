// What the camera tells: when, of what, and in which form.

#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

constexpr EVENT_TYPE message_kind = 1000, record_kind = 1001, number_kind = 1004;
constexpr uint64_t notification = 0x20A00, test_event = 0x20A20, extended_ids = 0x20A24, belt_speed = 0x20900,
                   event_form = 0x20CA8, events_per_message = 0x20CAC, changed_feature = 0x20CB0;
enum Kind : uint32_t { FrameTrigger, FrameTriggerMissed, ExposureStart, ExposureEnd, Line0Rising, Line0Falling, TestKind };

class CameraEvents : public ProducerTest {
protected:
    CameraEvents() : ProducerTest(KIV_SIM_GEV_PRODUCER, "KIV_SIM_GEV_CONFIG") {
        Configure(R"({"interfaces": [{"cameras": [{"serial": "G1", "id": "G1", "width": 128, "height": 96, "frame_rate": 500,
            "unplug_file": "unplug"}]}]})");
    }
    void OpenGev() {
        ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
        ASSERT_NO_FATAL_FAILURE(OpenDevice("G1"));
    }
    EVENT_HANDLE Register(EVENT_TYPE kind) {
        EVENT_HANDLE event = nullptr;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, kind, &event)) << kind;
        return event;
    }
    void Notify(Kind kind, uint32_t on = 1) { Write32(notification + 4 * kind, on); }
    std::string Get(EVENT_HANDLE event, uint64_t timeout = 20000) {
        std::string data(1024, '\0');
        size_t size = data.size();
        const GC_ERROR status = gentl.EventGetData(event, data.data(), &size, timeout);
        if (status != GC_ERR_SUCCESS) return "status " + std::to_string(status);
        data.resize(size);
        return data;
    }
    static uint64_t Number(const std::string& bytes, size_t at, size_t count) {
        uint64_t value = 0;
        for (size_t i = 0; i < count; ++i) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
        return value;
    }
    static uint64_t Id(const std::string& message) { return Number(message, 10, 2); }
};

TEST_F(CameraEvents, AMessageIsOneOfTheWireInBothForms) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE event = Register(message_kind), standard = Register(EVENT_REMOTE_DEVICE);
    Notify(TestKind);
    Write32(test_event, 1);
    const std::string plain = Get(event);
    ASSERT_EQ(8u + 16 + 8, plain.size());
    EXPECT_EQ(0x420000C2u, Number(plain, 0, 4));
    EXPECT_EQ(24u, Number(plain, 4, 2)) << "bytes that follow the header";
    EXPECT_NE(0u, Number(plain, 6, 2)) << "request ids are never 0";
    EXPECT_EQ(0x9007u, Id(plain));
    EXPECT_NE(0u, Number(plain, 16, 8)) << "time stamp";
    EXPECT_EQ(plain, Get(standard));
    const auto info = [&](EVENT_DATA_INFO_CMD command, INFO_DATATYPE type) {
        return ask([&](auto... out) { return gentl.EventGetDataInfo(standard, plain.data(), plain.size(), command, out...); },
                   type);
    };
    EXPECT_STREQ("9007", info(EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str());
    EXPECT_EQ(plain.substr(8), info(EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER));
    INFO_DATATYPE type = 0;
    size_t size = 0;
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.EventGetDataInfo(standard, plain.data(), 9, EVENT_DATA_ID, &type, nullptr, &size));

    Write32(extended_ids, 1);
    Write32(test_event, 1);
    const std::string extended = Get(event);
    ASSERT_EQ(8u + 24 + 8, extended.size());
    EXPECT_EQ(0x421000C2u, Number(extended, 0, 4));
    EXPECT_EQ(32u, Number(extended, 8, 2)) << "the size of the item";
    EXPECT_EQ(0x9007u, Id(extended));
    EXPECT_GT(Number(extended, 24, 8), Number(plain, 16, 8));
}

TEST_F(CameraEvents, TheOtherKindsCarryTheSame) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE message = Register(message_kind), record = Register(record_kind), number = Register(number_kind);
    Notify(TestKind);
    Write32(test_event, 1);
    const std::string wire = Get(message), block = Get(record), id = Get(number);
    ASSERT_EQ(556u, block.size());
    EXPECT_EQ(wire, block.substr(16, wire.size()));
    EXPECT_EQ(std::string("\x07\x90\0\0", 4), id);
    EXPECT_EQ(556u, ask_value<size_t>([&](auto... out) { return gentl.EventGetInfo(record, EVENT_SIZE_MAX, out...); },
                                      INFO_DATATYPE_SIZET));
}

TEST_F(CameraEvents, SeveralShareAMessageOnRequest) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE message = Register(message_kind), number = Register(number_kind);
    Notify(TestKind);
    Write32(events_per_message, 3);
    const auto make = [&](int count) {
        for (int i = 0; i < count; ++i) Write32(test_event, 1);
        return Get(message);
    };
    EXPECT_EQ(8u + 24, make(1).size()) << "data of 16-bit packets have no length: nothing can follow them";
    struct Case {
        uint32_t form, extended;
        uint64_t head;
        size_t item;
    };
    for (const Case& one : {Case{1, 0, 0x420000C0, 16}, Case{1, 1, 0x421000C0, 24}, Case{0, 1, 0x421000C2, 32}}) {
        Write32(event_form, one.form);
        Write32(extended_ids, one.extended);
        const std::string packet = make(3);
        ASSERT_EQ(8 + 3 * one.item, packet.size());
        EXPECT_EQ(one.head, Number(packet, 0, 4));
        EXPECT_EQ(3 * one.item, Number(packet, 4, 2));
        for (size_t item = 8; item < packet.size(); item += one.item) {
            EXPECT_EQ(one.extended ? one.item : 0, Number(packet, item, 2));
            EXPECT_EQ(0x9007u, Number(packet, item + 2, 2));
        }
    }
    EXPECT_EQ(10u, ask_value<size_t>([&](auto... out) { return gentl.EventGetInfo(number, EVENT_NUM_IN_QUEUE, out...); },
                                     INFO_DATATYPE_SIZET));
}

TEST_F(CameraEvents, TheDeviceTellsOfFeatures) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE invalidated = Register(EVENT_FEATURE_INVALIDATE), changed = Register(EVENT_FEATURE_CHANGE);
    for (std::string text : {"Gain", "Width=64"}) {
        size_t size = text.size() + 1;
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(camera, changed_feature, text.c_str(), &size));
    }
    const auto info = [&](EVENT_HANDLE event, const std::string& data, EVENT_DATA_INFO_CMD command) {
        return ask([&](auto... out) { return gentl.EventGetDataInfo(event, data.data(), data.size(), command, out...); },
                   INFO_DATATYPE_STRING);
    };
    EXPECT_STREQ("Gain", info(invalidated, Get(invalidated), EVENT_DATA_ID).c_str());
    const std::string change = Get(changed);
    EXPECT_STREQ("Width", info(changed, change, EVENT_DATA_ID).c_str());
    EXPECT_STREQ("64", info(changed, change, EVENT_DATA_VALUE).c_str());
    EXPECT_EQ("status -1011", Get(invalidated, 0));
}

TEST_F(CameraEvents, OnlyWhatIsSwitchedOnIsTold) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE event = Register(message_kind);
    Write32(test_event, 1);
    EXPECT_EQ("status -1011", Get(event, 0));
    Notify(TestKind, 2);
    Write32(test_event, 1);
    Write32(test_event, 1);
    EXPECT_EQ(0x9007u, Id(Get(event)));
    EXPECT_EQ("status -1011", Get(event, 0)) << "Once is once";
    EXPECT_EQ(0u, Read32(notification + 4 * TestKind));
}

TEST_F(CameraEvents, AFrameIsToldFromItsTriggerToTheEndOfItsExposure) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    const EVENT_HANDLE buffer = RegisterNewBuffer(), event = Register(message_kind);
    for (const Kind kind : {FrameTrigger, FrameTriggerMissed, ExposureStart, ExposureEnd}) Notify(kind);
    Trigger();
    EXPECT_EQ(0x9002u, Id(Get(event))) << "nothing is acquired yet";
    QueueAll();
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    std::string told[3];
    for (std::string& message : told) {
        message = Get(event);
        EXPECT_EQ(1u, Number(message, 14, 2)) << "block id";
        EXPECT_EQ(1u, Number(message, 24, 8)) << "frame id";
    }
    EXPECT_EQ(0x9001u, Id(told[0]));
    EXPECT_EQ(0x9003u, Id(told[1]));
    EXPECT_EQ(0x9004u, Id(told[2]));
    EXPECT_EQ(100'000u, Number(told[2], 16, 8) - Number(told[1], 16, 8)) << "the exposure of 100 us";
    const BUFFER_HANDLE filled = NextBuffer(buffer).BufferHandle;
    EXPECT_EQ(Number(told[1], 16, 8), BufferInfo<uint64_t>(filled, BUFFER_INFO_TIMESTAMP, INFO_DATATYPE_UINT64));
}

TEST_F(CameraEvents, HappenWithoutAStream) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE event = Register(message_kind);
    Notify(ExposureEnd);
    Write32(camera_register::start, 1);
    const std::string first = Get(event), second = Get(event);
    EXPECT_EQ(Number(first, 24, 8) + 1, Number(second, 24, 8)) << "frames pass whether anybody fetches them or not";
    Notify(ExposureEnd, 0);
    Write32(camera_register::stop, 1);
    Write32(belt_speed, 2000);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventFlush(event));
    Notify(Line0Rising);
    Notify(Line0Falling);
    const std::string edge = Get(event), next = Get(event);
    EXPECT_EQ(0x9006u + 0x9005u, Id(edge) + Id(next)) << "the light barrier rises and falls in turn";
    EXPECT_EQ(24'000'000u, Number(next, 16, 8) - Number(edge, 16, 8)) << "half of 96 mm at 2 m/s";
}

TEST_F(CameraEvents, WaitsEndWhenTheCameraIsUnplugged) {
    ASSERT_NO_FATAL_FAILURE(OpenGev());
    const EVENT_HANDLE events[] = {Register(message_kind), Register(record_kind), Register(number_kind), Register(EVENT_ERROR)};
    folder.Write("unplug", "");
    EXPECT_NE("", Get(events[3], GENTL_INFINITE));
    for (const EVENT_HANDLE event : events) EXPECT_EQ("status -1010", Get(event, GENTL_INFINITE));
}

TEST_F(CameraEvents, ClosingTheDeviceOrTheLibraryEndsWaits) {
    for (const bool whole : {false, true}) {
        if (!device) {
            ASSERT_NO_FATAL_FAILURE(whole ? OpenDevice("G1") : OpenGev());
        }
        const EVENT_HANDLE event = Register(message_kind);
        std::string got;
        std::thread waiter([&] { got = Get(event, GENTL_INFINITE); });
        EXPECT_EQ(GC_ERR_SUCCESS, whole ? gentl.GCCloseLib() : gentl.DevClose(device));
        waiter.join();
        EXPECT_THAT(got, testing::AnyOf("status -1012", "status -1006", "status -1002")) << "aborted, or came too late";
        device = nullptr;
    }
}

}  // namespace
}  // namespace kiv::test
