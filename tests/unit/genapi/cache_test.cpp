// What is kept, and when it is given up.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

TEST(Caching, FollowsTheModeOfTheRegister) {
    struct Row {
        const char* mode;
        int readsOfTwoGets, readsAfterWrite;
        bool isCachable;
    };
    for (const auto& row : {Row{"NoCache", 2, 1, false}, Row{"WriteThrough", 1, 0, true}, Row{"WriteAround", 1, 1, true}}) {
        DescribedCamera camera(R"(<Integer Name="F"><pValue>R</pValue></Integer>)" +
                               int_reg("R", 0, "<Cachable>" + std::string(row.mode) + "</Cachable>"));
        auto& feature = camera.Integer("F");
        feature.GetValue();
        feature.GetValue();
        EXPECT_EQ(row.readsOfTwoGets, camera.memory.reads) << row.mode;
        feature.SetValue(5);
        camera.memory.reads = 0;
        EXPECT_EQ(5, feature.GetValue());
        EXPECT_EQ(row.readsAfterWrite, camera.memory.reads) << row.mode;
        EXPECT_EQ(row.isCachable, feature.IsValueCacheValid()) << row.mode;
        EXPECT_EQ(row.isCachable, camera.Node("F").IsCachable()) << row.mode;
    }
}

TEST(Caching, IsPassedByOnRequestAndRefreshed) {
    DescribedCamera camera(R"(<Integer Name="F"><pValue>R</pValue></Integer><Integer Name="G"><pValue>R</pValue></Integer>)" +
                           int_reg("R", 0));
    EXPECT_EQ(0, camera.Integer("F").GetValue());
    EXPECT_EQ(0, camera.Integer("G").GetValue());
    camera.memory.Put(0, {9});
    EXPECT_EQ(0, camera.Integer("F").GetValue());
    EXPECT_EQ(9, camera.Integer("F").GetValue(false, true));
    EXPECT_EQ(9, camera.Integer("F").GetValue());
    EXPECT_EQ(9, camera.Integer("G").GetValue()) << "another node still shows what has been replaced";
    EXPECT_EQ(2, camera.memory.reads);
}

TEST(Caching, IsSharedByTheFieldsOfARegister) {
    const auto field = [](const char* name, int lsb, int msb) {
        return "<MaskedIntReg Name=\"" + std::string(name) +
               "\"><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><LSB>" +
               std::to_string(lsb) + "</LSB><MSB>" + std::to_string(msb) +
               "</MSB><Endianess>LittleEndian</Endianess></MaskedIntReg>";
    };
    DescribedCamera camera(field("Low", 0, 7) + field("High", 24, 31));
    camera.memory.Put(4, {1, 2, 3, 4});
    EXPECT_EQ(1, camera.Integer("Low").GetValue());
    EXPECT_EQ(4, camera.Integer("High").GetValue());
    EXPECT_EQ(1, camera.memory.reads);
    camera.Integer("Low").SetValue(0x11);
    camera.Integer("High").SetValue(0x44);
    EXPECT_EQ((std::vector<int>{0x11, 2, 3, 0x44}), camera.memory.At(4, 4));
    EXPECT_EQ(1, camera.memory.reads);
}

TEST(Caching, OfARegisterEndsWhenAnotherOneOverlapsIt) {
    DescribedCamera camera(
        int_reg("Wide", 0, "", 8) + int_reg("Narrow", 4, "", 2) + int_reg("Beside", 8, "", 2) +
        R"(<IntReg Name="Moving"><pAddress>Where</pAddress><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
                              <Endianess>LittleEndian</Endianess></IntReg><Integer Name="Where"><Value>4</Value></Integer>)");
    for (const auto* name : {"Wide", "Narrow", "Beside", "Moving"}) camera.Integer(name).GetValue();
    camera.memory.reads = 0;
    camera.Integer("Narrow").SetValue(0x0201);
    EXPECT_EQ(0x0000020100000000, camera.Integer("Wide").GetValue());
    EXPECT_EQ(0x0201, camera.Integer("Moving").GetValue());
    EXPECT_EQ(2, camera.memory.reads);
    camera.Integer("Moving").SetValue(7);
    EXPECT_EQ(7, camera.Integer("Narrow").GetValue());
    camera.Integer("Beside").GetValue();
    EXPECT_EQ(3, camera.memory.reads);
}

TEST(Caching, OfALongRegisterEndsWhereverItIsOverlapped) {
    DescribedCamera camera(
        R"(<Register Name="Long"><Address>0</Address><Length>64</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>)" +
        int_reg("Early", 2, "", 1) + int_reg("Late", 40, "", 1));
    uint8_t bytes[64];
    camera.Register("Long").Get(bytes, 64);
    camera.Integer("Late").SetValue(9);
    camera.Register("Long").Get(bytes, 64);
    EXPECT_EQ(9, bytes[40]);
}

TEST(Invalidation, ReachesTheRegisterBehindANode) {
    DescribedCamera camera(R"(<Integer Name="F"><pValue>G</pValue></Integer><Integer Name="G"><pValue>R</pValue></Integer>)" +
                           int_reg("R", 0));
    EXPECT_EQ(0, camera.Integer("F").GetValue());
    camera.memory.Put(0, {3});
    EXPECT_EQ(0, camera.Integer("F").GetValue());
    camera.Node("F").InvalidateNode();
    EXPECT_EQ(3, camera.Integer("F").GetValue());
    camera.memory.Put(0, {4});
    camera.Map().InvalidateNodes();
    EXPECT_EQ(4, camera.Integer("R").GetValue());
}

TEST(Invalidation, FollowsInvalidatorsOfAnyKindOfNode) {
    DescribedCamera camera(R"(
        <Command Name="Load"><pValue>LoadReg</pValue><CommandValue>1</CommandValue></Command>
        <Port Name="Back"><pInvalidator>Load</pInvalidator></Port>
        <IntReg Name="Behind"><Address>16</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Back</pPort><Endianess>LittleEndian</Endianess></IntReg>
        <Integer Name="Shown"><pInvalidator>Load</pInvalidator><pValue>Free</pValue></Integer>)" +
                           int_reg("LoadReg", 0) + int_reg("Free", 4) + int_reg("Named", 8, "<pInvalidator>Load</pInvalidator>") +
                           int_reg("Apart", 12));
    camera.Map().Connect(&camera.memory, "Back");
    const char* const names[] = {"Behind", "Shown", "Named", "Apart"};
    for (const auto* name : names) EXPECT_EQ(0, camera.Integer(name).GetValue());
    for (const int address : {16, 4, 8, 12}) camera.memory.Put(static_cast<size_t>(address), {5});
    for (const auto* name : names) EXPECT_EQ(0, camera.Integer(name).GetValue());
    camera.Command("Load").Execute();
    EXPECT_EQ(5, camera.Integer("Behind").GetValue());
    EXPECT_EQ(5, camera.Integer("Shown").GetValue());
    EXPECT_EQ(5, camera.Integer("Named").GetValue());
    EXPECT_EQ(0, camera.Integer("Apart").GetValue());
}

TEST(Polling, OutdatesANodeWhenItsTimeHasCome) {
    DescribedCamera camera(int_reg("Temp", 0, "<PollingTime>100</PollingTime>") +
                           int_reg("Held", 4, "<pBlockPolling>Block</pBlockPolling><PollingTime>10</PollingTime>") +
                           R"(<Integer Name="Block"><Value>1</Value></Integer><Integer Name="View"><pValue>Temp</pValue></Integer>
        <Command Name="Go"><pValue>GoReg</pValue><CommandValue>1</CommandValue><PollingTime>50</PollingTime></Command>)" +
                           int_reg("GoReg", 8));
    int changes = 0;
    Register(&camera.Node("Go"), [&](INode*) { ++changes; });
    camera.Integer("View").GetValue();
    camera.Integer("Held").GetValue();
    camera.memory.Put(0, {30});
    camera.memory.Put(4, {30});
    camera.Map().Poll(60);
    EXPECT_EQ(0, camera.Integer("View").GetValue());
    camera.Map().Poll(60);
    EXPECT_EQ(30, camera.Integer("View").GetValue());
    EXPECT_EQ(0, camera.Integer("Held").GetValue());
    camera.Integer("Block").SetValue(0);
    camera.Map().Poll(10);
    EXPECT_EQ(30, camera.Integer("Held").GetValue());
    EXPECT_EQ(100, camera.Node("View").GetPollingTime());
    EXPECT_EQ(-1, camera.Node("GoReg").GetPollingTime());

    EXPECT_EQ(0, changes) << "a command that is not running is not polled";
    camera.Command("Go").Execute();
    changes = 0;
    camera.Map().Poll(50);
    EXPECT_EQ(1, changes);
    camera.memory.Put(8, {0});
    EXPECT_TRUE(camera.Command("Go").IsDone());
    changes = 0;
    camera.Map().Poll(500);
    EXPECT_EQ(0, changes);
}

TEST(SelfClearingEntry, IsReadFromTheDeviceUntilItIsGone) {
    DescribedCamera camera(R"(<Enumeration Name="Auto"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
        <EnumEntry Name="Once"><Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>AutoReg</pValue></Enumeration>)" +
                           int_reg("AutoReg", 0));
    auto& mode = camera.Enumeration("Auto");
    mode.FromString("Once");
    EXPECT_EQ(1, mode.GetIntValue());
    EXPECT_EQ("Once", mode.ToString());
    camera.memory.Put(0, {0});
    EXPECT_EQ(0, mode.GetIntValue());
    EXPECT_EQ("Off", mode.ToString());
    const int reads = camera.memory.reads;
    EXPECT_EQ("Off", mode.ToString());
    EXPECT_EQ(reads, camera.memory.reads);
}
