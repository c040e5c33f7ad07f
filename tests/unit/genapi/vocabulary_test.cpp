// Every element of both schema versions with each child that it may have: none is refused, none is dropped.
#include <gmock/gmock.h>

#include "GenApi/description_check.h"
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;
using kiv::genapi::load_node_map;

namespace {

/// Children that a node of the kind cannot do without, and names of others that it may have beside them.
struct Row {
    std::string element;
    std::string base;
    std::string more;
};

const std::string common =
    "Extension ToolTip Description DisplayName Visibility DocuURL IsDeprecated EventID pIsImplemented pIsAvailable pIsLocked "
    "pBlockPolling ImposedAccessMode pError pAlias pCastAlias pInvalidator ";
const std::string place = "<Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";
const std::string computedPlace =
    "<pAddress>Int</pAddress><pIndex Offset=\"4\">Int</pIndex><pIndex pOffset=\"Int\">Int</pIndex><pIndex>Int</pIndex>"
    "<pLength>Four</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort>";
const std::string ofRegister = common + "Streamable Cachable PollingTime ";
const std::string order = "<Endianess>BigEndian</Endianess>";
const std::string shown = "Unit Representation ";
const std::string shownFloat = shown + "DisplayNotation DisplayPrecision ";
const std::string table =
    "<pIndex>Int</pIndex><ValueIndexed Index=\"1\">5</ValueIndexed><pValueIndexed Index=\"0x2\">Int</pValueIndexed>";
const std::string formulas = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Int</pValue>";
const std::string entry = "<EnumEntry Name=\"One\"><Value>1</Value></EnumEntry>";
const std::string limits = "Min Max Inc ", nodeLimits = "pMin pMax pInc ";

const Row rows[] = {
    {"Node", "", common},
    {"Category", "", common + "pFeature"},
    {"Integer", "<Value>1</Value>", common + "Streamable ValidValueSet pSelected " + limits + shown},
    {"Integer", "<pValue>Int</pValue>", "pValueCopy ValidValuesSet " + nodeLimits},
    {"Integer", table + "<ValueDefault>3</ValueDefault>", shown},
    {"Integer", table + "<pValueDefault>Int</pValueDefault>", limits},
    {"IntReg", place + order, ofRegister + shown + "Sign pSelected"},
    {"IntReg", computedPlace + order, "Address"},
    {"MaskedIntReg", place + order + "<Bit>3</Bit>", ofRegister + shown + "Sign pSelected"},
    {"MaskedIntReg", computedPlace + order + "<MSB>3</MSB><LSB>5</LSB>", "Sign"},
    {"IntSwissKnife", "<Formula>1</Formula>", common + shown + "Streamable pVariable Constant Expression"},
    {"IntConverter", formulas, common + shown + "Streamable pVariable Constant Expression Slope"},
    {"Boolean", "<Value>true</Value>", common + "Streamable OnValue OffValue pSelected"},
    {"Boolean", "<pValue>Int</pValue>", "OnValue OffValue"},
    {"Command", "<pValue>Int</pValue><CommandValue>1</CommandValue>", common + "PollingTime"},
    {"Command", "<Value>0</Value><pCommandValue>Int</pCommandValue>", ""},
    {"Enumeration", entry + "<Value>1</Value>", common + "Streamable pSelected PollingTime"},
    {"Enumeration", "<pEnumEntry>Loose</pEnumEntry><pValue>Int</pValue>", "pSelected"},
    {"EnumEntry", "<Value>1</Value>", common + "NumericValue Symbolic IsSelfClearing"},
    {"Float", "<Value>1</Value>", common + "Streamable " + limits + shownFloat},
    {"Float", "<pValue>Int</pValue>", nodeLimits},
    {"Float", table + "<ValueDefault>3</ValueDefault>", shownFloat},
    {"FloatReg", place + order, ofRegister + shownFloat},
    {"SwissKnife", "<Formula>1</Formula>", common + shownFloat + "Streamable pVariable Constant Expression"},
    {"Converter", formulas, common + shownFloat + "Streamable pVariable Constant Expression Slope IsLinear"},
    {"String", "<Value>text</Value>", common + "Streamable"},
    {"String", "<pValue>Text</pValue>", ""},
    {"StringReg", place, ofRegister},
    {"Register", computedPlace, ofRegister},
    {"Port", "", common + "SwapEndianess CacheChunkData"},
    {"Port", "<ChunkID>1a</ChunkID>", ""},
    {"Port", "<pChunkID>Int</pChunkID>", ""},
    {"ConfRom", "<Unit>1</Unit><Address>4</Address><Length>4</Length><pPort>Device</pPort>", common},
    {"AdvFeatureLock", place, ofRegister + "FeatureID Timeout"},
    {"SmartFeature", "<Address>4</Address><pPort>Device</pPort>", "pIsImplemented pIsAvailable"},
};

/// A text that the child may have.
std::string text_for(const std::string& child) {
    static const std::map<std::string, std::string> texts{{"Visibility", "Guru"},
                                                          {"IsDeprecated", "Yes"},
                                                          {"EventID", "9A"},
                                                          {"ImposedAccessMode", "RO"},
                                                          {"pError", "Enum"},
                                                          {"Streamable", "Yes"},
                                                          {"Cachable", "NoCache"},
                                                          {"Representation", "PureNumber"},
                                                          {"DisplayNotation", "Fixed"},
                                                          {"Sign", "Signed"},
                                                          {"Slope", "Varying"},
                                                          {"IsLinear", "Yes"},
                                                          {"IsSelfClearing", "Yes"},
                                                          {"SwapEndianess", "No"},
                                                          {"Unit", "us"},
                                                          {"CacheChunkData", "Yes"},
                                                          {"ValidValueSet", "1; 2;0x3"},
                                                          {"ValidValuesSet", "1;2"},
                                                          {"Max", "0x7F"},
                                                          {"Min", "-1"},
                                                          {"OnValue", "7"},
                                                          {"Value", "1"},
                                                          {"OffValue", "0"}};
    const auto found = texts.find(child);
    if (found != texts.end()) return found->second;
    return child[0] == 'p' ? "Int" : "1";
}

std::string element_of(const std::string& child) {
    const bool isNamed = child == "pVariable" || child == "Constant" || child == "Expression";
    return "<" + child + (isNamed ? " Name=\"A\">" : ">") + text_for(child) + "</" + child + ">";
}

std::string document(const std::string& nodes, int minor) {
    auto text =
        description_of(R"(<Category Name="Root"><pFeature>Subject</pFeature><pFeature>Int</pFeature><pFeature>Four</pFeature>
        <pFeature>Enum</pFeature><pFeature>Text</pFeature></Category><Integer Name="Int"><Value>1</Value></Integer><Integer Name="Four"><Value>4</Value></Integer>
        <Enumeration Name="Enum">)" +
                       entry + R"(<Value>1</Value></Enumeration><EnumEntry Name="Loose"><Value>2</Value></EnumEntry>
        <StringReg Name="Text">)" +
                       place + "</StringReg>" + nodes);
    if (minor == 1) return text;
    for (const auto& [from, to] :
         {std::pair{"Version_1_1", "Version_1_0"}, {"SchemaMinorVersion=\"1\"", "SchemaMinorVersion=\"0\""}})
        text.replace(text.find(from), std::string_view(from).size(), to);
    return text;
}

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    for (size_t at = 0; at < text.size();) {
        const auto end = std::min(text.find(' ', at), text.size());
        if (end > at) words.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

/// The children named in XML text.
std::vector<std::string> children_in(const std::string& xml) {
    std::vector<std::string> names;
    for (auto at = xml.find('<'); at != xml.npos; at = xml.find('<', at + 1))
        if (xml[at + 1] != '/') names.push_back(xml.substr(at + 1, xml.find_first_of(" >", at) - at - 1));
    return names;
}

void expect_known(const std::string& xml, const std::string& name, const std::vector<std::string>& children) {
    const auto map = load_node_map(xml);
    EXPECT_THAT(kiv::genapi::description_faults(*map), ::testing::IsEmpty()) << xml;
    for (const auto& finding : CheckDescription(xml))
        EXPECT_TRUE(finding.severity == fsNote || finding.nodeName != name.c_str()) << finding.text << "\n" << xml;
    auto* node = map->GetNode(name);
    ASSERT_NE(nullptr, node) << xml;
    for (const auto& child : children) {
        gcstring value, attribute;
        if (child == "Extension" || child == "EnumEntry") continue;
        EXPECT_TRUE(node->GetProperty(child, value, attribute)) << child << "\n" << xml;
    }
}

}  // namespace

TEST(Vocabulary, OfEveryElementIsKnownInAnyOrderAndInBothVersions) {
    for (const auto& row : rows) {
        auto more = words_of(row.more);
        more.push_back("");
        for (const auto& child : more) {
            auto children = children_in(row.base);
            if (!child.empty()) children.push_back(child);
            const auto extra = child.empty() ? "" : element_of(child);
            const auto open =
                "<" + row.element + " Name=\"Subject\" NameSpace=\"Custom\" MergePriority=\"0\" ExposeStatic=\"No\">";
            const auto close = "</" + row.element + ">";
            expect_known(document(open + row.base + extra + close, 1), "Subject", children);
            expect_known(document("<Group Comment=\"c\"><Group>" + open + extra + row.base + close + "</Group></Group>", 0),
                         "Subject", children);
        }
    }
}

TEST(Vocabulary, OfStructuredRegistersReachesTheirEntries) {
    for (const auto& child : words_of(ofRegister)) {
        const auto inside = document("<StructReg Comment=\"c\">" + place + order + "<StructEntry Name=\"Subject\">" +
                                         element_of(child) + "<Bit>1</Bit></StructEntry></StructReg>",
                                     1);
        const auto around = document("<StructReg><StructEntry Name=\"Subject\"><LSB>9</LSB><MSB>2</MSB></StructEntry>" +
                                         element_of(child) + order + place + "</StructReg>",
                                     0);
        for (const auto& xml : {inside, around}) expect_known(xml, "Subject", {child, "Address", "Length", "pPort", "Endianess"});
    }
}

TEST(Vocabulary, OfNodesInsideNodesMakesNodes) {
    const auto map = load_node_map(document(
        "<ConfRom Name=\"Rom\"><Address>0</Address><Length>4</Length><pPort>Device</pPort><TextDesc Name=\"Vendor\">5</TextDesc>"
        "<IntKey Name=\"Serial\">6</IntKey></ConfRom><TextDesc Name=\"Far\" p1212Parser=\"Rom\" Key=\"7\"/><IntKey "
        "Name=\"FarKey\" "
        "p1212Parser=\"Rom\" Key=\"8\"/><IntReg Name=\"Subject\"><IntSwissKnife "
        "Name=\"Knife\"><Formula>4</Formula></IntSwissKnife>" +
            place + order + "</IntReg>",
        0));
    EXPECT_THAT(kiv::genapi::description_faults(*map), ::testing::IsEmpty());
    for (const auto* name : {"Vendor", "Serial", "Far", "FarKey"}) {
        gcstring value, attribute;
        ASSERT_NE(nullptr, map->GetNode(name)) << name;
        EXPECT_TRUE(map->GetNode(name)->GetProperty("p1212Parser", value, attribute)) << name;
        EXPECT_EQ("Rom", value);
    }
    EXPECT_EQ(8, dynamic_cast<IRegister&>(*map->GetNode("Subject")).GetAddress());
    EXPECT_NE(nullptr, dynamic_cast<IString*>(map->GetNode("Far")));
    EXPECT_NE(nullptr, dynamic_cast<IInteger*>(map->GetNode("Serial")));
    EXPECT_NE(nullptr, dynamic_cast<IRegister*>(map->GetNode("Rom")));
}
