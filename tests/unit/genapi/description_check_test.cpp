// What the check of a description finds, and that it finds nothing in a good one.
#include "GenApi/description_check.h"
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

const std::string good = R"(
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Mode</pFeature><pFeature>Go</pFeature><pFeature>On</pFeature></Category>
<Integer Name="Width"><pIsLocked>Locked</pIsLocked><pValue>Reg</pValue><Min>0</Min><Max>255</Max></Integer>
<IntSwissKnife Name="Locked"><pVariable Name="R">Reg</pVariable><Formula>R=1</Formula></IntSwissKnife>
<Enumeration Name="Mode"><EnumEntry Name="A"><Value>0</Value></EnumEntry><EnumEntry Name="B"><Value>1</Value></EnumEntry><pValue>Field</pValue></Enumeration>
<Command Name="Go"><pValue>Reg</pValue><CommandValue>1</CommandValue></Command><Boolean Name="On"><pValue>Reg</pValue></Boolean>
<MaskedIntReg Name="Field"><Address>4</Address><Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Bit>0</Bit><Endianess>BigEndian</Endianess></MaskedIntReg>
<IntReg Name="Reg"><Address>0</Address><Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>
)";

std::string told(const std::vector<DescriptionFinding>& findings) {
    std::string text;
    for (const auto& f : findings)
        text += std::to_string(f.line) + ": " + std::to_string(f.severity) + ": " + f.nodeName.str() + ": " + f.text.str() + "\n";
    return text;
}

/// `xml` beside a good description. A finding of that severity, for that node, with that text must be among what is found.
struct Row {
    const char* xml;
    EFindingSeverity severity;
    const char* node;
    const char* text;
};

const Row rows[] = {
    // structure
    {"<Integr Name='X'/>", fsWarning, "", "'Integr' is not known"},
    {"<Integer Name='X'><Value>1</Value><Vaule>2</Vaule></Integer>", fsWarning, "X", "Is 'Value' meant?"},
    {"<Integer Name='X'><Value>1</Value><Length>2</Length></Integer>", fsWarning, "X", "means nothing in a node of kind Integer"},
    {"<Category Name='X'><Integer Name='Y'/></Category>", fsWarning, "X", "a node inside a node"},
    {"<Integer Name='X'><Value>1</Value><Value>2</Value></Integer>", fsWarning, "X", "more than once"},
    {"<Integer Name='X'><Value>1</Value><pValue>Reg</pValue></Integer>", fsWarning, "X", "exclude each other"},
    {"<Integer><Value>1</Value></Integer>", fsError, "", "has no name"},
    {"<Integer Name='a-b'><Value>1</Value></Integer>", fsWarning, "a-b", "letters"},
    {"<Integer Name='X' Colour='red'><Value>1</Value></Integer>", fsNote, "X", "attribute 'Colour'"},
    {"<Float Name='X'/>", fsWarning, "X", "no Value or pValue or pIndex"},
    {"<Float Name='X'/>", fsError, "X", "no value. The node cannot be used"},
    {"<StringReg Name='X'><Address>0</Address><Length>4</Length><pPort>Device</pPort></StringReg>", fsWarning, "X",
     "RW is taken"},
    {"<IntKey Name='X'/>", fsNote, "X", "by name only"},
    // forms
    {"<Integer Name='X'><Value>1x</Value></Integer>", fsError, "X", "Value '1x' is no integer. The node cannot be used"},
    {"<Integer Name='X'><Value>1</Value><Visibility>Wizard</Visibility></Integer>", fsWarning, "X", "is none of: Beginner"},
    {"<Integer Name='X'><Value>1</Value><EventID>0x9</EventID></Integer>", fsWarning, "X", "hexadecimal"},
    {"<Node Name='X'><PollingTime>-1</PollingTime></Node>", fsWarning, "X", "means nothing"},
    {"<SwissKnife Name='X'><Formula>1 +</Formula></SwissKnife>", fsError, "X", "formula"},
    {"<SwissKnife Name='X'><Formula>A + 1</Formula></SwissKnife>", fsError, "X", "A"},
    // references
    {"<Integer Name='X'><pValue>Gone</pValue></Integer>", fsError, "X", "pValue 'Gone' does not exist"},
    {"<Integer Name='X'><Value>1</Value><pInvalidator>Gone</pInvalidator></Integer>", fsError, "X", "'Gone' does not exist"},
    {"<Integer Name='X'><pValue>Root</pValue></Integer>", fsError, "X", "of kind Category, which does not serve"},
    {"<Integer Name='X'><Value>1</Value><pError>Reg</pError></Integer>", fsError, "X", "of kind IntReg"},
    {"<Register Name='X'><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Reg</pPort></Register>", fsError,
     "X", "pPort 'Reg' is of kind IntReg"},
    {"<Register "
     "Name='X'><pAddress>F</pAddress><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></Register><Float "
     "Name='F'><Value>1</Value></Float>",
     fsWarning, "X", "its fraction is cut off"},
    {"<IntReg "
     "Name='W'><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort><Endianess>BigEndian</"
     "Endianess>"
     "</IntReg><Integer Name='X'><pIsAvailable>W</pIsAvailable><Value>1</Value></Integer>",
     fsError, "X", "can only be written"},
    {"<Integer Name='Reg'><Value>1</Value></Integer>", fsError, "Reg", "The name is that of a node in line"},
    {"<Category Name='X'><pFeature>Width</pFeature></Category>", fsWarning, "X", "No category lists this one"},
    {"<Integer Name='X'><Value>1</Value></Integer>", fsNote, "X", "no other node needs it"},
    // circles
    {"<Integer Name='X'><pValue>Y</pValue></Integer><Integer Name='Y'><pValue>X</pValue></Integer>", fsError, "X", "X -> Y -> X"},
    {"<Category Name='X'><pFeature>Y</pFeature></Category><Category Name='Y'><pFeature>X</pFeature></Category>", fsWarning, "X",
     "inside itself: X -> Y -> X"},
    {"<Integer Name='X'><Value>1</Value><pSelected>X</pSelected></Integer>", fsWarning, "X", "selects itself"},
    // values
    {"<Integer Name='X'><Value>9</Value><Min>1</Min><Max>5</Max></Integer>", fsWarning, "X", "above Max"},
    {"<Float Name='X'><Value>1</Value><Min>5</Min><Max>1</Max></Float>", fsWarning, "X", "no value is possible"},
    {"<Integer Name='X'><Value>4</Value><Min>1</Min><Inc>2</Inc></Integer>", fsWarning, "X", "no whole number of steps"},
    {"<Integer Name='X'><pValue>Reg</pValue><Max>256</Max></Integer>", fsWarning, "X", "which holds 0 to 255"},
    {"<Boolean Name='X'><pValue>Field</pValue><OnValue>2</OnValue></Boolean>", fsWarning, "X",
     "does not fit the register 'Field'"},
    {"<Boolean Name='X'><Value>1</Value><OnValue>0</OnValue></Boolean>", fsWarning, "X", "are the same"},
    {"<Enumeration Name='X'><EnumEntry Name='A'><Value>1</Value></EnumEntry><EnumEntry "
     "Name='B'><Value>1</Value></EnumEntry><Value>7"
     "</Value></Enumeration>",
     fsWarning, "X", "has the value of entry 'A'"},
    {"<Enumeration Name='X'><EnumEntry Name='A'><Value>1</Value></EnumEntry><EnumEntry "
     "Name='A'><Value>2</Value></EnumEntry><Value>7"
     "</Value></Enumeration>",
     fsWarning, "X", "two entries 'A'"},
    {"<Enumeration Name='X'><EnumEntry Name='A'><Value>1</Value></EnumEntry><Value>7</Value></Enumeration>", fsWarning, "X",
     "belongs to no entry"},
    {"<StructReg><Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian</"
     "Endianess>"
     "<StructEntry Name='X'><Bit>16</Bit></StructEntry></StructReg>",
     fsError, "X", "has no bit 16"},
    {"<FloatReg "
     "Name='X'><Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>BigEndian"
     "</Endianess></FloatReg>",
     fsError, "X", "2 bytes is none of a floating point number"},
    {"<Register Name='X'><Address>0</Address><Length>0</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>",
     fsError, "X", "leaves nothing to read"},
    {"<Register Name='X'><Address>0</Address><Length>-4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>",
     fsError, "X", "not possible"},
    {"<Register Name='X'><Address>-4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>",
     fsWarning, "X", "negative"},
    {"<MaskedIntReg "
     "Name='X'><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><LSB>0</LSB><MSB>3"
     "</MSB><Endianess>BigEndian</Endianess></MaskedIntReg>",
     fsWarning, "X", "wrong way round"},
};

}  // namespace

TEST(DescriptionCheck, FindsNothingInAGoodDescription) {
    const auto findings = CheckDescription(description_of(good));
    EXPECT_TRUE(findings.empty()) << told(findings);
}

TEST(DescriptionCheck, FindsFaultsWithNodeAndLine) {
    const auto before = description_of(good);
    for (const auto& row : rows) {
        const auto text = description_of(good + row.xml);
        const auto line = std::count(before.begin(), before.end(), '\n') + 1;
        const auto findings = CheckDescription(text);
        const bool isFound = std::any_of(findings.begin(), findings.end(), [&](const DescriptionFinding& f) {
            return f.severity == row.severity && f.nodeName == row.node && f.line == line &&
                   f.text.str().find(row.text) != std::string::npos;
        });
        EXPECT_TRUE(isFound) << row.xml << "\nis to be: " << row.severity << ": " << row.node << ": " << row.text << "\n"
                             << told(findings);
    }
}

TEST(DescriptionCheck, LooksAtTheDescriptionAsAWhole) {
    const auto findings =
        CheckDescription("\xEF\xBB\xBF\n\n<RegisterDescription xmlns='http://elsewhere'>\n<Thing/><Thing/>\n<Node Name='N'/>");
    ASSERT_EQ(1u, findings.size()) << "a text that ends too early is nothing else";
    EXPECT_EQ(fsError, findings[0].severity);
    const auto more =
        told(CheckDescription("\xEF\xBB\xBF\n\n<RegisterDescription xmlns='http://elsewhere' SchemaMajorVersion='0'>\n"
                              "<Thing/><Thing/>\n</RegisterDescription>"));
    for (const auto* part :
         {"3: 1: : The root has no ModelName.", "The schema version 0. is not known", "The namespace 'http://elsewhere'",
          "no port 'Device'", "no category 'Root'", "4: 1: : The element 'Thing' is not known; it is ignored. So 1 more"})
        EXPECT_NE(more.find(part), std::string::npos) << part << "\n" << more;
    for (const auto* text :
         {"", "no xml", "PK\x03\x04", "<Other/>", "<RegisterDescription SchemaMajorVersion='2'><Thing/></RegisterDescription>"})
        EXPECT_EQ(1u, CheckDescription(text).size()) << text;
}
