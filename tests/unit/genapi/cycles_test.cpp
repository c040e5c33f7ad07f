// Descriptions that lead nowhere: in circles, without end, or through the same place again and again.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

TEST(Cycles, OfValuesAreNamed) {
    DescribedCamera camera(R"(
        <Integer Name="A"><pValue>B</pValue></Integer><Integer Name="B"><pValue>A</pValue></Integer>
        <IntSwissKnife Name="K"><pVariable Name="C">C</pVariable><Formula>C + 1</Formula></IntSwissKnife>
        <IntConverter Name="C"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>K</pValue></IntConverter>
        <Integer Name="Limit"><Value>1</Value><pMax>Limit2</pMax></Integer><Integer Name="Limit2"><pValue>Limit3</pValue></Integer>
        <Integer Name="Limit3"><pValue>Limit2</pValue></Integer>
        <Command Name="Cmd"><pValue>Cmd</pValue><CommandValue>1</CommandValue></Command><Integer Name="ShowsCmd"><pValue>Cmd</pValue></Integer>
        <String Name="S"><pValue>S</pValue></String>
        <IntReg Name="R"><pAddress>R</pAddress><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
        <Integer Name="Fine"><Value>1</Value></Integer>)");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("A").GetValue(), "A", "A -> B -> A");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("A").SetValue(1, false), "A", "refers to itself");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("A").GetMin(), "A", "refers to itself");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("K").GetValue(), "K", "K -> C -> K");
    for (const auto* name : {"A", "K", "Limit2", "S", "R"}) EXPECT_FALSE(camera.Value(name).IsValueCacheValid()) << name;
    EXPECT_NODE_ERROR(LogicalErrorException, camera.String("S").GetValue(), "S", "S -> S");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("R").GetValue(), "R", "R -> R");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("ShowsCmd").GetMax(), "Cmd", "Cmd -> Cmd");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Command("Cmd").Execute(), "Cmd", "refers to itself");
    EXPECT_THROW(camera.Integer("Limit").SetValue(1), GenICam::LogicalErrorException);
    camera.Integer("Limit").SetValue(2, false);
    EXPECT_EQ(1, camera.Integer("Fine").GetValue());
}

TEST(Cycles, OfConditionsAreHarmless) {
    DescribedCamera camera(R"(
        <Enumeration Name="E"><pIsAvailable>EKnife</pIsAvailable><EnumEntry Name="On"><pIsAvailable>Knife</pIsAvailable><Value>1</Value></EnumEntry>
          <pValue>EReg</pValue></Enumeration>
        <IntSwissKnife Name="Knife"><pVariable Name="E">E</pVariable><Formula>E = 1</Formula></IntSwissKnife>
        <IntSwissKnife Name="EKnife"><pVariable Name="E">E</pVariable><Formula>E &lt; 2</Formula></IntSwissKnife>
        <Integer Name="Self"><pIsAvailable>Self</pIsAvailable><Value>1</Value></Integer>
        <Integer Name="X"><pIsAvailable>Y</pIsAvailable><Value>1</Value></Integer><Integer Name="Y"><pIsLocked>X</pIsLocked><Value>1</Value></Integer>)" +
                           int_reg("EReg", 0));
    camera.memory.Put(0, {1});
    EXPECT_EQ(RW, camera.Mode("E"));
    EXPECT_EQ("On", camera.Enumeration("E").ToString());
    EXPECT_EQ(RO, camera.Mode("EnumEntry_E_On"));
    EXPECT_EQ(RW, camera.Mode("Self"));
    EXPECT_EQ(1, camera.Integer("Self").GetValue());
    EXPECT_EQ(RW, camera.Mode("X"));
    EXPECT_EQ(RO, camera.Mode("Y"));
    camera.memory.Put(0, {5});
    camera.Node("E").InvalidateNode();
    EXPECT_EQ(NA, camera.Mode("E"));
}

TEST(Cycles, OfInvalidatorsEnd) {
    DescribedCamera camera(R"(<Integer Name="A"><pInvalidator>B</pInvalidator><Value>1</Value></Integer>
        <Integer Name="B"><pInvalidator>A</pInvalidator><pInvalidator>B</pInvalidator><Value>1</Value><pSelected>A</pSelected><pSelected>B</pSelected></Integer>)");
    int told = 0;
    Register(&camera.Node("A"), [&](INode*) { ++told; });
    camera.Integer("B").SetValue(2);
    EXPECT_EQ(1, told);
}

TEST(Depth, IsLimited) {
    std::string nodes;
    constexpr int length = 100'000;
    for (int i = 0; i < length; ++i)
        nodes += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i + 1) + "</pValue></Integer>";
    DescribedCamera camera(nodes + "<Integer Name=\"N" + std::to_string(length) + "\"><Value>4</Value></Integer>");
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Integer("N0").GetValue(), "N256", "too deeply");
    EXPECT_EQ(NA, camera.Mode("N0"));
    EXPECT_EQ(4, camera.Integer("N" + std::to_string(length - 100)).GetValue());
    camera.Integer("N" + std::to_string(length)).SetValue(5);
    EXPECT_EQ(5, camera.Integer("N" + std::to_string(length - 100)).GetValue());
    EXPECT_EQ(-1, camera.Node("N0").GetPollingTime());
}

TEST(Work, IsLimitedWhereEveryLevelDoublesIt) {
    // Each node takes the minimum of the next one twice; sixty levels would be asked 2^60 times.
    std::string nodes;
    constexpr int levels = 60;
    for (int i = 0; i < levels; ++i)
        nodes += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i + 1) + "</pValue><pValueCopy>N" +
                 std::to_string(i + 1) + "</pValueCopy></Integer>";
    DescribedCamera camera(nodes + "<Integer Name=\"N60\"><Value>4</Value></Integer>");
    EXPECT_THROW(camera.Integer("N0").GetMin(), GenICam::LogicalErrorException);
    EXPECT_THROW(camera.Integer("N0").SetValue(1), GenICam::GenericException);
}

TEST(Work, OfOneCallIsNotPutDownToTheNext) {
    DescribedCamera camera(
        R"(<Integer Name="F"><pValue>G</pValue></Integer><Integer Name="G"><Value>1</Value><Max>9</Max></Integer>)");
    auto& feature = camera.Integer("F");
    for (int i = 0; i < 600'000; ++i) ASSERT_EQ(9, feature.GetMax());
}

TEST(Work, IsProportionalWhereEverythingDependsOnEverything) {
    // Registers that are all invalidated by each other: a write walks each of the edges once, not a tree of them.
    std::string all, nodes;
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) all += "<pInvalidator>R" + std::to_string(i) + "</pInvalidator>";
    for (int i = 0; i < count; ++i) nodes += int_reg("R" + std::to_string(i), 4 * i, all);
    DescribedCamera camera(nodes);
    int told = 0;
    for (int i = 0; i < count; ++i) Register(&camera.Node("R" + std::to_string(i)), [&](INode*) { ++told; });
    camera.Integer("R7").SetValue(1);
    EXPECT_EQ(count, told);
}
