// Values as texts.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

std::string number(const char* kind, std::string_view value, std::string_view representation) {
    return "<" + std::string(kind) + " Name=\"F\"><Value>" + std::string(value) + "</Value><Representation>" +
           std::string(representation) + "</Representation></" + kind + ">";
}

}  // namespace

TEST(IntegerText, FollowsTheRepresentation) {
    struct Row {
        const char *value, *representation, *text;
    };
    for (const auto& row :
         {Row{"-12", "Linear", "-12"}, Row{"255", "HexNumber", "0xff"}, Row{"-1", "HexNumber", "0xffffffffffffffff"},
          Row{"0xC0A80102", "IPV4Address", "192.168.1.2"}, Row{"0x0A0B0C0D0E0F", "MACAddress", "0a:0b:0c:0d:0e:0f"},
          Row{"-1", "IPV4Address", "-1"}, Row{"1", "Boolean", "1"}}) {
        DescribedCamera camera(number("Integer", row.value, row.representation));
        EXPECT_EQ(row.text, camera.Integer("F").ToString());
        const auto value = camera.Integer("F").GetValue();
        camera.Integer("F").SetValue(0);
        camera.Integer("F").FromString(row.text);
        EXPECT_EQ(value, camera.Integer("F").GetValue()) << row.text;
    }
    DescribedCamera camera(number("Integer", "0", "Linear"));
    for (const auto* text : {"", " ", "12x", "0x", "1.5", "1.2.3", "1.2.3.256", "aa:bb", "--1", "99999999999999999999999"})
        EXPECT_NODE_ERROR(InvalidArgumentException, camera.Integer("F").FromString(text), "F", "the value is invalid");
    camera.Integer("F").FromString(" 0x10 ");
    EXPECT_EQ(16, camera.Integer("F").GetValue());
}

TEST(FloatText, ReadsBackAsTheSameNumber) {
    DescribedCamera camera(number("Float", "0", "Linear"));
    auto& feature = camera.Float("F");
    for (const double value : {0.199, 0.1, 1e-300, -1234567.890625, 1e22, 5000.0, 1.0 / 3.0}) {
        feature.SetValue(value);
        const auto text = feature.ToString();
        feature.SetValue(0);
        feature.FromString(text);
        EXPECT_EQ(value, feature.GetValue()) << text;
    }
    feature.SetValue(0.199);
    EXPECT_EQ("0.199", feature.ToString());
    feature.FromString("1e3");
    EXPECT_EQ(1000.0, feature.GetValue());
    for (const auto* text : {"", "1,5", "1.5 dB", "abc"})
        EXPECT_NODE_ERROR(InvalidArgumentException, feature.FromString(text), "F", "the value is invalid");
    EXPECT_THROW(feature.FromString("nan"), GenICam::OutOfRangeException);
    EXPECT_THROW(feature.SetValue(std::numeric_limits<double>::infinity()), GenICam::OutOfRangeException);
}

TEST(OtherTexts, AreTheOnesThatFilesHold) {
    DescribedCamera camera(
        R"(<Boolean Name="B"><Value>1</Value></Boolean><Command Name="C"><pValue>R</pValue><CommandValue>6</CommandValue></Command>
        <String Name="S"><Value>a b</Value></String>
        <Enumeration Name="E"><EnumEntry Name="X"><Value>0</Value></EnumEntry><Value>0</Value></Enumeration>)" +
        int_reg("R", 0));
    for (const auto& [text, value] : {std::pair("true", true), {"FALSE", false}, {"1", true}, {" 0 ", false}, {"True", true}}) {
        camera.Boolean("B").FromString(text);
        EXPECT_EQ(value, camera.Boolean("B").GetValue()) << text;
    }
    EXPECT_EQ("0", camera.Command("C").ToString());
    camera.Command("C").FromString("0");
    EXPECT_EQ(0, camera.memory.writes);
    camera.Command("C").FromString("1");
    EXPECT_EQ((std::vector<int>{6}), camera.memory.At(0, 1));
    EXPECT_EQ("6", camera.Command("C").ToString());
    camera.String("S").FromString("tab\tand more");
    EXPECT_EQ("tab\tand more", camera.String("S").ToString());
    EXPECT_EQ(INT64_MAX, camera.String("S").GetMaxLength());
    EXPECT_EQ("X", camera.Value("EnumEntry_E_X").ToString());
    EXPECT_NODE_ERROR(AccessException, camera.Value("EnumEntry_E_X").FromString("X"), "EnumEntry_E_X", "Node is not writable.");
}
