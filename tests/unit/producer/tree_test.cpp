#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Tree : public ProducerTest {
protected:
    uint32_t Interfaces() {
        uint32_t count = 99;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLGetNumInterfaces(system, &count));
        return count;
    }
    uint32_t Devices() {
        uint32_t count = 99;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetNumDevices(interface, &count));
        return count;
    }
};

TEST_F(Tree, ListsChangeOnlyWhenTheyAreUpdated) {
    ASSERT_NO_FATAL_FAILURE(OpenSystem());
    EXPECT_EQ(0u, Interfaces());
    bool8_t changed = false;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, &changed, 100));
    EXPECT_TRUE(changed);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, &changed, GENTL_INFINITE));
    EXPECT_FALSE(changed);
    EXPECT_EQ(2u, Interfaces());
    EXPECT_EQ("SIM1", ask_id([&](auto... out) { return gentl.TLGetInterfaceID(system, 1, out...); }));
    size_t size = 0;
    EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.TLGetInterfaceID(system, 2, nullptr, &size));

    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    EXPECT_EQ(0u, Devices());
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, &changed, 100));
    EXPECT_TRUE(changed);
    EXPECT_EQ(2u, Devices());
    EXPECT_EQ("SIM0_FAST", ask_id([&](auto... out) { return gentl.IFGetDeviceID(interface, 0, out...); }));
    EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.IFGetDeviceID(interface, 2, nullptr, &size));
    folder.Write("unplug_fast", "");
    EXPECT_EQ(2u, Devices()) << "the list changes at the next update, not before";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    EXPECT_EQ(1u, Devices());
}

TEST_F(Tree, KnownIdsOpenWithoutAnUpdate) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    EXPECT_EQ(0u, Interfaces()) << "opening publishes nothing";
    EXPECT_EQ(0u, Devices());
}

TEST_F(Tree, EachModuleOpensOnce) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const std::string stream_id = ask_id([&](auto... out) { return gentl.DevGetDataStreamID(device, 0, out...); });
    void* other = nullptr;
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.TLOpenInterface(system, "SIM0", &other));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_READONLY, &other));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DevOpenDataStream(device, stream_id.c_str(), &other));
    EXPECT_EQ(nullptr, other);

    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSClose(stream));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevOpenDataStream(device, stream_id.c_str(), &other));
    EXPECT_NE(stream, other) << "a number is not used twice";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevClose(device));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_CONTROL, &other));
}

TEST_F(Tree, UnknownIdsAndAccessModesAreRefused) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    EXPECT_EQ(GC_ERR_INVALID_ID, gentl.IFOpenDevice(interface, "SIM1_FAST", DEVICE_ACCESS_CONTROL, &device));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_UNKNOWN, &device));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.IFOpenDevice(interface, "SIM0_FAST", 5, &device));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_NONE, &device));
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    EXPECT_EQ(GC_ERR_INVALID_ID, gentl.DevOpenDataStream(device, "no stream", &stream));
    size_t size = 0;
    EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.DevGetDataStreamID(device, 1, nullptr, &size));
}

TEST_F(Tree, HandlesOfAnotherKindAreRefused) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    const EVENT_HANDLE event = RegisterNewBuffer();
    uint32_t count = 0;
    int on_the_stack = 0;
    for (void* wrong : {static_cast<void*>(nullptr), reinterpret_cast<void*>(UINTPTR_MAX), static_cast<void*>(&on_the_stack),
                        interface, device, camera, stream, buffers[0], event})
        EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.TLGetNumInterfaces(wrong, &count));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DevClose(camera)) << "the remote port is not closed by the consumer";
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DSQueueBuffer(stream, stream));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DSQueueBuffer(device, buffers[0]));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.EventKill(stream));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.GCGetNumPortURLs(event, &count));
}

TEST_F(Tree, ClosingAModuleClosesWhatIsBelow) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(2));
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(QueueAll());
    ASSERT_NO_FATAL_FAILURE(StartAcquisition(GENTL_INFINITE, false));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFClose(interface));
    uint32_t count = 0;
    size_t size = sizeof count;
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.IFClose(interface));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DevClose(device));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DSClose(stream));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.GCReadPort(camera, 0, &count, &size));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.EventFlush(event));
    interface = nullptr;
    ASSERT_NO_FATAL_FAILURE(Open());
}

TEST_F(Tree, ModulesKnowTheirParents) {
    ASSERT_NO_FATAL_FAILURE(Open());
    void* parent = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetParentDev(stream, &parent));
    EXPECT_EQ(device, parent);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevGetParentIF(device, &parent));
    EXPECT_EQ(interface, parent);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetParentTL(interface, &parent));
    EXPECT_EQ(system, parent);
}

TEST_F(Tree, AnOpenAndAClosedDeviceSayTheSameOfThemselves) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    const auto closed = [&](DEVICE_INFO_CMD command) {
        return ask_text([&](auto... out) { return gentl.IFGetDeviceInfo(interface, "SIM0_FAST", command, out...); });
    };
    const auto status = [&] {
        return ask_value<int32_t>(
            [&](auto... out) { return gentl.IFGetDeviceInfo(interface, "SIM0_FAST", DEVICE_INFO_ACCESS_STATUS, out...); },
            INFO_DATATYPE_INT32);
    };
    EXPECT_EQ(DEVICE_ACCESS_STATUS_READWRITE, status());
    EXPECT_EQ("FAST", closed(DEVICE_INFO_SERIAL_NUMBER));
    EXPECT_EQ(closed(DEVICE_INFO_VENDOR) + " KivSim-5MM (SIM0_FAST)", closed(DEVICE_INFO_DISPLAYNAME));
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    EXPECT_EQ(DEVICE_ACCESS_STATUS_OPEN_READWRITE, status());
    char name[64] = "the left one";
    size_t size = sizeof name;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(camera, camera_register::user_name, name, &size));
    for (DEVICE_INFO_CMD command :
         {DEVICE_INFO_ID, DEVICE_INFO_VENDOR, DEVICE_INFO_MODEL, DEVICE_INFO_TLTYPE, DEVICE_INFO_DISPLAYNAME,
          DEVICE_INFO_USER_DEFINED_NAME, DEVICE_INFO_SERIAL_NUMBER, DEVICE_INFO_VERSION})
        EXPECT_EQ(closed(command), ask_text([&](auto... out) { return gentl.DevGetInfo(device, command, out...); })) << command;
    size = sizeof name;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::vendor, name, &size));
    EXPECT_EQ(std::string(name), closed(DEVICE_INFO_VENDOR)) << "the camera and the producer agree";
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DevClose(device));
    EXPECT_EQ("the left one", closed(DEVICE_INFO_USER_DEFINED_NAME)) << "a camera remembers its name";
}

}  // namespace
}  // namespace kiv::test
