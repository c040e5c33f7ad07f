#include "../platform/child_process.h"
#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Sharing : public ProducerTest {
protected:
    int32_t Status() {
        return ask_value<int32_t>(
            [&](auto... out) { return gentl.IFGetDeviceInfo(interface, "SIM0_FAST", DEVICE_INFO_ACCESS_STATUS, out...); },
            INFO_DATATYPE_INT32);
    }
    GC_ERROR TryOpen(DEVICE_ACCESS_FLAGS access) {
        const GC_ERROR status = gentl.IFOpenDevice(interface, "SIM0_FAST", access, &device);
        return status == GC_ERR_SUCCESS ? gentl.DevClose(device) : status;
    }
    std::vector<std::string> Arguments(DEVICE_ACCESS_FLAGS access) const {
        return {KIV_SIM_PRODUCER, "SIM0", "SIM0_FAST", std::to_string(access)};
    }
};

TEST_F(Sharing, AnExclusiveOwnerKeepsEverybodyOut) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ChildProcess owner(Arguments(DEVICE_ACCESS_EXCLUSIVE));
    ASSERT_EQ("0", owner.ReadLine());
    EXPECT_EQ(DEVICE_ACCESS_STATUS_BUSY, Status());
    for (DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_READONLY, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE})
        EXPECT_EQ(GC_ERR_ACCESS_DENIED, TryOpen(access));
    EXPECT_EQ(0, owner.Finish());
    EXPECT_EQ(DEVICE_ACCESS_STATUS_READWRITE, Status());
    EXPECT_EQ(GC_ERR_SUCCESS, TryOpen(DEVICE_ACCESS_EXCLUSIVE));
}

TEST_F(Sharing, AControllerLetsOthersRead) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ChildProcess owner(Arguments(DEVICE_ACCESS_CONTROL));
    ASSERT_EQ("0", owner.ReadLine());
    EXPECT_EQ(DEVICE_ACCESS_STATUS_READONLY, Status());
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, TryOpen(DEVICE_ACCESS_CONTROL));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, TryOpen(DEVICE_ACCESS_EXCLUSIVE));

    ASSERT_NO_FATAL_FAILURE(OpenDevice("SIM0_FAST", DEVICE_ACCESS_READONLY));
    EXPECT_EQ(DEVICE_ACCESS_STATUS_OPEN_READONLY, Status());
    EXPECT_EQ(128u, Read32(camera_register::width));
    uint32_t value = 64;
    size_t size = sizeof value;
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, gentl.GCWritePort(camera, camera_register::width, &value, &size));
    const std::string id = ask_id([&](auto... out) { return gentl.DevGetDataStreamID(device, 0, out...); });
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, gentl.DevOpenDataStream(device, id.c_str(), &stream));
    EXPECT_FALSE(ask_value<bool8_t>([&](auto... out) { return gentl.GCGetPortInfo(camera, PORT_INFO_ACCESS_WRITE, out...); },
                                    INFO_DATATYPE_BOOL8));
}

TEST_F(Sharing, ADeadOwnerLetsGo) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ChildProcess owner(Arguments(DEVICE_ACCESS_EXCLUSIVE));
    ASSERT_EQ("0", owner.ReadLine());
    owner.Kill();
    EXPECT_EQ(GC_ERR_SUCCESS, TryOpen(DEVICE_ACCESS_EXCLUSIVE));
}

TEST_F(Sharing, AReaderKeepsAnExclusiveOwnerOutOnly) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice("SIM0_FAST", DEVICE_ACCESS_READONLY));
    ChildProcess exclusive(Arguments(DEVICE_ACCESS_EXCLUSIVE));
    EXPECT_EQ(std::to_string(GC_ERR_ACCESS_DENIED), exclusive.ReadLine());
    ChildProcess controller(Arguments(DEVICE_ACCESS_CONTROL));  // not while the other one is still trying
    EXPECT_EQ("0", controller.ReadLine());
}

}  // namespace
}  // namespace kiv::test
