#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Unplugged : public ProducerTest {
protected:
    void Unplug() { folder.Write("unplug_fast", ""); }
    void PlugIn() { std::filesystem::remove(folder / "unplug_fast"); }
};

TEST_F(Unplugged, BetweenListAndOpen) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    Unplug();
    EXPECT_EQ(DEVICE_ACCESS_STATUS_NOACCESS,
              ask_value<int32_t>(
                  [&](auto... out) { return gentl.IFGetDeviceInfo(interface, "SIM0_FAST", DEVICE_INFO_ACCESS_STATUS, out...); },
                  INFO_DATATYPE_INT32));
    EXPECT_EQ(GC_ERR_IO, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_CONTROL, &device)) << "it is in the list";
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    EXPECT_EQ(GC_ERR_INVALID_ID, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_CONTROL, &device)) << "now it is not";
    PlugIn();
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFOpenDevice(interface, "SIM0_FAST", DEVICE_ACCESS_CONTROL, &device));
}

TEST_F(Unplugged, WhileItIsOpen) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    const EVENT_HANDLE event = RegisterNewBuffer();
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, EVENT_ERROR, &error));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    GC_ERROR waited = GC_ERR_SUCCESS;
    std::thread waiter([&] {
        EVENT_NEW_BUFFER_DATA data;
        size_t size = sizeof data;
        waited = gentl.EventGetData(event, &data, &size, GENTL_INFINITE);
    });
    Unplug();
    waiter.join();
    EXPECT_EQ(GC_ERR_IO, waited) << "a wait without a limit ends";

    uint32_t value = 0;
    size_t size = sizeof value;
    EXPECT_EQ(GC_ERR_IO, gentl.GCReadPort(camera, camera_register::width, &value, &size));
    size = sizeof value;
    EXPECT_EQ(GC_ERR_IO, gentl.GCWritePort(camera, camera_register::stop, &value, &size));
    char data[1024];
    size = sizeof data;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(error, data, &size, 20000));
    EXPECT_EQ(GC_ERR_IO,
              ask_value<int32_t>([&](auto... out) { return gentl.EventGetDataInfo(error, data, size, EVENT_DATA_ID, out...); },
                                 INFO_DATATYPE_INT32));
    PlugIn();
    size = sizeof value;
    EXPECT_EQ(GC_ERR_IO, gentl.GCReadPort(camera, camera_register::width, &value, &size)) << "gone for this handle";

    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DevClose(device));
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    EXPECT_EQ(128u, Read32(camera_register::width)) << "it came back";
}

}  // namespace
}  // namespace kiv::test
