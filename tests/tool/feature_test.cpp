// Features on the command line: the tree, reading, writing, commands, and the words for what is refused.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <algorithm>

#include "kiv_process.h"
#include "support/patterns.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

json feature_named(const json& features, const std::string& name) {
    const auto found =
        std::find_if(features.begin(), features.end(), [&](const json& feature) { return feature["name"] == name; });
    return found != features.end() ? *found : json();
}

TEST(KivFeatures, TellValuesLimitsAndEntries) {
    Bench bench;
    const Result run = bench.Kiv({"features", "0", "--json"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const json features = run.Json()["features"];
    const json width = feature_named(features, "Width");
    EXPECT_EQ(width["type"], "integer");
    EXPECT_EQ(width["access"], "RW");
    EXPECT_EQ(width["value"], 320);
    EXPECT_EQ(width["max"], 320);
    EXPECT_GT(width["inc"], 0);
    EXPECT_EQ(width["category"], json({"ImageFormatControl"}));
    const json exposure = feature_named(features, "ExposureTime");
    EXPECT_EQ(exposure["type"], "float");
    EXPECT_EQ(exposure["unit"], "us");
    EXPECT_LT(exposure["min"], exposure["max"]);
    const json format = feature_named(features, "PixelFormat");
    EXPECT_TRUE(std::any_of(format["entries"].begin(), format["entries"].end(),
                            [&](const json& entry) { return entry["name"] == format["value"]; }));
    const json gain = feature_named(features, "Gain");
    EXPECT_EQ(gain["selected_by"], json({"GainSelector"}));
    EXPECT_FALSE(gain.contains("selects"));
    EXPECT_EQ(feature_named(features, "GainSelector")["selects"], json({"Gain", "GainFactor"}));
    for (const json& feature : features) EXPECT_FALSE(feature.contains("error")) << feature;
}

TEST(KivFeatures, ShowFewerAtALowerLevelAndOneCategoryAlone) {
    Bench bench;
    const auto count = [&](const Words& more) {
        Words words{"features", "0", "--json"};
        words.insert(words.end(), more.begin(), more.end());
        return bench.Kiv(words).Json()["features"].size();
    };
    EXPECT_LT(count({"--level", "beginner"}), count({"--level", "guru"}));
    EXPECT_LE(count({}), count({"--level", "invisible", "--all"}));
    const json only = bench.Kiv({"features", "0", "AnalogControl", "--json"}).Json()["features"];
    EXPECT_FALSE(feature_named(only, "Gain").is_null());
    EXPECT_TRUE(feature_named(only, "Width").is_null());
}

TEST(KivFeatures, PrintATreeAndExplainOne) {
    Bench bench;
    const Result tree = bench.Kiv({"features", "0"});
    EXPECT_EQ(tree.exit, 0);
    EXPECT_THAT(tree.out,
                AllOf(kiv_test::HasLike("\nImageFormatControl\n"), kiv_test::HasLike("\n  Width +RW  320 +[0-9]+ \\.\\. 320"),
                      kiv_test::HasLike("\n  AcquisitionStart +WO +\\(command\\)")));
    EXPECT_THAT(bench.Kiv({"features", "0", "PixelFormat"}).out, AllOf(HasSubstr("enumeration"), HasSubstr("BayerRG12p")));
    EXPECT_THAT(bench.Kiv({"features", "0", "Gain"}).out, HasSubstr("  selected by    GainSelector=All\n"));
    EXPECT_THAT(bench.Kiv({"features", "0", "GainSelector"}).out, HasSubstr("  selects        Gain, GainFactor\n"));
}

TEST(KivSet, LastsIntoTheNextProcess) {
    Bench bench;
    const Result set = bench.Kiv({"set", "0", "Width=160", "PixelFormat=BayerRG12p", "ExposureTime=1500", "ReverseX=On"});
    ASSERT_EQ(set.exit, 0) << set.err;
    EXPECT_THAT(set.out, HasSubstr("Width=160\nPixelFormat=BayerRG12p\n"));
    EXPECT_EQ(bench.Kiv({"get", "0", "Width", "PixelFormat"}).out, "Width=160\nPixelFormat=BayerRG12p\n");
    EXPECT_EQ(bench.Kiv({"get", "0", "Width", "--value"}).out, "160\n");
    const json features = bench.Kiv({"get", "0", "ExposureTime", "ReverseX", "--json"}).Json()["features"];
    EXPECT_DOUBLE_EQ(features[0]["value"], 1500.0);
    EXPECT_EQ(features[1]["value"], true);
}

TEST(KivSet, NamesCallStatusReasonAndNode) {
    Bench bench;
    const Result run = bench.Kiv({"set", "0", "Height=100", "Width=99999"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, AllOf(testing::StartsWith("kiv: K_Camera_SetValueString(\"Width\") failed: K_ST_GC_ERROR (-10002): "),
                               HasSubstr("99999"), HasSubstr("320"), HasSubstr("[node Width]")));
    EXPECT_EQ(run.out, "Height=100\n");
    const Result read_only = bench.Kiv({"set", "0", "DeviceVendorName=x"});
    EXPECT_EQ(read_only.exit, 1);
    EXPECT_THAT(read_only.err, HasSubstr("[node DeviceVendorName]"));
}

TEST(KivSet, FindsWrongWordsBeforeItWritesAnything) {
    Bench bench;
    const Result typo = bench.Kiv({"set", "0", "Width=160", "Hieght=100"});
    EXPECT_EQ(typo.exit, 1);
    EXPECT_THAT(typo.err, HasSubstr("Did you mean Height?"));
    const Result no_boolean = bench.Kiv({"set", "0", "Width=160", "ReverseX=yes"});
    EXPECT_EQ(no_boolean.exit, 2);
    EXPECT_EQ(bench.Kiv({"get", "0", "Width", "--value"}).out, "320\n");
}

TEST(KivGet, SaysWhyThereIsNoValue) {
    Bench bench;
    EXPECT_THAT(bench.Kiv({"get", "0", "AcquisitionStart"}).err, HasSubstr("is a command"));
    const Result unknown = bench.Kiv({"get", "0", "Widht"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_THAT(unknown.err, AllOf(HasSubstr("K_Camera_GetNodeByName(\"Widht\")"), HasSubstr("Did you mean Width?")));
}

TEST(KivExec, RunsCommandsAndNothingElse) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"set", "0", "Width=160", "UserSetSelector=UserSet1"}).exit, 0);
    ASSERT_EQ(bench.Kiv({"exec", "0", "UserSetSave"}).exit, 0);
    ASSERT_EQ(bench.Kiv({"set", "0", "Width=320"}).exit, 0);
    const Result load = bench.Kiv({"exec", "0", "UserSetLoad"});
    EXPECT_EQ(load.exit, 0) << load.err;
    EXPECT_EQ(bench.Kiv({"get", "0", "Width", "--value"}).out, "160\n");
    EXPECT_EQ(bench.Kiv({"exec", "0", "Width"}).exit, 1);
}

TEST(KivXml, IsTheDescriptionItself) {
    Bench bench;
    const Result run = bench.Kiv({"xml", "1"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out,
                AllOf(testing::StartsWith("<?xml"), HasSubstr("<RegisterDescription"), HasSubstr("</RegisterDescription>")));
    EXPECT_EQ(bench.Kiv({"xml", "1", "-o", bench.In("camera.xml")}).exit, 0);
    EXPECT_EQ(bench.Read("camera.xml"), run.out);
    const Result producer = bench.Kiv({"xml", "1", "--producer"});
    EXPECT_EQ(producer.exit, 0) << producer.err;
    EXPECT_THAT(producer.out, AllOf(HasSubstr("<RegisterDescription"), Not(testing::Eq(run.out))));
}

}  // namespace
