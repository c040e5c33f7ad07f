// Registers: the port between node map and producer with its messages, and raw reading and writing.
#include <cstring>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class RegisterPort : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }
    std::string ReadFailure(GenTL::GC_ERROR status, const char* feature = "LowAddress") {
        producer->Refuse("GCReadPort", status);
        std::int64_t value = 0;
        EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(camera, feature, &value)) << status;
        producer->Accept("GCReadPort");
        return last_genicam_error().sDescription;
    }
    std::string WriteFailure(GenTL::GC_ERROR status) {
        producer->Refuse("GCWritePort", status);
        EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(camera, "LowAddress", 1)) << status;
        producer->Accept("GCWritePort");
        return last_genicam_error().sDescription;
    }
};

TEST_F(RegisterPort, EachStatusHasItsWord) {
    struct {
        GenTL::GC_ERROR status;
        const char* words;
    } rows[] = {{-1015, "Invalid Address Error"},
                {-1013, "Invalid Buffer Size Error"},
                {-1011, "Timeout Error"},
                {-1009, "Invalid Parameter Error"},
                {-1008, "No Data Error"},
                {-1007, "Invalid ID Error"},
                {-1006, "Invalid Handle Error"},
                {-1005, "Access Denied Error"},
                {-1001, "Generic Error Error"},
                {-11, "File IO Error"},
                {-9, "Invalid Filename Error"},
                {-1010, "unknown error"},
                {-1002, "unknown error"},
                {-1016, "unknown error"},
                {5, "unknown error"},
                {-10001, "unknown error"}};
    for (auto& row : rows) {
        EXPECT_EQ(std::string("ReadData returned ") + row.words + " in Read. Addr=0x0001, Length=4\n", ReadFailure(row.status));
        EXPECT_EQ(std::string("WriteData returned ") + row.words + " in Write. Addr=0x0001, Length=4\n",
                  WriteFailure(row.status));
    }
    EXPECT_THAT(debug.Text(), ::testing::HasSubstr("ReadData returned File IO Error in Read. Addr=0x0001, Length=4\n"));
    EXPECT_THAT(debug.Text(), ::testing::HasSubstr("WriteData returned unknown error in Write. Addr=0x0001, Length=4\n"));
}

TEST_F(RegisterPort, TheErrorNamesTheNode) {
    EXPECT_EQ("ReadData returned Invalid Address Error in Read. Addr=0x9000, Length=4\n", ReadFailure(-1015, "Faulty"));
    EXPECT_STREQ("Faulty", last_genicam_error().sNodeName);
}

TEST_F(RegisterPort, RawAccessMovesBytes) {
    std::uint32_t value = 0;
    std::uint32_t size = sizeof value;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_ReadData(camera, scripted::reg::width, &value, &size));
    EXPECT_EQ(320u, value);
    EXPECT_EQ(4u, size);
    value = 64;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_WriteData(camera, scripted::reg::width, &value, &size));
    EXPECT_EQ(64u, Register(scripted::reg::width));
    std::uint64_t beyond = 0;
    size = sizeof beyond;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_ReadData(camera, scripted::reg::blob, &beyond, &size));
    EXPECT_EQ(0x0706050403020100u, beyond);
}

TEST_F(RegisterPort, RawAccessPassesByTheNodeMapsCache) {
    std::int64_t width = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, "Width", &width));
    std::uint32_t value = 96, size = sizeof value;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_WriteData(camera, scripted::reg::width, &value, &size));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, "Width", &width));
    EXPECT_EQ(320, width);
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_InvalidateNodes(camera));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, "Width", &width));
    EXPECT_EQ(96, width);
}

TEST_F(RegisterPort, RawAccessReportsTheProducersSizeAndStatus) {
    char bytes[16];
    std::uint32_t size = sizeof bytes;
    auto description = last_genicam_error();
    EXPECT_STATUS(K_ST_INVALID_ADDRESS, K_Camera_ReadData(camera, scripted::reg::nowhere, bytes, &size));
    EXPECT_EQ(0u, size) << "what the producer transferred";
    size = sizeof bytes;
    EXPECT_STATUS(K_ST_INVALID_ADDRESS, K_Camera_WriteData(camera, scripted::reg::nowhere, bytes, &size));
    EXPECT_EQ(0u, size);
    for (GenTL::GC_ERROR status : {-1010, 5}) {
        producer->Refuse("GCReadPort", status, 1, 1);
        size = sizeof bytes;
        EXPECT_STATUS(status, K_Camera_ReadData(camera, 0, bytes, &size));
        EXPECT_EQ(sizeof bytes, size);
    }
    EXPECT_STREQ(description.sDescription, last_genicam_error().sDescription) << "no exception, no record";
}

TEST_F(RegisterPort, RawAccessAsksForThePortFirst) {
    producer->Refuse("DevGetPort", GenTL::GC_ERR_NOT_AVAILABLE);
    producer->ForgetCalls();
    char bytes[4];
    std::uint32_t size = 4;
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Camera_ReadData(camera, 0, bytes, &size));
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Camera_WriteData(camera, 0, bytes, &size));
    EXPECT_EQ(0u, producer->Count("GCReadPort") + producer->Count("GCWritePort"));
}

}  // namespace
}  // namespace kiv_test
