// Values that come from formulas, converters, tables, several nodes at once.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

TEST(Knives, ComputeInTheirOwnKindOfNumber) {
    DescribedCamera camera(R"(
        <IntSwissKnife Name="Int"><pVariable Name="A">A</pVariable><pVariable Name="F">F</pVariable><Formula>(A - 7) / 8 * 8 + F</Formula></IntSwissKnife>
        <SwissKnife Name="Real"><pVariable Name="A">A</pVariable><Constant Name="TEN">10</Constant><Expression Name="HALF">A / 2</Expression>
          <Formula>HALF / TEN</Formula></SwissKnife>
        <Integer Name="View"><pValue>Real</pValue></Integer>
        <Integer Name="A"><Value>647</Value></Integer><Float Name="F"><Value>2.9</Value></Float>)");
    EXPECT_EQ(642, camera.Integer("Int").GetValue());
    EXPECT_DOUBLE_EQ(32.35, camera.Float("Real").GetValue());
    EXPECT_EQ(32, camera.Integer("View").GetValue());
    camera.Integer("A").SetValue(7);
    EXPECT_EQ(2, camera.Integer("Int").GetValue());
    EXPECT_EQ(RO, camera.Mode("Int"));
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Int").SetValue(1), "Int", "Node is not writable.");
}

TEST(Knives, TakeMoreThanTheValueOfANode) {
    DescribedCamera camera(R"(
        <Integer Name="G"><Value>12</Value><Min>10</Min><Max>90</Max><Inc>2</Inc></Integer>
        <Enumeration Name="E"><EnumEntry Name="One"><Value>11</Value><NumericValue>0.5</NumericValue></EnumEntry>
          <EnumEntry Name="Two"><Value>22</Value></EnumEntry><Value>11</Value></Enumeration>
        <IntSwissKnife Name="K"><pVariable Name="G.Max">G</pVariable><pVariable Name="G.Min">G</pVariable><pVariable Name="G.Inc">G</pVariable>
          <pVariable Name="G.Value">G</pVariable><pVariable Name="E.Entry.Two">E</pVariable><pVariable Name="E">E</pVariable>
          <Formula>G.Max * 1000000 + G.Min * 10000 + G.Inc * 1000 + G.Value + E.Entry.Two + E</Formula></IntSwissKnife>
        <SwissKnife Name="S"><pVariable Name="E">E</pVariable><Formula>E</Formula></SwissKnife>
        <Float Name="View"><pValue>E</pValue></Float>)");
    EXPECT_EQ(90102012 + 22 + 11, camera.Integer("K").GetValue());
    EXPECT_EQ(11.0, camera.Float("S").GetValue()) << "a formula takes the entry's integer";
    EXPECT_EQ(0.5, camera.Float("View").GetValue()) << "a float shows the entry's number";
    camera.Float("View").SetValue(9.0);
    EXPECT_EQ("One", camera.Enumeration("E").ToString()) << "0.5 is nearer to 9 than 22 is";
    camera.Float("View").SetValue(20.0);
    EXPECT_EQ("Two", camera.Enumeration("E").ToString());
}

TEST(Knives, ThatFailSayWhoAndWhy) {
    DescribedCamera camera(R"(
        <IntSwissKnife Name="ByZero"><pVariable Name="Z">Z</pVariable><Formula>1 / Z</Formula></IntSwissKnife>
        <IntSwissKnife Name="Unknown"><Formula>NOBODY + 1</Formula></IntSwissKnife>
        <SwissKnife Name="Torn"><Formula>(1 + </Formula></SwissKnife>
        <IntSwissKnife Name="Lost"><pVariable Name="X">Nowhere</pVariable><Formula>X</Formula></IntSwissKnife>
        <IntSwissKnife Name="Good"><Formula>41 + 1</Formula></IntSwissKnife>
        <Integer Name="Z"><Value>0</Value></Integer>)");
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("ByZero").GetValue(), "ByZero", "zero");
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("Unknown").GetValue(), "Unknown", "NOBODY");
    EXPECT_NODE_ERROR(RuntimeException, camera.Float("Torn").GetValue(), "Torn", "faulty");
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Lost").GetValue(), "Lost", "Nowhere");
    EXPECT_EQ(NI, camera.Mode("Lost"));
    EXPECT_EQ(42, camera.Integer("Good").GetValue());
    gcstring_vector errors;
    EXPECT_FALSE(camera.Map().ParseSwissKnifes(&errors));
    EXPECT_EQ(2u, errors.size());
    EXPECT_EQ(1u, camera.Faults().size() - 1) << "the missing name, and the node that needs it";
}

TEST(Converters, LeadToTheDeviceAndBack) {
    DescribedCamera camera(R"(
        <Converter Name="Gain"><pVariable Name="STEP">Step</pVariable><FormulaTo>FROM * 10 / STEP</FormulaTo><FormulaFrom>TO * STEP / 10</FormulaFrom>
          <pValue>Raw</pValue><Unit>dB</Unit><Slope>Increasing</Slope></Converter>
        <Float Name="GainFeature"><pValue>Gain</pValue></Float>
        <Converter Name="Rate"><FormulaTo>1000000 / FROM</FormulaTo><FormulaFrom>1000000 / TO</FormulaFrom><pValue>Period</pValue><Slope>Decreasing</Slope></Converter>
        <IntConverter Name="Lines"><FormulaTo>FROM - 1</FormulaTo><FormulaFrom>TO + 1</FormulaFrom><pValue>Raw</pValue></IntConverter>
        <Converter Name="Wild"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Raw</pValue><Slope>Varying</Slope></Converter>
        <Converter Name="Line"><FormulaTo>FROM / 0.5</FormulaTo><FormulaFrom>TO * 0.5</FormulaFrom><pValue>Stepped</pValue><IsLinear>Yes</IsLinear></Converter>
        <Converter Name="Falling"><FormulaTo>500 - FROM</FormulaTo><FormulaFrom>500 - TO</FormulaFrom><pValue>Stepped</pValue></Converter>
        <Integer Name="Stepped"><Value>0</Value><Min>0</Min><Max>100</Max><Inc>4</Inc></Integer>
        <Integer Name="Step"><Value>1</Value></Integer>
        <Integer Name="Period"><Value>10000</Value><Min>100</Min><Max>1000000</Max></Integer>)" +
                           int_reg("Raw", 0, "", 2));
    camera.Float("GainFeature").SetValue(1.26);
    EXPECT_EQ(13, camera.Integer("Raw").GetValue()) << "12.6 is rounded to the nearest";
    EXPECT_DOUBLE_EQ(1.3, camera.Float("Gain").GetValue());
    EXPECT_DOUBLE_EQ(6553.5, camera.Float("GainFeature").GetMax());
    EXPECT_EQ("dB", camera.Float("GainFeature").GetUnit());
    camera.Integer("Step").SetValue(2);
    EXPECT_DOUBLE_EQ(2.6, camera.Float("Gain").GetValue());
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Float("Gain").SetValue(-1.0), "Gain", "Min = 0");

    auto& rate = camera.Float("Rate");
    EXPECT_DOUBLE_EQ(100.0, rate.GetValue());
    EXPECT_DOUBLE_EQ(1.0, rate.GetMin());
    EXPECT_DOUBLE_EQ(10000.0, rate.GetMax());
    rate.SetValue(50.0);
    EXPECT_EQ(20000, camera.Integer("Period").GetValue());

    camera.Integer("Lines").SetValue(1);
    EXPECT_EQ(0, camera.Integer("Raw").GetValue());
    EXPECT_EQ(1, camera.Integer("Lines").GetMin());
    EXPECT_EQ(-std::numeric_limits<double>::max(), camera.Float("Wild").GetMin());
    EXPECT_EQ(400.0, camera.Float("Falling").GetMin()) << "nobody said that it falls";
    EXPECT_EQ(500.0, camera.Float("Falling").GetMax());
    EXPECT_FALSE(camera.Float("Gain").HasInc());
    EXPECT_NODE_ERROR(LogicalErrorException, camera.Float("Gain").GetInc(), "Gain", "no increment");
    EXPECT_TRUE(camera.Float("Line").HasInc());
    EXPECT_DOUBLE_EQ(2.0, camera.Float("Line").GetInc());
}

TEST(Converter, HasNoLimitWhereItsFormulaHasNoResult) {
    DescribedCamera camera(
        R"(<Converter Name="Rate"><FormulaTo>1000 / FROM</FormulaTo><FormulaFrom>1000 / TO</FormulaFrom><pValue>Period</pValue>
        <Slope>Decreasing</Slope></Converter><Integer Name="Period"><Value>10</Value><Min>0</Min><Max>1000</Max></Integer>)");
    EXPECT_EQ(1.0, camera.Float("Rate").GetMin());
    EXPECT_EQ(std::numeric_limits<double>::max(), camera.Float("Rate").GetMax());
    EXPECT_NODE_ERROR(RuntimeException, camera.Float("Rate").SetValue(0.0, false), "Rate", "no result");
}

TEST(Tables, ChooseByTheirIndex) {
    DescribedCamera camera(R"(
        <Integer Name="T"><pIndex>I</pIndex><ValueIndexed Index="1">100</ValueIndexed><pValueIndexed Index="2">Other</pValueIndexed><ValueDefault>-1</ValueDefault></Integer>
        <Integer Name="Bare"><pIndex>I</pIndex><ValueIndexed Index="1">100</ValueIndexed></Integer>
        <Float Name="TF"><pIndex>I</pIndex><pValueIndexed Index="1">FloatA</pValueIndexed><ValueDefault>0.25</ValueDefault></Float>
        <Float Name="FloatA"><Value>1.5</Value><Unit>ms</Unit><Max>3</Max></Float>
        <Integer Name="Other"><Value>7</Value><Max>9</Max><Unit>px</Unit></Integer><Integer Name="I"><Value>1</Value></Integer>)");
    auto& table = camera.Integer("T");
    EXPECT_EQ(100, table.GetValue());
    EXPECT_EQ("ms", camera.Float("TF").GetUnit());
    EXPECT_EQ(3.0, camera.Float("TF").GetMax());
    table.SetValue(101);
    camera.Integer("I").SetValue(2);
    EXPECT_EQ(7, table.GetValue());
    EXPECT_EQ(9, table.GetMax());
    EXPECT_EQ("px", table.GetUnit());
    table.SetValue(8);
    EXPECT_EQ(8, camera.Integer("Other").GetValue());
    EXPECT_EQ(0.25, camera.Float("TF").GetValue());
    camera.Integer("I").SetValue(3);
    EXPECT_EQ(-1, table.GetValue());
    EXPECT_EQ(NA, camera.Mode("Bare"));
    camera.Integer("I").SetValue(1);
    EXPECT_EQ(101, table.GetValue());
}

TEST(Copies, AreWrittenInOrderAndNarrowTheRange) {
    DescribedCamera camera(R"(<Integer Name="Both"><pValueCopy>B</pValueCopy><pValue>A</pValue></Integer>
        <Integer Name="Torn"><pValue>A</pValue><pValueCopy>Odd</pValueCopy></Integer>
        <Integer Name="A"><Value>1</Value><Min>0</Min><Max>50</Max></Integer><Integer Name="B"><Value>2</Value><Min>-5</Min><Max>20</Max></Integer>
        <Integer Name="Odd"><Value>0</Value><Inc>3</Inc></Integer>)");
    auto& both = camera.Integer("Both");
    EXPECT_EQ(1, both.GetValue());
    EXPECT_EQ(0, both.GetMin());
    EXPECT_EQ(20, both.GetMax());
    both.SetValue(9);
    EXPECT_EQ(9, camera.Integer("A").GetValue());
    EXPECT_EQ(9, camera.Integer("B").GetValue());
    EXPECT_EQ(RO, camera.Mode("Torn"));
}

TEST(ReportedErrors, MakeAWriteFail) {
    DescribedCamera camera(R"(<Integer Name="F"><pError>State</pError><pValue>R</pValue></Integer>
        <Enumeration Name="State"><EnumEntry Name="Fine"><Value>0</Value></EnumEntry>
          <EnumEntry Name="Hot"><ToolTip>Let it cool down.</ToolTip><DisplayName>Too hot</DisplayName><Value>3</Value></EnumEntry><pValue>StateReg</pValue></Enumeration>)" +
                           int_reg("R", 0) + int_reg("StateReg", 4));
    camera.Integer("F").SetValue(1);
    camera.memory.Put(4, {3});
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("F").SetValue(2), "F", "Too hot : Let it cool down.");
    EXPECT_EQ(2, camera.Integer("F").GetValue());
}

TEST(Limits, ComeFromNodesOnlyWhileTheseCanBeRead) {
    DescribedCamera camera(R"(<Integer Name="F"><pValue>R</pValue><pMin>Low</pMin><pMax>High</pMax><pInc>Step</pInc></Integer>
        <Integer Name="Low"><Value>4</Value></Integer><Integer Name="High"><pIsAvailable>On</pIsAvailable><Value>40</Value></Integer>
        <Integer Name="Step"><Value>0</Value></Integer><Integer Name="On"><Value>1</Value></Integer>)" +
                           int_reg("R", 0, "", 1));
    auto& feature = camera.Integer("F");
    EXPECT_EQ(4, feature.GetMin());
    EXPECT_EQ(40, feature.GetMax());
    EXPECT_EQ(1, feature.GetInc()) << "an increment of 0 is none";
    camera.Integer("On").SetValue(0);
    EXPECT_EQ(255, feature.GetMax());
    feature.SetValue(200);
    camera.Integer("Low").SetValue(10);
    EXPECT_EQ(10, feature.GetMin());
}

TEST(ValidValues, AreTheOnlyOnesAllowed) {
    DescribedCamera camera(
        R"(<Integer Name="F"><Value>2</Value><Max>8</Max><ValidValueSet>1; 2;4;8;16</ValidValueSet></Integer>
        <Integer Name="Over"><pValue>F</pValue><Max>4</Max></Integer><Float Name="AsFloat"><pValue>F</pValue></Float>
        <Converter Name="Tenth"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>F</pValue></Converter>)");
    auto& feature = camera.Integer("F");
    EXPECT_EQ((int64_autovector_t{1, 2, 4}), camera.Integer("Over").GetListOfValidValues());
    EXPECT_EQ(listIncrement, camera.Integer("Over").GetIncMode());
    EXPECT_EQ((double_autovector_t{1, 2, 4, 8}), camera.Float("AsFloat").GetListOfValidValues());
    EXPECT_EQ((double_autovector_t{0.1, 0.2, 0.4, 0.8}), camera.Float("Tenth").GetListOfValidValues());
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("Over").SetValue(3), "F", "none of the valid values");
    EXPECT_EQ((int64_autovector_t{1, 2, 4, 8}), feature.GetListOfValidValues());
    EXPECT_EQ(5u, feature.GetListOfValidValues(false).size());
    EXPECT_EQ(listIncrement, feature.GetIncMode());
    EXPECT_NODE_ERROR(OutOfRangeException, feature.SetValue(3), "F", "none of the valid values");
    feature.SetValue(4);
}
