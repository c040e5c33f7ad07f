// The producer of GigE Vision cameras: its identity, its network, and the entry points beyond the standard.

#include <kiv/platform/environment.h>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Gev : public ProducerTest {
protected:
    Gev() : ProducerTest(KIV_SIM_GEV_PRODUCER, "KIV_SIM_GEV_CONFIG") {
        Configure(R"({"interfaces": [{"id": "GEV0", "ip": "192.168.57.1", "cameras": [
            {"serial": "G1", "id": "G1", "width": 128, "height": 96, "frame_rate": 500},
            {"serial": "G2", "width": 128, "height": 96, "ip": "169.254.3.4", "mac": "02:00:00:00:00:2A"}]}]})");
    }
    DEVICE_ACCESS_STATUS Status(const char* id) {
        return ask_value<int32_t>(
            [&](auto... out) { return gentl.IFGetDeviceInfo(interface, id, DEVICE_INFO_ACCESS_STATUS, out...); },
            INFO_DATATYPE_INT32);
    }
    template <typename T>
    GC_ERROR Custom(int32_t feature, T& value) {
        size_t size = sizeof value;
        return gentl.DevQueryCustomFeature(device, feature, &value, &size);
    }
    uint32_t Parameter(int32_t number) {
        uint32_t value = 0;
        size_t size = sizeof value;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetStreamParam(stream, number, &value, &size));
        return value;
    }
    GC_ERROR SetParameter(int32_t number, uint32_t value, size_t size = 4) {
        return gentl.DSSetStreamParam(stream, number, &value, &size);
    }
};

TEST_F(Gev, IsAProducerOfItsOwn) {
    platform::unset_environment("KIV_SIM_GEV_CONFIG");
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    const auto info = [&](TL_INFO_CMD command) {
        return ask_text([&](auto... out) { return gentl.TLGetInfo(system, command, out...); });
    };
    EXPECT_EQ("GigEVision", info(TL_INFO_TLTYPE));
    EXPECT_EQ("KIV_SIM_GEV", info(TL_INFO_ID));
    EXPECT_EQ("KivSimGev.cti", info(TL_INFO_NAME));
    uint32_t devices = 99;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 0));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetNumDevices(interface, &devices));
    EXPECT_EQ(0u, devices) << "without a configuration no camera gets between those of the plain producer";

    const EntryPoints plain(KIV_SIM_PRODUCER);
    EXPECT_FALSE(plain.TLOpenDeviceMc);
    EXPECT_FALSE(gentl.ProbeCameraLinkDevices) << "the one extension that is none of GigE Vision";
}

TEST_F(Gev, BuiltInCamerasAreThereOnRequest) {
    platform::set_environment("KIV_SIM_GEV_CONFIG", "built-in");
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 0));
    EXPECT_EQ("02:4B:53:00:00:02_6E0002", ask_id([&](auto... out) { return gentl.IFGetDeviceID(interface, 1, out...); }));
}

TEST_F(Gev, ACameraWithAForeignAddressIsReachedOnceItWasForced) {
    const char* const id = "02:00:00:00:00:2A_G2";
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    for (const uint32_t force : {0u, 1u}) {
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLSetForceIp(interface, force, 0));
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 0));
        EXPECT_EQ(force ? DEVICE_ACCESS_STATUS_READWRITE : DEVICE_ACCESS_STATUS_NOACCESS, Status(id));
        EXPECT_EQ(force ? GC_ERR_SUCCESS : GC_ERR_ACCESS_DENIED,
                  gentl.TLOpenDeviceMc(interface, id, DEVICE_ACCESS_CONTROL, &device, 0));
    }
    uint32_t address = 0;
    EXPECT_EQ(GC_ERR_SUCCESS, Custom(1, address));
    EXPECT_EQ(0xC0A839C8u, address) << "192.168.57.200";
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.TLSetForceIp(interface, 1, 1));
}

TEST_F(Gev, OpensWithAMulticastSettingAndTellsIt) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    EXPECT_EQ(GC_ERR_INVALID_ID, gentl.TLOpenDeviceMc(interface, "G9", DEVICE_ACCESS_CONTROL, &device, 2));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLOpenDeviceMc(interface, "G1", DEVICE_ACCESS_CONTROL, &device, 2));
    uint32_t multicast = 0;
    uint64_t mac = 0;
    EXPECT_EQ(GC_ERR_SUCCESS, Custom(5, multicast));
    EXPECT_EQ(2u, multicast);
    EXPECT_EQ(GC_ERR_SUCCESS, Custom(4, mac));
    EXPECT_EQ(0x024B53000001u, mac);
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, Custom(4, multicast));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, Custom(99, multicast));
    EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.DevCreateDataStreamMc(device, 1, &stream, 3));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DevCreateDataStreamMc(device, 0, &stream, 3));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DevCreateDataStreamMc(device, 0, &stream, 3));
    EXPECT_EQ(3u, Parameter(5));
}

TEST_F(Gev, StreamParametersAreCheckedAndKept) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    ASSERT_NO_FATAL_FAILURE(Open("G1"));
    EXPECT_EQ(1500u, Parameter(0));
    EXPECT_EQ(GC_ERR_SUCCESS, SetParameter(0, 9000));
    EXPECT_EQ(9000u, Parameter(0));
    EXPECT_EQ(GC_ERR_INVALID_VALUE, SetParameter(0, 9001));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, SetParameter(0, 8000, 2));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, SetParameter(6, 1));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, SetParameter(99, 1));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, SetParameter(-1, 1));
    size_t size = 0;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetStreamParam(stream, 6, nullptr, &size));
    EXPECT_EQ(8u, size);
}

TEST_F(Gev, AnActionCommandTriggersWhoeverListens) {
    constexpr uint64_t trigger_source = 0x20248, device_key = 0x20300, group_key = 0x20308, group_mask = 0x20310;
    ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
    ASSERT_NO_FATAL_FAILURE(Open("G1"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(2));
    const EVENT_HANDLE event = RegisterNewBuffer();
    QueueAll();
    Write32(trigger_source, 16);
    Write32(device_key, 7);
    Write32(group_key, 8);
    Write32(group_mask, 1);
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.DSStartAcquisition(stream, 2, 1));
    Write32(camera_register::trigger_mode, 1);
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, 1, GENTL_INFINITE)) << "start flag 1 is one of GigE Vision";
    Write32(camera_register::start, 1);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLSendActionCommand(system, 7, 9, 1, nullptr, nullptr)) << "another group";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLSendActionCommand(system, 7, 8, 3, this, this));
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    EXPECT_EQ(1u, BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64));
    EXPECT_EQ(0u, BufferInfo<uint32_t>(buffer, 1001, INFO_DATATYPE_UINT32)) << "packets that are missing";
    uint64_t packets = 0;
    size_t size = sizeof packets;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetStreamParam(stream, 6, &packets, &size));
    EXPECT_EQ(9u, packets) << "12288 bytes in packets of 1464";
}

}  // namespace
}  // namespace kiv::test
