// What the texts of exceptions say: the node, the value, the limit, and what would have to change.
#include <functional>

#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

const std::string nodes = R"(
    <Integer Name="Width"><pIsLocked>Busy</pIsLocked><pValue>WidthReg</pValue><pMin>Least</pMin><pMax>Most</pMax><pInc>Step</pInc></Integer>
    <Integer Name="Over"><pValue>Width</pValue></Integer><Integer Name="Busy"><Value>0</Value></Integer>
    <Integer Name="Least"><Value>8</Value></Integer><Integer Name="Most"><Value>640</Value></Integer>
    <Integer Name="Step"><Value>4</Value></Integer>
    <Float Name="Gain"><pIsAvailable>HasGain</pIsAvailable><Value>1</Value><Max>24.5</Max></Float>
    <Integer Name="HasGain"><pIsImplemented>Extra</pIsImplemented><Value>1</Value></Integer>
    <Integer Name="Extra"><Value>1</Value></Integer>
    <Float Name="Speed"><pIsImplemented>Extra</pIsImplemented><pValue>Gain</pValue></Float>
    <Integer Name="Status"><pValue>StatusReg</pValue></Integer><Integer Name="Key"><pValue>KeyReg</pValue></Integer>
    <Integer Name="Fixed"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>
    <IntSwissKnife Name="Sum"><pVariable Name="A">Status</pVariable><pVariable Name="B">Key</pVariable><Formula>A+B</Formula></IntSwissKnife>
    <IntSwissKnife Name="Twice"><pVariable Name="A">Status</pVariable><Formula>A*2</Formula></IntSwissKnife>
    <IntConverter Name="Halves"><FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom><pValue>ByteReg</pValue></IntConverter>
    <Enumeration Name="Mode"><EnumEntry Name="Slow"><Value>0</Value></EnumEntry>
      <EnumEntry Name="Fast"><pIsAvailable>Busy</pIsAvailable><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
    <Category Name="Root"/><Port Name="Elsewhere"/>
    <IntReg Name="Far"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Elsewhere</pPort></IntReg>)" +
                          int_reg("WidthReg", 0) + int_reg("StatusReg", 4, "<AccessMode>RO</AccessMode>") +
                          int_reg("KeyReg", 8, "<AccessMode>WO</AccessMode>") + int_reg("ByteReg", 12, "", 1);

}  // namespace

TEST(ErrorText, OfANumberSaysWhereItsLimitComesFrom) {
    DescribedCamera camera(nodes);
    auto& width = camera.Integer("Width");
    EXPECT_NODE_ERROR(OutOfRangeException, width.SetValue(641), "Width",
                      "Value = 641 must be equal or smaller than Max = 640. Max is the value of 'Most'.");
    EXPECT_NODE_ERROR(OutOfRangeException, width.SetValue(4), "Width",
                      "Value = 4 must be equal or greater than Min = 8. Min is the value of 'Least'.");
    EXPECT_NODE_ERROR(OutOfRangeException, width.SetValue(9), "Width", "by Inc = 4. Inc is the value of 'Step'.");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("Over").SetValue(641), "Over", "Max = 640. Max is that of 'Width'.");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("ByteReg").SetValue(256), "ByteReg",
                      "Max = 255. Max is what the register can hold.");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("ByteReg").SetValue(-1, false), "ByteReg",
                      "Min = 0. Min is what the register can hold.");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("Halves").SetValue(600), "Halves",
                      "Max = 510. Max is computed from that of 'ByteReg'.");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Float("Gain").SetValue(24.75), "Gain",
                      "Value = 24.75 must be equal or smaller than Max = 24.5.");
    width.ImposeMax(320);
    EXPECT_NODE_ERROR(OutOfRangeException, width.SetValue(321), "Width", "Max = 320. Max is imposed by the application.");
    EXPECT_EQ(0, camera.memory.writes);
}

TEST(ErrorText, OfAnAccessSaysWhatForbidsIt) {
    DescribedCamera camera(nodes);
    const auto read = [&](const char* name) { return [&camera, name] { camera.Value(name).ToString(); }; };
    const auto write = [&](const char* name) { return [&camera, name] { camera.Value(name).FromString("8"); }; };
    struct Row {
        const char* node;
        std::function<void()> access;
        const char* text;
        std::function<void()> before = [] {};
    };
    const Row rows[] = {
        {"Status", write("Status"), "Node is not writable. 'StatusReg' is a register of the access mode RO."},
        {"StatusReg", write("StatusReg"), "Node is not writable. It is a register of the access mode RO."},
        {"Key", read("Key"), "Node is not readable. 'KeyReg' is a register of the access mode WO."},
        {"Fixed", write("Fixed"), "The access mode RO is imposed on it by the description."},
        {"Twice", write("Twice"), "Node is not writable. It is computed by a formula."},
        {"Sum", read("Sum"), "Node is not readable. 'KeyReg' is a register of the access mode WO."},
        {"Root", write("Root"), "Node is not writable. It is of kind Category."},
        {"EnumEntry_Mode_Slow", write("EnumEntry_Mode_Slow"), "It is of kind EnumEntry."},
        {"Far", read("Far"), "Node is not readable. 'Elsewhere' is not connected to a device."},
        {"Mode", [&] { camera.Value("Mode").FromString("Fast"); },
         "Node is not writable. The entry 'Fast' cannot be chosen. It is not available: 'Busy' is 0."},
        {"Width", write("Width"), "Node is not writable. It is locked: 'Busy' is 3.",
         [&] { camera.Integer("Busy").SetValue(3); }},
        {"Over", write("Over"), "Node is not writable. 'Width' is locked: 'Busy' is 3."},
        {"Over", write("Over"), "The access mode RO is imposed on it.", [&] { camera.Node("Over").ImposeAccessMode(RO); }},
        {"Gain", read("Gain"), "Node is not readable. It is not available: 'HasGain' is 0.",
         [&] { camera.Integer("HasGain").SetValue(0); }},
        {"Speed", read("Speed"), "Node is not readable. 'Gain' is not available: 'HasGain' is 0."},
        {"Gain", read("Gain"), "It is not available: 'HasGain' cannot be read.", [&] { camera.Integer("Extra").SetValue(0); }},
        {"Speed", write("Speed"), "Node is not writable. It is not implemented: 'Extra' is 0."},
    };
    for (const auto& row : rows) {
        row.before();
        EXPECT_NODE_ERROR(AccessException, row.access(), row.node, row.text);
    }
    EXPECT_EQ(0, camera.memory.reads + camera.memory.writes);
    NodeList_t locks;
    camera.Node("Over").GetLockNodes(locks);
    ASSERT_EQ(1u, locks.size());
    EXPECT_EQ("Busy", locks[0]->GetName());
}
