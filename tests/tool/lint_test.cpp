// kiv lint: what it prints about description files, good and bad.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

const char* const kFaulty = R"(<RegisterDescription ModelName="Model" VendorName="Vendor" StandardNameSpace="None"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="2" MinorVersion="3" SubMinorVersion="4"
  ProductGuid="p" VersionGuid="v" xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Ratio</pFeature></Category>
<Integer Name="Width"><pValue>Gone</pValue></Integer>
<SwissKnife Name="Ratio"><pVariable Name="R">Reg</pVariable><Formula>1/R</Formula></SwissKnife>
<IntReg Name="Reg"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>
<Port Name="Device"/>
</RegisterDescription>
)";

TEST(KivLint, FindsNothingToBlameInTheSimulatedCamerasDescriptions) {
    Bench bench;
    ASSERT_EQ(bench.Kiv({"xml", "A1", "-o", bench.In("camera.xml")}).exit, 0);
    ASSERT_EQ(bench.Kiv({"xml", "A1", "--producer", "-o", bench.In("producer.xml")}).exit, 0);
    ASSERT_EQ(bench.Kiv({"tree", "--xml", "--open", "-o", bench.In("xml")}).exit, 0);
    for (const char* name : {"camera.xml", "producer.xml", "xml/SIM0_A1.xml"}) {
        const Result run = bench.Kiv({"lint", bench.In(name), "--read", "--json"});
        const json report = run.Json();
        EXPECT_EQ(run.exit, 0) << run.out;
        EXPECT_EQ(report["errors"], 0) << name;
        EXPECT_EQ(report["warnings"], 0) << name;
        EXPECT_GT(report["reading"]["kinds"]["IntReg"]["values"], 5);
        EXPECT_GT(report["nodes"], 10);
    }
}

TEST(KivLint, TellsFileLineNodeAndWhatIsWrong) {
    Bench bench;
    const std::string file = bench.Write("faulty.xml", kFaulty);
    const Result run = bench.Kiv({"lint", file, "--read"});
    EXPECT_EQ(run.exit, 6);
    EXPECT_THAT(run.out, AllOf(HasSubstr(file + ":5: error: Width: pValue 'Gone' does not exist"), HasSubstr("2.3.4"),
                               HasSubstr("Vendor"), HasSubstr("SwissKnife"), HasSubstr("Ratio: The formula has no result")));
    const json report = bench.Kiv({"lint", file, "--json"}).Json();
    EXPECT_EQ(report["errors"], report["findings"].size());
    EXPECT_EQ(report["findings"][0]["line"], 5);
    EXPECT_EQ(report["findings"][0]["severity"], "error");
    EXPECT_EQ(report["kinds"]["IntReg"], 1);
    EXPECT_FALSE(report.contains("reading"));
}

TEST(KivLint, TellsWhatIsNoDescriptionApartFromWhatCannotBeRead) {
    Bench bench;
    const Result broken = bench.Kiv({"lint", bench.Write("broken.xml", "<RegisterDescription>\n<Node>\n</RegisterDescription>")});
    EXPECT_EQ(broken.exit, 6);
    EXPECT_THAT(broken.out, AllOf(HasSubstr("broken.xml:3: error: "), HasSubstr("1 error"), Not(HasSubstr("nodes"))));
    const Result missing = bench.Kiv({"lint", bench.In("missing.xml")});
    EXPECT_EQ(missing.exit, 1);
    EXPECT_THAT(missing.err, HasSubstr("missing.xml"));
    EXPECT_EQ(bench.Kiv({"lint", bench.Write("broken.zip", "PK\x03\x04 and nothing else")}).exit, 1);
    EXPECT_EQ(bench.Kiv({"lint"}).exit, 2);
}

}  // namespace
