// What a node tells about itself.
#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class NodeIdentity : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }

    template <class Result>
    Result Read(K_STATUS_CODES (*get)(NODE_HANDLE, Result*), const char* name) {
        Result result{};
        EXPECT_STATUS(K_ST_SUCCESS, get(Node(name), &result)) << name;
        return result;
    }
    std::string ReadText(K_STATUS_CODES (*get)(NODE_HANDLE, char*, std::uint32_t*), const char* name) {
        char text[256] = "";
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, get(Node(name), text, &size)) << name;
        EXPECT_EQ(std::string(text).size() + 1, size);
        return text;
    }
    template <class Result>
    void ExpectRefused(K_STATUS_CODES (*get)(NODE_HANDLE, Result*), const char* name) {
        Result result{};
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, get(Node(name), &result)) << name;
    }
};

TEST_F(NodeIdentity, Texts) {
    EXPECT_EQ("Columns", ReadText(K_Node_GetToolTip, "Width"));
    EXPECT_EQ("The width of the image in pixels.", ReadText(K_Node_GetDescription, "Width"));
    EXPECT_EQ("Width", ReadText(K_Node_GetDisplayName, "Width"));
    EXPECT_EQ("9A01", ReadText(K_Node_GetEventID, "Width"));
    EXPECT_EQ("http://example.org/width", ReadText(K_Node_GetDocuURL, "Width"));
    EXPECT_EQ("px", ReadText(K_Node_GetUnit, "Width"));
    EXPECT_EQ("dB", ReadText(K_Node_GetUnit, "Gain"));
    EXPECT_EQ("", ReadText(K_Node_GetToolTip, "Height"));
    EXPECT_EQ("Height", ReadText(K_Node_GetDisplayName, "Height")) << "without one the name stands in";

    char text[64];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(Node("Width"), text, &size, 0));
    EXPECT_STREQ("Width", text);
    size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(Node("Width"), text, &size, 1));
    EXPECT_STREQ("Std::Width", text);
    size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(Node("Gain"), text, &size, 1));
    EXPECT_STREQ("Cust::Gain", text);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetUnit(Node("Flag"), text, &size));
}

TEST_F(NodeIdentity, AShortBufferReceivesWhatFits) {
    auto node = Node("Width");
    char text[8] = "zzzzzzz";
    std::uint32_t size = 4;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetDisplayName(node, text, &size));
    EXPECT_STREQ("Wid", text);
    EXPECT_EQ('z', text[4]);
    EXPECT_EQ(6u, size);
    size = 1;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetDisplayName(node, text, &size));
    EXPECT_STREQ("", text);
    EXPECT_EQ(6u, size);
    text[0] = 'q';
    size = 0;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetDisplayName(node, text, &size));
    EXPECT_EQ('q', text[0]) << "a capacity of 0 writes nothing";
    EXPECT_EQ(6u, size);
    size = 5;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetDisplayName(node, text, &size));
    EXPECT_STREQ("Widt", text);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetDisplayName(node, text, &size));
    EXPECT_STREQ("Width", text);
}

TEST_F(NodeIdentity, NumbersAreGenApis) {
    EXPECT_EQ(1u, Read(K_Node_GetNameSpace, "Width"));
    EXPECT_EQ(0u, Read(K_Node_GetNameSpace, "Gain"));
    EXPECT_EQ(0u, Read(K_Node_GetVisibility, "Width"));
    EXPECT_EQ(1u, Read(K_Node_GetVisibility, "Gain"));
    EXPECT_EQ(3u, Read(K_Node_GetVisibility, "Hidden"));
    EXPECT_EQ(4u, Read(K_Node_GetAccessMode, "Width"));
    EXPECT_EQ(3u, Read(K_Node_GetAccessMode, "Counter"));
    EXPECT_EQ(2u, Read(K_Node_GetAccessMode, "WriteOnly"));
    EXPECT_EQ(1u, Read(K_Node_GetCachingMode, "WidthReg"));
    EXPECT_EQ(0u, Read(K_Node_GetCachingMode, "Counter"));
    EXPECT_EQ(1u, Read(K_Node_GetIsCachable, "WidthReg"));
    EXPECT_EQ(0u, Read(K_Node_GetIsCachable, "Counter"));
    EXPECT_EQ(250, Read(K_Node_GetPollingTime, "Counter"));
    EXPECT_EQ(-1, Read(K_Node_GetPollingTime, "Width"));
    EXPECT_EQ(1u, Read(K_Node_GetIsStreamable, "Width"));
    EXPECT_EQ(0u, Read(K_Node_GetIsStreamable, "Counter"));
    EXPECT_EQ(1u, Read(K_Node_GetIsDeprecated, "GainRaw"));
    EXPECT_EQ(0u, Read(K_Node_GetIsDeprecated, "Gain"));
    EXPECT_EQ(4u, Read(K_Node_GetRepresentation, "Width"));
    EXPECT_EQ(1u, Read(K_Node_GetRepresentation, "Gain"));
    EXPECT_EQ(1u, Read(K_Node_GetDisplayNotation, "Gain"));
    EXPECT_EQ(3, Read(K_Node_GetDisplayPrecision, "Gain"));
    EXPECT_EQ(1u, Read(K_Node_GetFloatHasInc, "Gain"));
    EXPECT_EQ(0.25, Read(K_Node_GetFloatInc, "Gain"));
    EXPECT_EQ(0u, Read(K_Node_GetFloatHasInc, "PlainFloat"));
    ExpectRefused(K_Node_GetRepresentation, "Flag");
    ExpectRefused(K_Node_GetDisplayNotation, "Width");
    ExpectRefused(K_Node_GetDisplayPrecision, "Width");
    ExpectRefused(K_Node_GetFloatHasInc, "Width");
    ExpectRefused(K_Node_GetFloatInc, "Pattern");
}

TEST_F(NodeIdentity, TypesByElementAndByInterface) {
    struct {
        const char* name;
        std::uint32_t type;
    } rows[] = {{"Root", K_NODE_TYPE_CATEGORY},
                {"Width", K_NODE_TYPE_INTEGER},
                {"PixelFormat", K_NODE_TYPE_ENUMERATION},
                {"Masked", K_NODE_TYPE_MASKED_INT_REG},
                {"Blob", K_NODE_TYPE_REGISTER},
                {"WidthReg", K_NODE_TYPE_INT_REG},
                {"Gain", K_NODE_TYPE_FLOAT},
                {"GainReg", K_NODE_TYPE_FLOAT_REG},
                {"HalfWidth", K_NODE_TYPE_SWISS_KNIFE},
                {"DoubleWidth", K_NODE_TYPE_INT_SWISS_KNIFE},
                {"Device", K_NODE_TYPE_PORT},
                {"UserName", K_NODE_TYPE_STRING_REG},
                {"Note", K_NODE_TYPE_STRING_REG},
                {"Flag", K_NODE_TYPE_BOOLEAN},
                {"Trigger", K_NODE_TYPE_COMMAND},
                {"GainFactor", K_NODE_TYPE_CONVERTER},
                {"WidthInEights", K_NODE_TYPE_INT_CONVERTER}};
    for (auto& row : rows) EXPECT_EQ(row.type, Read(K_Node_GetType, row.name)) << row.name;
    NODE_HANDLE entry = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetEnumEntryByIndex(Node("Pattern"), 0, &entry));
    std::uint32_t type = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetType(entry, &type));
    EXPECT_EQ(static_cast<std::uint32_t>(K_NODE_TYPE_ENUM_ENTRY), type);
}

TEST_F(NodeIdentity, AnyInterfacePointerOfANodeIsAHandle) {
    NODE_HANDLE feature = nullptr, alias = nullptr, selected = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetSubFeatureByIndex(camera, "ImageFormatControl", 0, &feature));
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetIntAlias(Node("Gain"), &alias));
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetSelectedFeatureByIndex(Node("LevelSelector"), 0, &selected));
    struct {
        NODE_HANDLE node;
        const char* name;
        std::int64_t value;
    } rows[] = {{feature, "Width", 320}, {alias, "GainRaw", 40}, {selected, "Level", 11}};
    for (auto& row : rows) {
        char text[64];
        std::uint32_t size = sizeof text;
        std::int64_t value = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(row.node, text, &size, 0));
        EXPECT_STREQ(row.name, text);
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueInt64(row.node, true, &value));
        EXPECT_EQ(row.value, value);
    }
}

TEST_F(NodeIdentity, Aliases) {
    NODE_HANDLE alias = Node("Width");
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetAlias(Node("Gain"), &alias));
    EXPECT_EQ(Node("GainRaw"), alias);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetAlias(Node("Width"), &alias));
    EXPECT_EQ(nullptr, alias) << "none, and no error";
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetFloatAlias(Node("GainRaw"), &alias));
    EXPECT_NE(nullptr, alias);

    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetIntAlias(Node("PlainFloat"), &alias));
    EXPECT_EQ(nullptr, alias) << "a float without alias";
    alias = Node("Width");
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetEnumAlias(Node("Gain"), &alias));
    EXPECT_EQ(nullptr, alias) << "an alias of another interface";
    alias = Node("Width");
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetIntAlias(Node("Width"), &alias));
    EXPECT_EQ(Node("Width"), alias) << "the wrong node leaves the output";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetFloatAlias(Node("Gain"), &alias));
    EXPECT_EQ(Node("Width"), alias);
}

TEST_F(NodeIdentity, PropertiesAreTheElementsOfTheDescription) {
    auto node = Node("Width");
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetNumOfProperties(node, &count));
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        char name[64];
        std::uint32_t size = sizeof name;
        ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetPropertyNameByIndex(node, i, name, &size));
        names.push_back(name);
    }
    EXPECT_THAT(names, ::testing::IsSupersetOf({"Inc", "Unit", "ToolTip"}));
    char name[64];
    std::uint32_t size = sizeof name;
    EXPECT_NE(K_ST_SUCCESS, K_Node_GetPropertyNameByIndex(node, count, name, &size));

    char value[64], attribute[64];
    std::uint32_t value_size = sizeof value, attribute_size = sizeof attribute;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetPropertyByName(node, "Unit", value, &value_size, attribute, &attribute_size));
    EXPECT_STREQ("px", value);
    EXPECT_EQ(3u, value_size);
    EXPECT_EQ(1u, attribute_size);
    value_size = attribute_size = sizeof value;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetPropertyByName(node, "NoSuchThing", value, &value_size, attribute, &attribute_size));
    EXPECT_STREQ("", value);
    EXPECT_STREQ("", attribute);
    value_size = 3, attribute_size = sizeof attribute;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE,
                  K_Node_GetPropertyByName(node, "ToolTip", value, &value_size, attribute, &attribute_size));
    EXPECT_STREQ("Co", value);
    EXPECT_EQ(8u, value_size);
    EXPECT_EQ(1u, attribute_size) << "the attribute is copied all the same";
}

TEST_F(NodeIdentity, Selectors) {
    std::uint32_t count = 0;
    NODE_HANDLE feature = nullptr;
    EXPECT_EQ(1u, Read(K_Node_GetIsSelector, "LevelSelector"));
    EXPECT_EQ(0u, Read(K_Node_GetIsSelector, "Level"));
    EXPECT_EQ(1u, Read(K_Node_GetNumOfSelectedFeatures, "LevelSelector"));
    EXPECT_EQ(1u, Read(K_Node_GetNumOfSelectingFeatures, "Level"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetNumOfSelectedFeatures(Node("Width"), &count));
    EXPECT_EQ(0u, count);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetSelectingFeatureByIndex(Node("Level"), 0, &feature));
    char text[64];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetName(feature, text, &size, 0));
    EXPECT_STREQ("LevelSelector", text);
    EXPECT_NE(K_ST_SUCCESS, K_Node_GetSelectedFeatureByIndex(Node("LevelSelector"), 1, &feature));
}

TEST_F(NodeIdentity, ImposingNarrows) {
    auto width = Node("Width");
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_ImposeAccessMode(width, 3));
    EXPECT_EQ(3u, Read(K_Node_GetAccessMode, "Width"));
    EXPECT_GENICAM_ERROR("", "Width", K_Node_SetValueInt64(width, true, 64));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_ImposeAccessMode(width, 4));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(width, true, 64));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_ImposeVisibility(width, 2));
    EXPECT_EQ(2u, Read(K_Node_GetVisibility, "Width"));
}

}  // namespace
}  // namespace kiv_test
