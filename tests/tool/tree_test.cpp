// kiv tree: the modules of the simulated producer with their features and descriptions.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <algorithm>

#include "kiv_process.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

json value_of(const json& module, const std::string& name) {
    const json features = module.value("features", json::array());
    const auto found =
        std::find_if(features.begin(), features.end(), [&](const json& feature) { return feature["name"] == name; });
    return found != features.end() ? (*found)["value"] : json();
}

TEST(KivTree, ShowsALineForEachModule) {
    Bench bench;
    const Result run = bench.Kiv({"tree"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(testing::StartsWith("KIV_SIM  transport layer  "),
                               HasSubstr("\n  SIM0  interface\n    SIM0_A1  device  "), HasSubstr("Colour"),
                               HasSubstr("SN A1  \"left\"  free\n"), HasSubstr("\n  SIM1  interface\n    SIM1_B2  device  ")));
    // The installed registry lists other producers behind this one.
    const std::string layer = run.out.substr(0, run.out.find("\nKIV_SIM_GEV "));
    EXPECT_EQ(std::count(layer.begin(), layer.end(), '\n'), 4) << layer;
    const json device = bench.Kiv({"tree", "--json"}).Json()["transport_layers"][0]["interfaces"][1]["devices"][0];
    EXPECT_EQ(device["camera"], "TL=>KIV_SIM , INT=>SIM1 , DEV=>SIM1_B2");
    EXPECT_EQ(device["serial"], "B2");
    EXPECT_FALSE(device.contains("features"));
}

TEST(KivTree, ShowsTheFeaturesOfEveryModuleButOfDevicesOnlyWhenItMayOpenThem) {
    Bench bench;
    const json closed = bench.Kiv({"tree", "--features", "--json"}).Json()["transport_layers"][0];
    EXPECT_EQ(value_of(closed, "TLID"), "KIV_SIM");
    for (const int i : {0, 1}) {
        const json interface = closed["interfaces"][i];
        EXPECT_EQ(value_of(interface, "InterfaceID"), interface["id"]);
        EXPECT_FALSE(interface["devices"][0].contains("features"));
    }
    EXPECT_THAT(bench.Kiv({"tree", "--features"}).out, HasSubstr("(features only with --open)"));
    const Result run = bench.Kiv({"tree", "--features", "--open", "--json"});
    EXPECT_EQ(run.exit, 0) << run.err;
    const json opened = run.Json()["transport_layers"][0];
    for (const json& interface : opened["interfaces"])
        EXPECT_EQ(value_of(interface["devices"][0], "DeviceID"), interface["devices"][0]["id"]);
}

TEST(KivTree, LeavesACameraAloneThatIsInUse) {
    Bench bench;
    const auto holder = bench.Start({"watch", "A1", "Timestamp"});
    ASSERT_TRUE(eventually([&] { return bench.Read("run1.out").find("Timestamp=") != std::string::npos; }));
    const Result run = bench.Kiv({"tree", "--features", "--open"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("\"left\"  busy\n      (features only of a camera that is free)"),
                               HasSubstr("\"right\"  free\n      DeviceInformation")));
}

TEST(KivTree, SavesADescriptionOfEachModuleThatHasOne) {
    Bench bench;
    const Result run = bench.Kiv({"tree", "--xml", "--open", "-o", bench.In("xml")});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("<RegisterDescription")));
    for (const char* name : {"KIV_SIM", "SIM0", "SIM1", "SIM0_A1", "SIM1_B2"})
        EXPECT_THAT(bench.Read(std::string("xml/") + name + ".xml"), HasSubstr("</RegisterDescription>")) << name;
    EXPECT_EQ(bench.Read("xml/KIV_SIM.xml"), bench.Kiv({"xml", "A1", "--producer"}).out);
    EXPECT_NE(bench.Read("xml/SIM0_A1.xml"), bench.Kiv({"xml", "A1"}).out) << "the device module is not the camera";
    const Result printed = bench.Kiv({"tree", "--xml"});
    for (const char* name : {"KIV_SIM", "SIM0", "SIM1"})
        EXPECT_THAT(printed.out, HasSubstr(bench.Read(std::string("xml/") + name + ".xml"))) << name;
    EXPECT_THAT(printed.out, Not(HasSubstr(bench.Read("xml/SIM0_A1.xml")))) << "only of devices that are open";
    EXPECT_EQ(bench.Kiv({"tree", "-o", bench.In("xml")}).exit, 2) << "there is nothing to save without --xml";
    EXPECT_EQ(bench.Kiv({"tree", "--xml", "-o", bench.In("xml/KIV_SIM.xml/below")}).exit, 1);
}

TEST(KivTree, EndsWithThreeWithoutAProducer) {
    Bench bench;
    const std::string registry = write_registry(bench.Folder(), "gone.xml", {{"GONE", "/nowhere/gone.cti"}});
    const Result run = bench.Kiv({"tree", "--json", "--registry", registry});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.Json()["transport_layers"], testing::IsEmpty());
}

}  // namespace
