// What real descriptions do that the schema does not foresee: each is taken as it is meant.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;
using kiv::genapi::load_node_map;

TEST(Tolerance, OfWhatStandsAroundAndBetween) {
    const auto plain = description_of(
        "<?tool note?><!-- a <b> --><Integer Name=\"A\" xsi:foo=\"1\"><ToolTip>R&D & more &#x41; &unknown;</ToolTip><Value>1<!-- "
        "x "
        "-->2</Value></Integer><Float Name=\"F\"><Value>\r\n\t<![CDATA[2.5]]> </Value><Unit><![CDATA[<u>]]></Unit></Float>text "
        "between");
    for (const auto& text :
         {"<!-- before -->\n" + plain.substr(plain.find("<Register")),
          "<?xml version=\"1.0\"?><!DOCTYPE RegisterDescription [<!ENTITY e \"x\">]>" + plain.substr(plain.find("<Register")),
          plain + "<!-- behind -->\r\n"}) {
        const auto map = load_node_map(text);
        EXPECT_EQ(12, dynamic_cast<IInteger&>(*map->GetNode("A")).GetValue());
        EXPECT_EQ("R&D & more A &unknown;", map->GetNode("A")->GetToolTip());
        EXPECT_EQ(2.5, dynamic_cast<IFloat&>(*map->GetNode("F")).GetValue());
        EXPECT_EQ("<u>", dynamic_cast<IFloat&>(*map->GetNode("F")).GetUnit());
    }
}

TEST(Tolerance, OfWordsAndNumbers) {
    struct Row {
        const char* child;
        EAccessMode mode;
    };
    for (const auto& row : {Row{"<AccessMode>R/W</AccessMode>", RW}, Row{"<AccessMode> RW\n</AccessMode>", RW}, Row{"", RW},
                            Row{"<AccessMode>RO</AccessMode>", RO}, Row{"<AccessMode>W</AccessMode>", WO},
                            Row{"<AccessMode>whatever</AccessMode>", RO}, Row{"<AccessMode></AccessMode>", RO}}) {
        DescribedCamera camera("<Register Name=\"R\"><Address>\n 0X1f </Address><Length> 0x04</Length><pPort>Device</pPort>" +
                               std::string(row.child) + "</Register>");
        EXPECT_EQ(row.mode, camera.Mode("R")) << row.child;
        EXPECT_EQ(0x1F, camera.Register("R").GetAddress());
    }
    DescribedCamera camera(R"(
        <Integer Name="Swapped"><Value>5</Value><Min>9</Min><Max>1</Max></Integer><Integer Name="Steps"><Value>5</Value><Inc>0</Inc></Integer>
        <Integer Name="Odd"><Value>1e3</Value><Visibility>Wizard</Visibility><Representation>Roman</Representation></Integer>
        <Boolean Name="One"><Value> 1 </Value></Boolean><Boolean Name="Zero"><Value>0</Value></Boolean><Boolean Name="Word"><Value>False</Value></Boolean>
        <Float Name="Endless"><Value>INF</Value><Min>-INF</Min></Float><Float Name="Hex"><Value>0x10</Value></Float>
        <Float Name="Text"><Value>+1.5E-1</Value></Float>
        <IntSwissKnife Name="Spread"><pVariable Name=" V ">
            Odd </pVariable><Formula>
            ( V &gt;= 1000 ) ?
              7 : 8 </Formula></IntSwissKnife>
        <Integer Name="Set"><Value>1</Value><ValidValuesSet> 1;0x3 ;5;</ValidValuesSet></Integer>)");
    EXPECT_EQ(5, camera.Integer("Swapped").GetValue());
    EXPECT_THROW(camera.Integer("Swapped").SetValue(5), GenICam::OutOfRangeException);
    EXPECT_EQ(1, camera.Integer("Steps").GetInc());
    EXPECT_EQ(1000, camera.Integer("Odd").GetValue());
    EXPECT_EQ(Beginner, camera.Node("Odd").GetVisibility());
    EXPECT_EQ(PureNumber, camera.Integer("Odd").GetRepresentation());
    EXPECT_TRUE(camera.Boolean("One").GetValue());
    EXPECT_FALSE(camera.Boolean("Zero").GetValue() || camera.Boolean("Word").GetValue());
    EXPECT_EQ("inf", camera.Value("Endless").ToString());
    EXPECT_EQ(16.0, camera.Float("Hex").GetValue());
    EXPECT_EQ(0.15, camera.Float("Text").GetValue());
    EXPECT_EQ(7, camera.Integer("Spread").GetValue());
    EXPECT_EQ((std::vector<int64_t>{1, 3, 5}), camera.Integer("Set").GetListOfValidValues());
    EXPECT_TRUE(camera.Faults().empty());
}

TEST(Tolerance, OfReferencesAcrossKinds) {
    DescribedCamera camera(
        R"(<Category Name="C"><pFeature>Gone</pFeature><pFeature>Cmd</pFeature><pFeature>Device</pFeature><pFeature>E</pFeature></Category>
        <Enumeration Name="E"><EnumEntry Name="Low"><Value>1</Value><NumericValue>0.5</NumericValue></EnumEntry><EnumEntry Name="High"><Value>4</Value></EnumEntry>
          <Value>4</Value><pSelected>C</pSelected><pSelected>Cmd</pSelected><pSelected>Raw</pSelected><pSelected>S</pSelected><pSelected>Gone</pSelected></Enumeration>
        <Command Name="Cmd"><pValue>R</pValue><CommandValue>1</CommandValue></Command>
        <Register Name="Raw"><Address>8</Address><Length>2</Length><pPort>Device</pPort></Register><String Name="S"><Value>x</Value></String>
        <Boolean Name="OverEnum"><pValue>E</pValue><OnValue>4</OnValue><OffValue>1</OffValue></Boolean>
        <Integer Name="OverFloat"><pValue>Half</pValue></Integer><Float Name="Half"><Value>7.5</Value></Float>
        <Integer Name="OverConverter"><pValue>Conv</pValue></Integer>
        <Converter Name="Conv"><FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom><pValue>R</pValue></Converter>
        <Float Name="OverEnumeration"><pValue>E</pValue></Float>
        <Integer Name="Guarded"><pIsAvailable>OverEnum</pIsAvailable><pIsLocked>Gone</pIsLocked><pMax>Gone</pMax><Value>3</Value></Integer>)" +
        int_reg("R", 0));
    FeatureList_t list;
    camera.As<ICategory>("C").GetFeatures(list);
    EXPECT_EQ(2u, list.size()) << "the command and the enumeration; a port has no value to show";
    camera.As<ISelector>("E").GetSelectedFeatures(list);
    EXPECT_EQ(4u, list.size());
    EXPECT_TRUE(camera.Boolean("OverEnum").GetValue());
    EXPECT_EQ(7, camera.Integer("OverFloat").GetValue());
    camera.memory.Put(0, {9});
    EXPECT_EQ(4, camera.Integer("OverConverter").GetValue());
    camera.Float("OverEnumeration").SetValue(0.7);
    EXPECT_EQ("Low", camera.Value("E").ToString());
    EXPECT_EQ(0.5, camera.Float("OverEnumeration").GetValue());
    EXPECT_EQ(NA, camera.Mode("Guarded"));
    camera.Boolean("OverEnum").SetValue(true);
    EXPECT_EQ(RW, camera.Mode("Guarded")) << "a condition that is not there is none";
    EXPECT_EQ(4u, camera.Faults().size());
}

TEST(Tolerance, OfEntries) {
    std::string entries;
    for (int i = 0; i < 331; ++i)
        entries += "<EnumEntry Name=\"E" + std::to_string(i) + "\"><Value>" + std::to_string(i * 3) + "</Value></EnumEntry>";
    DescribedCamera camera("<Enumeration Name=\"Large\">" + entries + "<Value>990</Value></Enumeration>" +
                           R"(<Integer Name="EnumEntry_A_B_C"><Value>7</Value></Integer>
        <Enumeration Name="A"><EnumEntry Name="B_C"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>
        <Enumeration Name="A_B"><EnumEntry Name="C"><Value>2</Value></EnumEntry><EnumEntry Name="2nd"><Value>3</Value></EnumEntry>
          <EnumEntry Name="NoValue"/><EnumEntry><Value>5</Value></EnumEntry><Value>2</Value></Enumeration>
        <EnumEntry Name="EnumEntry_Speed_Fast"><Value>1</Value><Symbolic>Fast</Symbolic></EnumEntry><EnumEntry Name="Plain"><Value>2</Value></EnumEntry>
        <Enumeration Name="Outside"><pEnumEntry>EnumEntry_Speed_Fast</pEnumEntry><pEnumEntry>Plain</pEnumEntry><Value>1</Value></Enumeration>)");
    EXPECT_EQ("E330", camera.Value("Large").ToString());
    for (const int i : {0, 170, 330})
        EXPECT_EQ(i * 3, camera.Enumeration("Large").GetEntryByName(("E" + std::to_string(i)).c_str())->GetValue());
    EXPECT_EQ(7, camera.Integer("EnumEntry_A_B_C").GetValue()) << "another node has the name that an entry would get";
    EXPECT_EQ("B_C", camera.Value("A").ToString());
    EXPECT_EQ("C", camera.Value("A_B").ToString());
    camera.Enumeration("A_B").FromString("2nd");
    EXPECT_EQ(3, camera.Enumeration("A_B").GetIntValue());
    EXPECT_EQ(&camera.Node("EnumEntry_A_B_2nd"), camera.Enumeration("A_B").GetEntry(3)->AsNode());
    EXPECT_EQ("Fast", camera.Value("Outside").ToString());
    EXPECT_EQ("Plain", camera.Enumeration("Outside").GetEntry(2)->GetSymbolic());
    StringList_t names;
    camera.Enumeration("A_B").GetSymbolics(names);
    EXPECT_FALSE(names.contains("NoValue"));
}

