// Features of a camera by name, by index, by category, and the identity that its description states.
#include "support/patterns.h"
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class CameraFeature : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }
    std::string NameOf(NODE_HANDLE node) {
        char text[64] = "";
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(node, text, &size, 0));
        return text;
    }
    std::string ConfigInfo(std::uint32_t info) {
        char text[256] = "";
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetConfigInfo(camera, info, text, &size)) << info;
        EXPECT_EQ(std::string(text).size() + 1, size);
        return text;
    }
};

TEST_F(CameraFeature, NodesByNameAndTheirFailures) {
    NODE_HANDLE node = nullptr, feature = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetNodeByName(camera, "Width", &node));
    EXPECT_EQ("Width", NameOf(node));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetFeatureByName(camera, "Width", &feature));
    EXPECT_EQ(node, feature);
    const auto before = node;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByName(camera, "", &node));
    EXPECT_EQ(before, node) << "an empty name is refused before anything is looked up";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByName(camera, "width", &node)) << "letter case counts";
    EXPECT_EQ(nullptr, node);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetFeatureByName(camera, "NoSuchFeature", &feature));
    EXPECT_EQ(nullptr, feature);
}

TEST_F(CameraFeature, AllNodesByIndex) {
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetNumOfNodes(camera, &count));
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE node = nullptr;
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetNodeByIndex(camera, i, &node));
        names.push_back(NameOf(node));
    }
    EXPECT_THAT(names, ::testing::IsSupersetOf({"Root", "Width", "WidthReg", "Hidden", "Device", "ChunkPort", "Trigger"}));
    NODE_HANDLE node = nullptr;
    for (std::uint32_t index : {count, count + 1, 0xFFFFFFFFu})
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNodeByIndex(camera, index, &node)) << index;
}

TEST_F(CameraFeature, CategoriesListTheirDirectFeaturesUnfiltered) {
    struct {
        const char* category;
        std::vector<std::string> features;
    } categories[] = {{"Root", {"ImageFormatControl", "Tricks"}},
                      {"ImageFormatControl", {"Width", "Height", "PixelFormat", "Hidden"}},
                      {"Tricks", {"Pattern", "Flag", "Gain", "GainRaw", "SubTricks"}},
                      {"SubTricks", {"UserName", "Faulty"}}};
    for (auto& category : categories) {
        std::uint32_t count = 0;
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetNumOfSubFeatures(camera, category.category, &count));
        std::vector<std::string> names;
        NODE_HANDLE feature = nullptr;
        for (std::uint32_t i = 0; i < count; ++i) {
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetSubFeatureByIndex(camera, category.category, i, &feature));
            names.push_back(NameOf(feature));
        }
        EXPECT_EQ(category.features, names);
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetSubFeatureByIndex(camera, category.category, count, &feature));
    }
}

TEST_F(CameraFeature, WhatIsNoCategoryHasNoFeatures) {
    NODE_HANDLE feature = nullptr;
    for (auto* name : {"Width", "NoSuchCategory"}) {
        std::uint32_t count = 99;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfSubFeatures(camera, name, &count));
        EXPECT_EQ(0u, count) << name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetSubFeatureByIndex(camera, name, 0, &feature)) << name;
    }
    std::uint32_t count = 99;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfSubFeatures(camera, "", &count));
    EXPECT_EQ(99u, count);
}

TEST_F(CameraFeature, ValuesByName) {
    std::int64_t integer = 0;
    double number = 0;
    char text[32];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "Width", 640));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, "Width", &integer));
    EXPECT_EQ(640, integer);
    EXPECT_EQ(640u, Register(scripted::reg::width));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueDouble(camera, "Gain", 3.25));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueDouble(camera, "Gain", &number));
    EXPECT_EQ(3.25, number);
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueString(camera, "UserName", "Otto"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueString(camera, "UserName", text, &size));
    EXPECT_STREQ("Otto", text);
    EXPECT_EQ(5u, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_ExecuteCommand(camera, "Trigger"));
    EXPECT_EQ(1u, Register(scripted::reg::command));
}

TEST_F(CameraFeature, ValuesByNameAlwaysVerify) {
    EXPECT_GENICAM_ERROR("", "Width", K_Camera_SetValueInt64(camera, "Width", 648));
    EXPECT_GENICAM_ERROR("", "Width", K_Camera_SetValueInt64(camera, "Width", 100)) << "not a step";
    EXPECT_GENICAM_ERROR("", "Gain", K_Camera_SetValueDouble(camera, "Gain", 20.5));
    EXPECT_GENICAM_ERROR("", "Width", K_Camera_SetValueString(camera, "Width", "8"));
    EXPECT_GENICAM_ERROR("", "Counter", K_Camera_SetValueInt64(camera, "Counter", 1));
    EXPECT_EQ(320u, Register(scripted::reg::width));
}

TEST_F(CameraFeature, ValuesByNameReturnTheLookUpsStatus) {
    std::int64_t integer = 5;
    double number = 5;
    char text[8] = "as is";
    std::uint32_t size = sizeof text;
    for (auto* name : {static_cast<const char*>(nullptr), "", "NoSuchFeature"}) {
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueInt64(camera, name, &integer));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SetValueInt64(camera, name, 1));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueDouble(camera, name, &number));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SetValueDouble(camera, name, 1));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetValueString(camera, name, text, &size));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_SetValueString(camera, name, "x"));
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_ExecuteCommand(camera, name));
    }
    EXPECT_EQ(5, integer);
    EXPECT_EQ(5, number);
    EXPECT_STREQ("as is", text);
}

TEST_F(CameraFeature, ConfigInfoTellsTheDescriptionsIdentity) {
    EXPECT_EQ("ScriptedCam", ConfigInfo(K_CONFIG_INFO_MODEL_NAME));
    EXPECT_EQ("ScriptedWorks", ConfigInfo(K_CONFIG_INFO_VENDOR_NAME));
    EXPECT_EQ("A camera for tests", ConfigInfo(K_CONFIG_INFO_TOOL_TIP));
    EXPECT_EQ("None", ConfigInfo(K_CONFIG_INFO_STANDARD_NAME_SPACE));
    EXPECT_THAT(ConfigInfo(K_CONFIG_INFO_GENAPI_VERSION), IsLike("[0-9]+\\.[0-9]+\\.[0-9]+ build [0-9]+"));
    EXPECT_EQ("1.1.0", ConfigInfo(K_CONFIG_INFO_SCHEMA_VERSION));
    EXPECT_EQ("2.3.4", ConfigInfo(K_CONFIG_INFO_DEVICE_VERSION));
    EXPECT_EQ("11111111-2222-3333-4444-555555555555", ConfigInfo(K_CONFIG_INFO_PRODUCT_GUID));
    EXPECT_EQ("66666666-7777-8888-9999-AAAAAAAAAAAA", ConfigInfo(K_CONFIG_INFO_VERSION_GUID));
    char text[8];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetConfigInfo(camera, 9, text, &size));
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Camera_GetConfigInfo(camera, K_CONFIG_INFO_MODEL_NAME, text, &size));
    EXPECT_STREQ("Scripte", text);
    EXPECT_EQ(12u, size);
}

}  // namespace
}  // namespace kiv_test
