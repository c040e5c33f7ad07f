#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Port : public ProducerTest {
protected:
    std::string Info(PORT_HANDLE port, PORT_INFO_CMD command) {
        return ask_text([&](auto... out) { return gentl.GCGetPortInfo(port, command, out...); });
    }
};

TEST_F(Port, EveryModuleSaysWhoItIs) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const std::string stream_id = ask_id([&](auto... out) { return gentl.DevGetDataStreamID(device, 0, out...); });
    const struct {
        PORT_HANDLE handle;
        std::string id, module, name;
    } rows[] = {{system, "KIV_SIM", "TLSystem", "TLPort"},
                {interface, "SIM0", "TLInterface", "InterfacePort"},
                {device, "SIM0_FAST", "TLDevice", "DevicePort"},
                {camera, "SIM0_FAST", "Device", "Device"},
                {stream, stream_id, "TLDataStream", "StreamPort"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.id, Info(row.handle, PORT_INFO_ID));
        EXPECT_EQ(row.module, Info(row.handle, PORT_INFO_MODULE));
        EXPECT_EQ(row.name, Info(row.handle, PORT_INFO_PORTNAME));
        EXPECT_EQ("Custom", Info(row.handle, PORT_INFO_TLTYPE));
        for (PORT_INFO_CMD command = PORT_INFO_LITTLE_ENDIAN; command <= PORT_INFO_ACCESS_NI; ++command) {
            const bool expected =
                command == PORT_INFO_LITTLE_ENDIAN || command == PORT_INFO_ACCESS_READ || command == PORT_INFO_ACCESS_WRITE;
            const auto call = [&](auto... out) { return gentl.GCGetPortInfo(row.handle, command, out...); };
            EXPECT_EQ(expected, ask_value<bool8_t>(call, INFO_DATATYPE_BOOL8)) << row.module << command;
        }
    }
}

TEST_F(Port, TheUrlIsTheSameInAllItsForms) {
    ASSERT_NO_FATAL_FAILURE(Open());
    for (PORT_HANDLE port : {system, interface, device, camera, stream}) {
        uint32_t count = 0;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetNumPortURLs(port, &count));
        EXPECT_EQ(1u, count);
        const auto info = [&](URL_INFO_CMD command) {
            return [this, port, command](auto... out) { return gentl.GCGetPortURLInfo(port, 0, command, out...); };
        };
        const std::string url = ask_text(info(URL_INFO_URL));
        size_t size = 0;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetPortURL(port, nullptr, &size));
        std::string list(size, 'x');
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCGetPortURL(port, list.data(), &size));
        EXPECT_EQ(url + std::string(2, '\0'), list);

        char composed[512];
        std::snprintf(
            composed, sizeof composed, ":%s;%llx;%llx", ask_text(info(URL_INFO_FILENAME)).c_str(),
            static_cast<unsigned long long>(ask_value<uint64_t>(info(URL_INFO_FILE_REGISTER_ADDRESS), INFO_DATATYPE_UINT64)),
            static_cast<unsigned long long>(ask_value<uint64_t>(info(URL_INFO_FILE_SIZE), INFO_DATATYPE_UINT64)));
        std::string address = url.substr(url.find(':'));
        EXPECT_STRCASEEQ(composed, address.c_str());
        EXPECT_EQ(URL_SCHEME_LOCAL, ask_value<int32_t>(info(URL_INFO_SCHEME), INFO_DATATYPE_INT32));
        EXPECT_EQ(1, ask_value<int32_t>(info(URL_INFO_SCHEMA_VER_MAJOR), INFO_DATATYPE_INT32));
        EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.GCGetPortURLInfo(port, 1, URL_INFO_URL, nullptr, nullptr, &size));
    }
}

TEST_F(Port, TransfersAreWholeOrRefused) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    std::array<char, 64> name{};
    size_t size = name.size();
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::vendor, name.data(), &size));
    EXPECT_EQ(name.size(), size);
    size = 2;
    char middle[2];
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::vendor + 1, middle, &size)) << "byte addressed";
    EXPECT_EQ(std::string_view(name.data() + 1, 2), std::string_view(middle, 2));
    for (PORT_HANDLE port : {camera, device, interface, system}) {
        size = 4;
        EXPECT_EQ(GC_ERR_INVALID_ADDRESS, gentl.GCReadPort(port, 0xFFFFFFFFFFFFFFFC, name.data(), &size));
        EXPECT_EQ(0u, size) << "nothing was transferred";
        size = 0;
        EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.GCReadPort(port, 0, name.data(), &size));
    }
    size = size_t{1} << 62;
    EXPECT_EQ(GC_ERR_INVALID_ADDRESS, gentl.GCReadPort(system, 0x1000, name.data(), &size));
    size = 4;
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, gentl.GCWritePort(system, 0x1000, name.data(), &size)) << "TLID";
    size = 4;
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, gentl.GCWritePort(camera, camera_register::vendor, name.data(), &size));
}

TEST_F(Port, StackedTransfersCountWhatWasDone) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    uint32_t width = 0, payload = 0, nothing = 0;
    PORT_REGISTER_STACK_ENTRY entries[] = {{camera_register::width, &width, 4},
                                           {camera_register::payload_size, &payload, 4},
                                           {0xFFFFFFF0, &nothing, 4},
                                           {camera_register::width, &nothing, 4}};
    size_t count = 2;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPortStacked(camera, entries, &count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(128u, width);
    EXPECT_EQ(128u * 96, payload);
    count = 4;
    EXPECT_EQ(GC_ERR_INVALID_ADDRESS, gentl.GCReadPortStacked(camera, entries, &count));
    EXPECT_EQ(2u, count);
    width = 64;
    count = 2;
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, gentl.GCWritePortStacked(camera, entries, &count)) << "PayloadSize is read only";
    EXPECT_EQ(1u, count);
    EXPECT_EQ(64u, Read32(camera_register::width));
}

TEST_F(Port, BuffersHaveNone) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    uint32_t value = 0;
    size_t size = sizeof value;
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCReadPort(buffers[0], 0, &value, &size));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCGetNumPortURLs(buffers[0], &value));
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCRegisterEvent(buffers[0], EVENT_ERROR, &event));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.GCRegisterEvent(camera, EVENT_ERROR, &event));
}

}  // namespace
}  // namespace kiv::test
