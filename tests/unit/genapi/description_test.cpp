// What a node and a map tell about themselves, and what is made of descriptions that are not as they should be.
#include "GenApi/node_map_ref.h"
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;
using kiv::genapi::load_node_map;

TEST(NodeTexts, AreThoseOfTheDescription) {
    DescribedCamera camera(
        R"(<Float Name="Gain" NameSpace="Standard"><ToolTip>short &lt;b&gt;</ToolTip><Description><![CDATA[long & <raw>]]></Description>
        <DisplayName>The Gain</DisplayName><Visibility>Guru</Visibility><DocuURL>http://x/$(Sys::ModelName)/$(Sys::NodeName)/$(Other)/$(Nobody)</DocuURL>
        <IsDeprecated>Yes</IsDeprecated><EventID>9001</EventID><pAlias>Other</pAlias><pCastAlias>Other</pCastAlias><Streamable>Yes</Streamable>
        <Value>1</Value><Representation>Logarithmic</Representation><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>3</DisplayPrecision></Float>
        <Integer Name="Other"><Value>5</Value></Integer><Category Name="Root"><pFeature>Gain</pFeature></Category>)");
    auto& node = camera.Node("Gain");
    EXPECT_EQ("Std::Gain", node.GetName(true));
    EXPECT_EQ("Cust::Other", camera.Node("Other").GetName(true));
    EXPECT_EQ(&node, camera.Map().GetNode("Std::Gain"));
    EXPECT_EQ("short <b>", node.GetToolTip());
    EXPECT_EQ("long & <raw>", node.GetDescription());
    EXPECT_EQ("The Gain", node.GetDisplayName());
    EXPECT_EQ("Other", camera.Node("Other").GetDisplayName());
    EXPECT_EQ("http://x/Model/Gain/5/$(Nobody)", node.GetDocuURL());
    EXPECT_EQ("9001", node.GetEventID());
    EXPECT_EQ("Device", node.GetDeviceName());
    EXPECT_TRUE(node.IsDeprecated() && node.IsStreamable() && node.IsFeature());
    EXPECT_FALSE(camera.Node("Other").IsStreamable() || camera.Node("Other").IsFeature() || camera.Node("Other").IsDeprecated());
    EXPECT_EQ(Guru, node.GetVisibility());
    EXPECT_EQ(&camera.Node("Other"), node.GetAlias());
    EXPECT_EQ(&camera.Integer("Other"), camera.Float("Gain").GetIntAlias());
    EXPECT_EQ(nullptr, camera.Float("Gain").GetEnumAlias());
    EXPECT_EQ(Logarithmic, camera.Float("Gain").GetRepresentation());
    EXPECT_EQ(fnFixed, camera.Float("Gain").GetDisplayNotation());
    EXPECT_EQ(3, camera.Float("Gain").GetDisplayPrecision());
}

TEST(Properties, ListWhatStandsInTheNode) {
    DescribedCamera camera(
        R"(<IntSwissKnife Name="K"><pInvalidator>A</pInvalidator><pVariable Name="X">A</pVariable><pVariable Name="Y">B</pVariable><Formula>X+Y</Formula></IntSwissKnife>
        <Integer Name="A"><Value>1</Value></Integer><Integer Name="B"><Value>2</Value></Integer>
        <Enumeration Name="E"><EnumEntry Name="P"><Value>0</Value></EnumEntry><EnumEntry Name="Q"><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>)");
    gcstring value, attribute;
    auto& node = camera.Node("K");
    ASSERT_TRUE(node.GetProperty("pVariable", value, attribute));
    EXPECT_EQ("A\tB", value);
    EXPECT_EQ("X\tY", attribute);
    ASSERT_TRUE(node.GetProperty("Formula", value, attribute));
    EXPECT_EQ("X+Y", value);
    EXPECT_EQ("", attribute);
    ASSERT_TRUE(camera.Node("E").GetProperty("pEnumEntry", value, attribute));
    EXPECT_EQ("EnumEntry_E_P\tEnumEntry_E_Q", value);
    ASSERT_TRUE(camera.Node("EnumEntry_E_Q").GetProperty("Symbolic", value, attribute));
    EXPECT_EQ("Q", value);
    EXPECT_FALSE(node.GetProperty("Address", value, attribute));
    EXPECT_FALSE(node.GetProperty("Nonsense", value, attribute));
    EXPECT_EQ("", value);
    gcstring_vector names;
    node.GetPropertyNames(names);
    for (const auto* name : {"NodeType", "Name", "NameSpace", "pInvalidator", "pVariable", "Formula"})
        EXPECT_TRUE(names.contains(name)) << name;
    for (const auto& name : names) EXPECT_TRUE(node.GetProperty(name, value, attribute)) << name;
    EXPECT_EQ(7u, names.size());
}

TEST(Neighbours, AreFoundByTheKindOfLink) {
    DescribedCamera camera(
        R"(<Integer Name="Top"><pInvalidator>Trigger</pInvalidator><pIsAvailable>Flag</pIsAvailable><pValue>Mid</pValue></Integer>
        <Integer Name="Mid"><pValue>R</pValue></Integer><Integer Name="Flag"><Value>1</Value></Integer><Integer Name="Trigger"><Value>0</Value></Integer>)" +
        int_reg("R", 0));
    const auto list = [&](const char* name, ELinkType type) {
        NodeList_t nodes;
        camera.Node(name).GetChildren(nodes, type);
        std::vector<std::string> names;
        for (auto* node : nodes) names.push_back(node->GetName().str());
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ((Names{"Flag", "Mid"}), list("Top", ctReadingChildren));
    EXPECT_EQ((Names{"Mid"}), list("Top", ctWritingChildren));
    EXPECT_EQ((Names{"R"}), list("Top", ctAllTerminalNodes));
    EXPECT_EQ((Names{"Trigger"}), list("Top", ctInvalidators));
    EXPECT_EQ((Names{"Mid"}), list("R", ctDependingChildren));
    EXPECT_EQ((Names{"Mid", "Top"}), list("R", ctAllDependingNodes));
}

TEST(Interfaces, OfANodeAreReachedFromEachOther) {
    DescribedCamera camera(int_reg("R", 0) + R"(<Category Name="Root"/><Node Name="N"/>)");
    auto* node = &camera.Node("R");
    auto* integer = dynamic_cast<IInteger*>(node);
    auto* bytes = dynamic_cast<IRegister*>(integer);
    auto* value = dynamic_cast<IValue*>(bytes);
    ASSERT_NE(nullptr, value);
    EXPECT_EQ(static_cast<IValue*>(integer), value);
    EXPECT_EQ(node, dynamic_cast<INode*>(value));
    EXPECT_NE(nullptr, dynamic_cast<ISelector*>(bytes));
    // What an interface pointer points to can be taken as an IBase, whichever interface it is.
    for (void* place :
         {static_cast<void*>(node), static_cast<void*>(integer), static_cast<void*>(bytes), static_cast<void*>(value)}) {
        auto* base = static_cast<IBase*>(place);
        EXPECT_EQ(node, base->AsNode());
        EXPECT_EQ(node, dynamic_cast<INode*>(base));
        EXPECT_EQ(intfIInteger, base->GetPrincipalInterfaceType());
        EXPECT_EQ(static_cast<void*>(integer), base->AsInterface(intfIInteger));
        EXPECT_EQ(static_cast<void*>(bytes), base->AsInterface(intfIRegister));
        EXPECT_EQ(static_cast<void*>(value), base->AsInterface(intfIValue));
        EXPECT_EQ(nullptr, base->AsInterface(intfIFloat));
    }
    EXPECT_EQ(nullptr, dynamic_cast<IValue*>(&camera.Node("N")));
    EXPECT_EQ(nullptr, dynamic_cast<IValue*>(&camera.Node("Device")));
    EXPECT_EQ("", camera.Value("Root").ToString());
    EXPECT_EQ(RO, camera.Mode("Root"));
    CIntegerPtr nobody = camera.Map().GetNode("Nobody");
    EXPECT_FALSE(nobody.IsValid());
    EXPECT_THROW(nobody->GetValue(), GenICam::LogicalErrorException);
}

TEST(DeviceInfo, IsThatOfTheRoot) {
    DescribedCamera camera("");
    auto& info = *camera.Map().GetDeviceInfo();
    EXPECT_EQ(&info, dynamic_cast<IDeviceInfo*>(&camera.Map()));
    EXPECT_EQ("Model", info.GetModelName());
    EXPECT_EQ("GEV", info.GetStandardNameSpace());
    Version_t version;
    info.GetSchemaVersion(version);
    EXPECT_EQ((Version_t{1, 1, 0}), version);
    info.GetDeviceVersion(version);
    EXPECT_EQ((Version_t{3, 2, 1}), version);
    uint16_t build = 0;
    info.GetGenApiVersion(version, build);
    EXPECT_EQ((Version_t{2, 4, 0}), version);

    CNodeMapRef reference("Device");
    EXPECT_THROW(reference._GetNumNodes(), GenICam::LogicalErrorException);
    reference._LoadXMLFromString(description_of("<Node Name=\"N\"/>"));
    const CNodeMapRef copy = reference;
    reference._Destroy();
    EXPECT_EQ(2u, copy._GetNumNodes());
    EXPECT_EQ("Vendor", copy._GetVendorName());
    EXPECT_THROW(reference._LoadXMLFromFile("no such file"), GenICam::RuntimeException);
}

// ---- descriptions that are not as they should be ----

TEST(Tolerance, OfHowTheTextArrives) {
    const auto plain = description_of("<Integer Name=\"A\"><Unit>\xC2\xB5s</Unit><Value>5</Value></Integer>");
    std::string wide = "\xFF\xFE";
    for (const char c : description_of("<Integer Name=\"A\"><Unit>\x01</Unit><Value>5</Value></Integer>"))
        (wide += c == '\x01' ? '\xB5' : c) += '\0', wide += "";
    auto latin = description_of("<Integer Name=\"A\"><Unit>\xB5s</Unit><Value>5</Value></Integer>");
    struct Row {
        const char* name;
        std::string text;
        const char* unit;
    };
    for (const auto& row : {Row{"plain", plain, "\xC2\xB5s"}, Row{"marked", "\xEF\xBB\xBF" + plain, "\xC2\xB5s"},
                            Row{"padded", plain + std::string(3, '\0'), "\xC2\xB5s"},
                            Row{"rubbish behind", plain + std::string(1, '\0') + "\xFFrubbish<", "\xC2\xB5s"},
                            Row{"blanks", "\r\n  " + plain + "\n\n", "\xC2\xB5s"}, Row{"latin", latin, "\xC2\xB5s"},
                            Row{"utf-16", wide, "\xC2\xB5"}}) {
        auto map = load_node_map(row.text);
        CIntegerPtr node = map->GetNode("A");
        ASSERT_TRUE(node.IsValid()) << row.name;
        EXPECT_EQ(5, node->GetValue()) << row.name;
        EXPECT_EQ(row.unit, node->GetUnit()) << row.name;
    }
}

TEST(Tolerance, OfWhatIsNoDescription) {
    for (const std::string text :
         {"", "no xml", "<RegisterDescription", "<Other/>", "<RegisterDescription><Integer Name='A'></RegisterDescription>",
          "\xFF\xFE<", "<?xml version=\"1.0\"?>", "PK\x03\x04"})
        EXPECT_THROW(load_node_map(text), GenICam::RuntimeException) << text;
    try {
        load_node_map("<RegisterDescription>\n  <Integer></RegisterDescription>");
        FAIL();
    } catch (const GenICam::RuntimeException& error) {
        EXPECT_NE(std::string(error.GetDescription()).find("Error while parsing XML stream at line 2 and column"),
                  std::string::npos)
            << error.what();
    }
}

TEST(Tolerance, OfOddSpellings) {
    DescribedCamera camera(R"(<Group Comment="a"><Group Comment="b"><Integer Name=" Spaced "><Value>
            7 </Value><Min>-0x10</Min><VendorThing><Deep/></VendorThing></Integer></Group></Group><Unknown Name="U"/>
        <Enumeration Name="E"><EnumEntry Name="1st"><Value>0x1</Value></EnumEntry><EnumEntry Name="Same"><Value>1</Value></EnumEntry><Value>9</Value></Enumeration>
        <IntReg Name="R"><Address>0X10</Address><Length>0x4</Length><AccessMode>R/W</AccessMode><pPort> Device </pPort><Endianess>BigEndian</Endianess></IntReg>
        <Integer Name="Spaced"><Value>1</Value></Integer>
        <Boolean Name="B"><Value>true</Value></Boolean><Integer Name="All"><Value>0xFFFFFFFFFFFFFFFF</Value></Integer>)");
    EXPECT_EQ(7, camera.Integer("Spaced").GetValue()) << "the first of two nodes of one name counts";
    EXPECT_EQ(-16, camera.Integer("Spaced").GetMin());
    EXPECT_EQ(nullptr, camera.Map().GetNode("U"));
    EXPECT_EQ(9, camera.Enumeration("E").GetIntValue());
    EXPECT_EQ(nullptr, camera.Enumeration("E").GetCurrentEntry());
    camera.Enumeration("E").FromString("Same");
    EXPECT_EQ("1st", camera.Enumeration("E").GetEntry(1)->GetSymbolic());
    EXPECT_EQ(RW, camera.Mode("R"));
    EXPECT_TRUE(camera.Boolean("B").GetValue());
    EXPECT_EQ(-1, camera.Integer("All").GetValue());
    ASSERT_EQ(1u, camera.Faults().size());
    EXPECT_NE(camera.Faults()[0].find("Spaced"), std::string::npos);
    EXPECT_EQ(8u, camera.Map().GetNumNodes());
}

TEST(Tolerance, OfFaultyNodesCostsOnlyThese) {
    const std::string reg = "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";
    const std::pair<const char*, std::string> faulty[] = {
        {"NoValue", "<Integer Name=\"NoValue\"/>"},
        {"NoTarget", "<Integer Name=\"NoTarget\"><pValue>Missing</pValue></Integer>"},
        {"BadNumber", "<Integer Name=\"BadNumber\"><Value>12abc</Value></Integer>"},
        {"BadLimit", "<Float Name=\"BadLimit\"><Value>1</Value><Max>much</Max></Float>"},
        {"NoPort", "<IntReg Name=\"NoPort\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode></IntReg>"},
        {"WrongPort",
         "<IntReg "
         "Name=\"WrongPort\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Good</pPort></IntReg>"},
        {"NoAddress", "<IntReg Name=\"NoAddress\">" + reg + "</IntReg>"},
        {"NegativeLength",
         "<Register Name=\"NegativeLength\"><Address>0</Address><Length>-4</Length><pPort>Device</pPort></Register>"},
        {"HugeLength",
         "<StringReg "
         "Name=\"HugeLength\"><Address>0</Address><Length>0x7FFFFFFFFFFFFFFF</Length><pPort>Device</pPort></StringReg>"},
        {"NoBits", "<MaskedIntReg Name=\"NoBits\"><Address>0</Address>" + reg + "</MaskedIntReg>"},
        {"NoFormula", "<SwissKnife Name=\"NoFormula\"/>"},
        {"NoCommand", "<Command Name=\"NoCommand\"><Value>1</Value></Command>"},
        {"BadSuffix",
         "<IntSwissKnife Name=\"BadSuffix\"><pVariable Name=\"X.Soul\">Good</pVariable><Formula>1</Formula></IntSwissKnife>"},
    };
    std::string nodes =
        "<Integer Name=\"Good\"><pInvalidator>Missing</pInvalidator><pMax>Missing</pMax><Value>3</Value></Integer>";
    for (const auto& [name, xml] : faulty) nodes += xml;
    DescribedCamera camera(nodes + "<Float Name=\"UsesFaulty\"><pValue>NoTarget</pValue></Float>");
    EXPECT_EQ(3, camera.Integer("Good").GetValue());
    EXPECT_EQ(INT64_MAX, camera.Integer("Good").GetMax());
    const auto faults = camera.Faults();
    for (const auto& [name, xml] : faulty) {
        EXPECT_EQ(NI, camera.Mode(name)) << name;
        try {
            camera.Value(name).ToString();
            ADD_FAILURE() << name << " can be read";
        } catch (const GenICam::AccessException& error) {
            EXPECT_STREQ(name, error.GetNodeName());
            EXPECT_NE(std::string(error.GetDescription()).find("Its description is faulty"), std::string::npos)
                << error.GetDescription();
        }
        const std::string start = "Node '" + std::string(name) + "'";
        EXPECT_TRUE(std::any_of(faults.begin(), faults.end(), [&](const auto& fault) { return fault.starts_with(start); }))
            << name;
    }
    EXPECT_THROW(camera.Float("UsesFaulty").GetValue(), GenICam::AccessException);
    EXPECT_THROW(camera.Integer("NoTarget").GetMax(), GenICam::RuntimeException);
    EXPECT_THROW(camera.Command("NoCommand").Execute(), GenICam::AccessException);
    EXPECT_THROW(camera.Register("NoPort").GetAddress(), GenICam::RuntimeException);
}

TEST(Tolerance, OfRegistersWhoseSizeTurnsOutImpossible) {
    DescribedCamera camera(
        R"(<IntReg Name="R"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
        <FloatReg Name="F"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></FloatReg>
        <Register Name="B"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
        <MaskedIntReg Name="M"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort><Bit>20</Bit><Endianess>BigEndian</Endianess></MaskedIntReg>
        <Integer Name="L"><Value>2</Value></Integer>)");
    camera.memory.Put(0, {1, 2});
    EXPECT_EQ(0x0201, camera.Integer("R").GetValue());
    EXPECT_NODE_ERROR(RuntimeException, camera.Float("F").GetValue(), "F", "2 bytes");
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("M").GetValue(), "M", "no bit 20");
    for (const int64_t length : {int64_t{-1}, int64_t{0}, int64_t{9}, INT64_MAX}) {
        camera.Integer("L").SetValue(length);
        EXPECT_THROW(camera.Integer("R").GetValue(), GenICam::GenericException) << length;
        EXPECT_THROW(camera.Integer("R").SetValue(1), GenICam::GenericException) << length;
    }
    EXPECT_THROW(camera.Register("B").ToString(), GenICam::OutOfRangeException);
    camera.Integer("L").SetValue(0);
    EXPECT_EQ("0x", camera.Register("B").ToString());
}
