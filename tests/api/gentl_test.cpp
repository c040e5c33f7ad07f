// The module tree: transport layers and what they tell.
#include <functional>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class GenTLTree : public ScriptedFactory {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OpenFactory());
        ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, nullptr, 0));
    }
    TRANSPORT_LAYER_HANDLE layer = nullptr;
};

TEST_F(GenTLTree, TheKeyOfATransportLayerIsCutToTheBuffer) {
    char name[16] = "zzzzzzzzzzzzzzz";
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, 5));
    EXPECT_STREQ("SCRI", name);
    EXPECT_EQ('z', name[5]);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, sizeof name));
    EXPECT_STREQ("SCRIPTED", name);
    name[0] = 'q';
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetTransportLayerByIndex(factory, 0, &layer, name, 0));
    EXPECT_EQ('q', name[0]);
    const auto before = layer;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GetTransportLayerByIndex(factory, 1, &layer, name, sizeof name));
    EXPECT_EQ(before, layer);
}

TEST_F(GenTLTree, InfosOfATransportLayerAreTheProducers) {
    char text[64];
    std::uint32_t size = 0;
    std::int32_t type = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, nullptr, &size));
    EXPECT_EQ(15u, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, text, &size));
    EXPECT_STREQ("Scripted Works", text);
    EXPECT_EQ(GenTL::INFO_DATATYPE_STRING, type);
    size = 3;
    type = -1;
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, &type, text, &size));
    EXPECT_EQ(3u, size) << "written back on success only";
    EXPECT_EQ(-1, type);
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_GenTL_TLGetInfo(layer, 4242, &type, text, &size));
    size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_TLGetInfo(layer, GenTL::TL_INFO_VENDOR, nullptr, text, &size))
        << "a producer insists on a type, a caller need not";
}

TEST_F(GenTLTree, ForwardersHandOnStatusAndSizeAsTheyAre) {
    INTERFACE_HANDLE opened = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetInterfaceLayerByIndex(layer, 0, &opened));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera));
    struct {
        const char* entry;
        const char* text;
        std::function<K_STATUS_CODES(char*, std::uint32_t*)> call;
    } rows[] = {
        {"TLGetInterfaceID", "IF0", [&](char* text, auto* size) { return K_GenTL_TLGetInterfaceID(layer, 0, text, size); }},
        {"IFGetDeviceID", "CAM0", [&](char* text, auto* size) { return K_GenTL_IFGetDeviceName(opened, 0, text, size); }},
        {"IFGetDeviceInfo", "SN-0815",
         [&](char* text, auto* size) {
             return K_GenTL_IFGetDeviceInfoString(layer, opened, "CAM0", GenTL::DEVICE_INFO_SERIAL_NUMBER, text, size);
         }},
        {"TLGetInfo", "U3V", [&](char* text, auto* size) { return K_Camera_GetTransportLayerName(camera, text, size); }}};
    for (auto& row : rows) {
        // The producer writes a size of 64 bits: what stands behind the caller's 32 must stay.
        struct {
            std::uint32_t size, behind;
        } mine{2, 0xABCDABCD};
        char text[16] = "zzzzzzzzzzzzzzz";
        const auto needed = std::string(row.text).size() + 1;
        EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, row.call(text, &mine.size)) << row.entry;
        EXPECT_EQ(needed, mine.size) << row.entry << ": what the producer says, though it failed";
        EXPECT_EQ('z', text[0]);
        mine.size = 0;
        EXPECT_STATUS(K_ST_SUCCESS, row.call(nullptr, &mine.size)) << row.entry;
        EXPECT_EQ(needed, mine.size);
        mine.size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, row.call(text, &mine.size)) << row.entry;
        EXPECT_STREQ(row.text, text);
        EXPECT_EQ(needed, mine.size);
        for (GenTL::GC_ERROR status : {GenTL::GC_ERROR{4711}, GenTL::GC_ERROR{GenTL::GC_ERR_IO}}) {
            producer->Refuse(row.entry, status);
            mine.size = 9;
            EXPECT_STATUS(status, row.call(text, &mine.size)) << row.entry;
            EXPECT_EQ(9u, mine.size);
            producer->Accept(row.entry);
        }
        EXPECT_EQ(0xABCDABCD, mine.behind) << row.entry;
    }
}

// Sub-features are INode handles here and IValue handles at a camera: both name the same node.
TEST_F(GenTLTree, ModulesAreWalkedLikeCameras) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera));
    NODE_HANDLE by_name = nullptr, here = nullptr, there = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetNodeByName(camera, "Width", &by_name));
    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_GetSubFeatureByIndex(camera, "ImageFormatControl", 0, &here));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetSubFeatureByIndex(camera, "ImageFormatControl", 0, &there));
    EXPECT_EQ(by_name, here);
    EXPECT_NE(by_name, there);
    std::int64_t value = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueInt64(there, true, &value));
    EXPECT_EQ(320, value);
    std::uint32_t count = 99;
    for (auto* name : {"NoSuchCategory", "ModuleValue", ""})
        EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetNumOfSubFeatures(layer, name, &count)) << name;
    EXPECT_EQ(99u, count) << "untouched, where the camera's function says 0";
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GetNodeByName(layer, "", &here));
    EXPECT_EQ(by_name, here);
}

}  // namespace
}  // namespace kiv_test
