// What ordinary cameras use: features over registers, read and written.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

TEST(IntegerFeature, ReadsAndWritesTheRegisterThatItShows) {
    DescribedCamera camera(
        R"(<Integer Name="Width"><pValue>WidthReg</pValue><Min>16</Min><Max>640</Max><Inc>16</Inc><Unit>px</Unit></Integer>)" +
        int_reg("WidthReg", 0x10));
    camera.memory.Put(0x10, {0x40, 0x01});
    auto& width = camera.Integer("Width");
    EXPECT_EQ(320, width.GetValue());
    width.SetValue(512);
    EXPECT_EQ((std::vector<int>{0, 2, 0, 0}), camera.memory.At(0x10, 4));
    EXPECT_EQ(512, camera.Integer("WidthReg").GetValue());
    EXPECT_EQ(1, camera.memory.reads);
    EXPECT_EQ("px", width.GetUnit());
    EXPECT_EQ("512", width.ToString());
    width.FromString("0x20");
    EXPECT_EQ(32, width.GetValue());
    width.SetValue(1000, false);
    EXPECT_EQ(1000, width.GetValue());
    EXPECT_NODE_ERROR(OutOfRangeException, width.GetValue(true), "Width", "Max = 640");
}

TEST(EnumerationFeature, KnowsItsEntriesByNameAndNumber) {
    DescribedCamera camera(R"(<Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
        <EnumEntry Name="On"><DisplayName>Switched on</DisplayName><Value>2</Value></EnumEntry><pValue>ModeReg</pValue></Enumeration>)" +
                           int_reg("ModeReg", 0));
    auto& mode = camera.Enumeration("Mode");
    EXPECT_EQ("Off", mode.ToString());
    mode.FromString("On");
    EXPECT_EQ(2, mode.GetIntValue());
    EXPECT_EQ("Switched on", mode.GetCurrentEntry()->GetNode()->GetDisplayName());
    mode.SetIntValue(0);
    EXPECT_EQ((std::vector<int>{0}), camera.memory.At(0, 1));
    EXPECT_EQ("EnumEntry_Mode_On", mode.GetEntryByName("On")->GetNode()->GetName());
    EXPECT_EQ(nullptr, mode.GetEntryByName("on"));
    EXPECT_EQ(mode.GetEntryByName("On"), mode.GetEntryByDisplayName("Switched on"));
    EXPECT_EQ(mode.GetEntryByName("Off"), mode.GetEntryByDisplayName("Off")) << "without one the symbolic name stands in";
    EXPECT_EQ(nullptr, mode.GetEntryByDisplayName("On"));
    EXPECT_NODE_ERROR(InvalidArgumentException, mode.FromString("2"), "Mode",
                      "Feature 'Mode' : cannot convert value '2', the value is invalid.");
    EXPECT_NODE_ERROR(InvalidArgumentException, mode.SetIntValue(1), "Mode", "'1'");
    camera.memory.Put(0, {7});
    camera.Node("Mode").InvalidateNode();
    EXPECT_EQ(7, mode.GetIntValue());
    EXPECT_NODE_ERROR(RuntimeException, mode.ToString(), "Mode", "7");
}

TEST(SimpleFeatures, SwitchAndTriggerAndTell) {
    DescribedCamera camera(R"(
        <Boolean Name="Flip"><pValue>FlipBit</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
        <MaskedIntReg Name="FlipBit"><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
          <Bit>3</Bit><Endianess>LittleEndian</Endianess></MaskedIntReg>
        <Command Name="Start"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
        <StringReg Name="Id"><Address>16</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
        <Float Name="Gain"><pValue>GainReg</pValue><Min>0</Min><Max>24.5</Max><Unit>dB</Unit></Float>
        <FloatReg Name="GainReg"><Address>32</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
          <Endianess>BigEndian</Endianess></FloatReg>
        <Category Name="Root"><pFeature>Flip</pFeature><pFeature>Start</pFeature><pFeature>Device</pFeature><pFeature>Gain</pFeature></Category>)" +
                           int_reg("StartReg", 8));
    camera.memory.Put(4, {0xF0});
    camera.Boolean("Flip").SetValue(true);
    EXPECT_EQ((std::vector<int>{0xF8}), camera.memory.At(4, 1));
    EXPECT_EQ("1", camera.Boolean("Flip").ToString());
    EXPECT_NODE_ERROR(InvalidArgumentException, camera.Boolean("Flip").FromString("Off"), "Flip",
                      "cannot convert string \"Off\" to boolean");

    auto& start = camera.Command("Start");
    start.Execute();
    EXPECT_FALSE(start.IsDone());
    camera.memory.Put(8, {0});
    EXPECT_TRUE(start.IsDone());

    camera.String("Id").SetValue("cam");
    EXPECT_EQ((std::vector<int>{'c', 'a', 'm', 0, 0, 0, 0, 0}), camera.memory.At(16, 8));
    EXPECT_EQ("cam", camera.String("Id").GetValue());
    camera.String("Id").SetValue("12345678");
    EXPECT_EQ("12345678", camera.String("Id").GetValue());
    EXPECT_NODE_ERROR(InvalidArgumentException, camera.String("Id").SetValue("123456789"), "Id", "longer");

    camera.Float("Gain").SetValue(1.5);
    EXPECT_EQ((std::vector<int>{0x3F, 0xC0, 0, 0}), camera.memory.At(32, 4));
    EXPECT_EQ(1.5, camera.Float("Gain").GetValue());
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Float("Gain").SetValue(24.6), "Gain",
                      "Value = 24.6 must be equal or smaller than Max = 24.5.");

    FeatureList_t features;
    camera.As<ICategory>("Root").GetFeatures(features);
    ASSERT_EQ(3u, features.size());
    EXPECT_EQ("Gain", features[2]->GetNode()->GetName());
}
