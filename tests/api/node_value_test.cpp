// Values of nodes, through each of the interfaces that may serve a call, and what each refuses.
#include <thread>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

class NodeValue : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }
    std::int64_t Int(const char* name, bool verify = true) {
        std::int64_t value = -99;
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueInt64(Node(name), verify, &value)) << name;
        return value;
    }
    K_STATUS_CODES SetText(const char* name, const char* text) { return K_Node_SetValueString(Node(name), true, text); }
};

TEST_F(NodeValue, IntegersComeFromIntegersEnumerationsAndBooleans) {
    EXPECT_EQ(320, Int("Width"));
    EXPECT_EQ(7, Int("Counter"));
    EXPECT_EQ(0xC, Int("Masked"));
    EXPECT_EQ(640, Int("DoubleWidth"));
    EXPECT_EQ(40, Int("WidthInEights"));
    EXPECT_EQ(1, Int("Pattern"));
    EXPECT_EQ(0x01080001, Int("PixelFormat"));
    EXPECT_EQ(0, Int("Flag", true));
    EXPECT_EQ(0, Int("Flag", false));
    for (auto* name : {"Gain", "UserName", "Root", "Trigger", "Device", "Blob"}) {
        std::int64_t value = 5;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueInt64(Node(name), true, &value)) << name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_SetValueInt64(Node(name), true, 1)) << name;
        EXPECT_EQ(5, value);
    }
}

TEST_F(NodeValue, IntegersGoToIntegersEnumerationsAndBooleans) {
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Width"), true, 32));
    EXPECT_EQ(32u, Register(scripted::reg::width));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("WidthInEights"), true, 5));
    EXPECT_EQ(40u, Register(scripted::reg::width));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Masked"), true, 1));
    EXPECT_EQ(0xAB1Du, Register(scripted::reg::masked)) << "the other bits stay";
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Pattern"), true, 3));
    EXPECT_EQ(3u, Register(scripted::reg::pattern));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Flag"), true, 77));
    EXPECT_EQ(5u, Register(scripted::reg::flag));
    EXPECT_EQ(1, Int("Flag"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Flag"), true, 0));
    EXPECT_EQ(2u, Register(scripted::reg::flag));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("LevelSelector"), true, 1));
    EXPECT_EQ(22, Int("Level")) << "a selected value follows its selector";
}

TEST_F(NodeValue, WhatDoesNotFitIsAGenICamErrorAndLeavesTheDevice) {
    EXPECT_GENICAM_ERROR("", "Width", K_Node_SetValueInt64(Node("Width"), true, 8));
    EXPECT_GENICAM_ERROR("", "Width", K_Node_SetValueInt64(Node("Width"), true, 641));
    EXPECT_GENICAM_ERROR("", "Width", K_Node_SetValueInt64(Node("Width"), true, 17));
    EXPECT_GENICAM_ERROR("", "Pattern", K_Node_SetValueInt64(Node("Pattern"), true, 99));
    EXPECT_GENICAM_ERROR("", "Gain", K_Node_SetValueDouble(Node("Gain"), true, 0.25));
    std::int64_t value = 5;
    EXPECT_GENICAM_ERROR("", "WriteOnly", K_Node_GetValueInt64(Node("WriteOnly"), true, &value));
    EXPECT_EQ(5, value);
    EXPECT_EQ(0u, producer->Count("GCWritePort"));
}

TEST_F(NodeValue, WithoutVerificationTheRangeIsTheDevicesBusiness) {
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Width"), false, 648));
    EXPECT_EQ(648u, Register(scripted::reg::width));
    EXPECT_EQ(648, Int("Width", false));
    std::int64_t value = 5;
    EXPECT_GENICAM_ERROR("", "Width", K_Node_GetValueInt64(Node("Width"), true, &value));
    EXPECT_GENICAM_ERROR("", "Counter", K_Node_SetValueInt64(Node("Counter"), false, 1)) << "access is checked all the same";
    EXPECT_STATUS(K_ST_GC_ERROR, K_Node_SetValueInt64(Node("Width"), false, std::int64_t{1} << 40)) << "32 bits hold no more";
    EXPECT_EQ(648u, Register(scripted::reg::width));
}

TEST_F(NodeValue, AnExceptionOutOfTheProducerIsAStatus) {
    producer->SetHook("GCReadPort", [](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> { throw 1; });
    std::int64_t value = 5;
    EXPECT_STATUS(K_ST_ERROR, K_Node_GetValueInt64(Node("Counter"), true, &value));
    EXPECT_EQ(5, value);
    producer->SetHook("GCReadPort", nullptr);
    EXPECT_EQ(7, Int("Counter")) << "and the node map is as usable as before";
}

TEST_F(NodeValue, DoublesAreFloatsOnly) {
    double value = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueDouble(Node("Gain"), true, &value));
    EXPECT_EQ(1.5, value);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueDouble(Node("Gain"), true, 20.25));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueDouble(Node("GainFactor"), true, &value));
    EXPECT_EQ(20.25 / 2, value);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueDouble(Node("HalfWidth"), true, &value));
    EXPECT_EQ(160.0, value);
    for (auto* name : {"Width", "Pattern", "Flag", "UserName"}) {
        value = 5;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueDouble(Node(name), true, &value)) << name;
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_SetValueDouble(Node(name), true, 1)) << name;
        EXPECT_EQ(5, value);
    }
}

TEST_F(NodeValue, EveryValueHasAText) {
    struct {
        const char* name;
        const char* text;
    } rows[] = {{"Counter", "7"},     {"UserName", "Nobody"}, {"Note", "some text"},
                {"Pattern", "Alpha"}, {"Gain", "1.5"},        {"DeviceModelName", "Scripted"}};
    for (auto& row : rows) EXPECT_EQ(row.text, Text(row.name)) << row.name;
    EXPECT_EQ("0", Text("Flag"));
    EXPECT_EQ("0x140", Text("Width")) << "as its representation wants it";
    char text[16];
    std::uint32_t size = 4;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetValueString(Node("UserName"), true, text, &size));
    EXPECT_STREQ("Nob", text);
    EXPECT_EQ(7u, size);
    size = 1;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_Node_GetValueString(Node("Counter"), true, text, &size));
    EXPECT_EQ(2u, size);
}

TEST_F(NodeValue, TextsOfEnumerationsAreDisplayNamesFirst) {
    struct {
        const char* text;
        std::uint32_t value;
    } rows[] = {{"First choice", 1}, {"Beta", 2}, {"Alpha", 1}, {"Third choice", 3}, {"Gamma", 2}};
    for (auto& row : rows) {
        SetRegister(scripted::reg::pattern, 9);
        EXPECT_STATUS(K_ST_SUCCESS, SetText("Pattern", row.text)) << row.text;
        EXPECT_EQ(row.value, Register(scripted::reg::pattern)) << row.text;
    }
    for (auto* text : {"beta", "ALPHA", "first choice", "", "NoSuchEntry", "Alpha "})
        EXPECT_GENICAM_ERROR("", "Pattern", SetText("Pattern", text)) << text;
    EXPECT_EQ(2u, Register(scripted::reg::pattern));
}

TEST_F(NodeValue, TextsOfBooleansAreAListOfWords) {
    for (auto* word : {"true", "True", "TRUE", "1", "on", "On", "ON"}) {
        EXPECT_STATUS(K_ST_SUCCESS, SetText("Flag", "no"));
        EXPECT_STATUS(K_ST_SUCCESS, SetText("Flag", word));
        EXPECT_EQ(5u, Register(scripted::reg::flag)) << word;
    }
    for (auto* word : {"false", "", "oN", "tRUE", "yes", "2", "on ", "trueish"}) {
        EXPECT_STATUS(K_ST_SUCCESS, SetText("Flag", "true"));
        EXPECT_STATUS(K_ST_SUCCESS, SetText("Flag", word));
        EXPECT_EQ(2u, Register(scripted::reg::flag)) << word;
    }
}

TEST_F(NodeValue, TextsOfOtherNodesAreParsed) {
    EXPECT_STATUS(K_ST_SUCCESS, SetText("Width", "64"));
    EXPECT_EQ(64u, Register(scripted::reg::width));
    EXPECT_STATUS(K_ST_SUCCESS, SetText("Width", "0x80"));
    EXPECT_EQ(128u, Register(scripted::reg::width));
    EXPECT_STATUS(K_ST_SUCCESS, SetText("Gain", "2.75"));
    EXPECT_EQ("2.75", Text("Gain"));
    EXPECT_STATUS(K_ST_SUCCESS, SetText("UserName", "0123456789abcdef"));
    EXPECT_EQ("0123456789abcdef", Text("UserName")) << "a register that is full has no terminator";
    EXPECT_STATUS(K_ST_GC_ERROR, SetText("UserName", "0123456789abcdefg")) << "one character too many";
    for (auto* text : {"", "wide", "64px", "1e2"}) EXPECT_STATUS(K_ST_GC_ERROR, SetText("Width", text)) << text;
    EXPECT_STATUS(K_ST_GC_ERROR, SetText("Gain", "loud"));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, SetText("Device", "x"));
}

TEST_F(NodeValue, Limits) {
    std::int64_t integer = 0;
    double number = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetMinInt64(Node("Width"), &integer));
    EXPECT_EQ(16, integer);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetMaxInt64(Node("Width"), &integer));
    EXPECT_EQ(640, integer);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetInc(Node("Width"), &integer));
    EXPECT_EQ(8, integer);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetMaxInt64(Node("Masked"), &integer));
    EXPECT_EQ(15, integer);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetMinDouble(Node("Gain"), &number));
    EXPECT_EQ(0.5, number);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetMaxDouble(Node("Gain"), &number));
    EXPECT_EQ(20.25, number);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetMinInt64(Node("Gain"), &integer));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetMaxDouble(Node("Width"), &number));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetInc(Node("Pattern"), &integer));
}

TEST_F(NodeValue, Commands) {
    std::uint32_t done = 9;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_ExecuteCommand(Node("Trigger")));
    EXPECT_EQ(1u, Register(scripted::reg::command));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetCommandIsDone(Node("Trigger"), &done));
    EXPECT_EQ(0u, done) << "the device has not taken the value back yet";
    SetRegister(scripted::reg::command, 0);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetCommandIsDone(Node("Trigger"), &done));
    EXPECT_EQ(1u, done);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_ExecuteCommand(Node("Width")));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetCommandIsDone(Node("Width"), &done));
}

TEST_F(NodeValue, EnumEntriesAreAllOfThemInOrder) {
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetNumOfEnumEntries(Node("Pattern"), &count));
    ASSERT_EQ(4u, count) << "the one that is not implemented, too";
    for (std::uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE entry = nullptr;
        std::int64_t value = 0;
        ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetEnumEntryByIndex(Node("Pattern"), i, &entry));
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetEnumEntryValue(entry, &value));
        EXPECT_EQ(i + 1, value);
    }
    NODE_HANDLE entry = nullptr;
    std::int64_t value = 0;
    std::uint32_t mode = 9;
    EXPECT_NE(K_ST_SUCCESS, K_Node_GetEnumEntryByIndex(Node("Pattern"), 4, &entry));
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetEnumEntryByIndex(Node("Pattern"), 3, &entry));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetAccessMode(entry, &mode));
    EXPECT_EQ(0u, mode) << "not implemented";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetEnumEntryValue(Node("Pattern"), &value));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetNumOfEnumEntries(Node("Width"), &count));
}

TEST_F(NodeValue, RawRegisters) {
    std::uint8_t bytes[16] = {};
    std::int64_t number = 0;
    auto blob = Node("Blob");
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetRegisterLength(blob, &number));
    EXPECT_EQ(16, number);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetRegisterAddress(blob, &number));
    EXPECT_EQ(0x50, number);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueRegister(blob, bytes, sizeof bytes));
    for (std::uint8_t i = 0; i < 16; ++i) EXPECT_EQ(i, bytes[i]);
    bytes[0] = 0xAA;
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueRegister(blob, bytes, sizeof bytes));
    EXPECT_EQ(0x030201AAu, Register(scripted::reg::blob));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetValueRegister(Node("WidthReg"), bytes, 4)) << "register in device order";
    EXPECT_EQ(0x40, bytes[0]);
    EXPECT_EQ(0x01, bytes[1]);
    EXPECT_STATUS(K_ST_GC_ERROR, K_Node_GetValueRegister(blob, bytes, -1));
    EXPECT_STATUS(K_ST_GC_ERROR, K_Node_SetValueRegister(blob, bytes, 17));
    EXPECT_STATUS(K_ST_GC_ERROR, K_Node_GetValueRegister(blob, nullptr, 16));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetValueRegister(Node("Width"), bytes, 4))
        << "an integer over a register is none";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Node_GetRegisterLength(Node("Gain"), &number));
}

TEST_F(NodeValue, InvalidateReachesTheRegisterOfTheNode) {
    EXPECT_EQ(320, Int("Height") + 80);
    SetRegister(scripted::reg::height, 100);
    EXPECT_EQ(240, Int("Height"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_Invalidate(Node("Height")));
    EXPECT_EQ(100, Int("Height"));
}

// ---- callbacks ----

std::vector<std::string> fired;
std::thread::id fired_on;
void note(void* node) {
    char text[64];
    std::uint32_t size = sizeof text;
    K_Node_GetName(static_cast<NODE_HANDLE>(node), text, &size, 0);
    fired.push_back(text);
    fired_on = std::this_thread::get_id();
}

TEST_F(NodeValue, CallbacksRunOncePerRegistrationOnTheThreadOfTheChange) {
    fired.clear();
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_RegisterCallback(Node("Width"), note));
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Width"), true, 64));
    EXPECT_EQ(std::vector<std::string>{"Width"}, fired);
    EXPECT_EQ(std::this_thread::get_id(), fired_on);
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Height"), true, 64));
    EXPECT_EQ(1u, fired.size()) << "another node's change";
    EXPECT_STATUS(K_ST_SUCCESS, K_Node_RegisterCallback(Node("Width"), note));
    fired.clear();
    std::thread([&] { EXPECT_STATUS(K_ST_SUCCESS, K_Node_SetValueInt64(Node("Width"), true, 72)); }).join();
    EXPECT_EQ((std::vector<std::string>{"Width", "Width"}), fired);
    EXPECT_NE(std::this_thread::get_id(), fired_on);
}

}  // namespace
}  // namespace kiv_test
