// Finding producers and cameras, and what kiv says when they are not there.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include "kiv_process.h"
#include "support/patterns.h"

using namespace tool_test;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

TEST(KivCommandLine, TellsVersionAndHelpAndRefusesWhatItDoesNotKnow) {
    Bench bench;
    const Result version = bench.Kiv({"--version"});
    EXPECT_EQ(version.exit, 0);
    EXPECT_THAT(version.out, kiv_test::IsLike("kiv [0-9.]+ \\(library [0-9.]+\\)\n"));
    for (const char* command : {"list", "info", "features", "get", "set", "exec", "watch", "xml", "tree", "grab", "producers"}) {
        const Result help = bench.Kiv({command, "--help"});
        EXPECT_EQ(help.exit, 0) << command;
        EXPECT_THAT(help.out, HasSubstr("Examples:")) << command;
    }
    const std::vector<Words> wrong{
        {}, {"lst"}, {"get", "0"}, {"grab", "0"}, {"grab", "0", "-o", "x", "--format", "gif"}, {"set", "0", "Width"}};
    for (const Words& words : wrong) {
        const Result run = bench.Kiv(words);
        EXPECT_EQ(run.exit, 2) << testing::PrintToString(words);
        EXPECT_THAT(run.err, Not(IsEmpty()));
    }
}

TEST(KivList, TellsEachCameraForPeopleAndForPrograms) {
    Bench bench;
    const Result text = bench.Kiv({"list"});
    EXPECT_EQ(text.exit, 0) << text.err;
    EXPECT_THAT(text.out, AllOf(HasSubstr("  0  Colour   SN A1   TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_A1    free  \"left\"")));
    const auto cameras = bench.Kiv({"list", "--json"}).Json()["cameras"];
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[1]["index"], 1);
    EXPECT_EQ(cameras[1]["id"], "TL=>KIV_SIM , INT=>SIM1 , DEV=>SIM1_B2");
    EXPECT_EQ(cameras[1]["serial"], "B2");
    EXPECT_EQ(cameras[1]["user_name"], "right");
    EXPECT_EQ(cameras[1]["state"], "free");
}

TEST(KivList, SaysThatThereIsNone) {
    Bench bench;
    bench.SetCameras(nlohmann::json::array());
    const Result run = bench.Kiv({"list", "--json"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.Json()["cameras"], IsEmpty());
    EXPECT_EQ(bench.Kiv({"get", "0", "Width"}).exit, 3);
}

TEST(KivCamera, IsNamedByIndexIdentifierSerialOrUserName) {
    Bench bench;
    for (const char* word :
         {"1", "B2", "right", "SIM1_B2", "TL=>KIV_SIM , INT=>SIM1 , DEV=>SIM1_B2", "serial:B2", "name:right", "index:1"}) {
        const Result run = bench.Kiv({"info", word, "--json"});
        EXPECT_EQ(run.exit, 0) << word << run.err;
        EXPECT_EQ(run.Json()["serial"], "B2") << word;
    }
    for (const char* word : {"2", "b2", "index:B2", ""}) {
        const Result run = bench.Kiv({"info", word});
        EXPECT_EQ(run.exit, 4) << word;
        EXPECT_THAT(run.err, HasSubstr("DEV=>SIM0_A1")) << word;
    }
}

TEST(KivCamera, IsNotGuessedWhenTheWordFitsTwo) {
    Bench bench;
    bench.SetCameras(
        {{{"id", "SIM0"}, {"cameras", {{{"serial", "1"}, {"user_id", "left"}}, {{"serial", "S2"}, {"user_id", "left"}}}}}});
    for (const char* word : {"left", "1"}) {
        const Result run = bench.Kiv({"info", word});
        EXPECT_EQ(run.exit, 4);
        EXPECT_THAT(run.err, AllOf(HasSubstr("could be 2 cameras"), HasSubstr("DEV=>SIM0_S2"), HasSubstr("serial:")));
    }
    EXPECT_EQ(bench.Kiv({"info", "serial:1", "--json"}).Json()["index"], 0);
    EXPECT_EQ(bench.Kiv({"info", "index:1", "--json"}).Json()["serial"], "S2");
}

TEST(KivCamera, ThatIsOpenElsewhereIsBusyAndFreeAgainAfterwards) {
    Bench bench;
    const auto holder = bench.Start({"grab", "A1", "-n", "0", "-o", bench.In("held"), "--format", "raw"});
    ASSERT_TRUE(eventually([&] { return exists(bench.In("held/frame_000001.raw")); }));
    const Result busy = bench.Kiv({"info", "A1"});
    EXPECT_EQ(busy.exit, 4);
    EXPECT_THAT(busy.out, HasSubstr("Colour"));
    EXPECT_THAT(busy.err, AllOf(HasSubstr("K_Camera_Open_Proxy(\"TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_A1\") failed: K_ST_"),
                                HasSubstr("another program")));
    EXPECT_EQ(bench.Kiv({"list", "--json"}).Json()["cameras"][0]["state"], "busy");
    if (!kiv_test::Process::CanInterrupt()) GTEST_SKIP() << "no console here to press Ctrl-C on";
    holder->PressCtrlC();
    EXPECT_EQ(holder->Wait().exit, 0);
    EXPECT_EQ(bench.Kiv({"info", "A1"}).exit, 0);
}

TEST(KivCamera, ThatIsUnpluggedIsNotThere) {
    Bench bench;
    bench.Write("unplugged", "");
    EXPECT_EQ(bench.Kiv({"list", "--json"}).Json()["cameras"].size(), 1u);
    EXPECT_EQ(bench.Kiv({"info", "A1"}).exit, 4);
}

TEST(KivRegistryOption, NamesTheFileAndTheLineThatAreWrong) {
    Bench bench;
    const Result missing = bench.Kiv({"list", "--registry", bench.In("none.xml")});
    EXPECT_EQ(missing.exit, 3);
    EXPECT_THAT(missing.err, AllOf(HasSubstr("none.xml"), HasSubstr("K_ST_IO (-1010)")));
    const std::string wrong_line =
        bench.Write("broken.xml", "<KivRegistry version=\"1\">\n<Producers>\n<Producer kex=\"X\"/>\n</Producers></KivRegistry>");
    const Result broken = bench.Kiv({"list", "--registry", wrong_line});
    EXPECT_EQ(broken.exit, 3);
    EXPECT_THAT(broken.err, HasSubstr("broken.xml:3"));
    const Result empty = bench.Kiv({"list", "--registry", write_registry(bench.Folder(), "empty.xml", {})});
    EXPECT_EQ(empty.exit, 3);
    EXPECT_THAT(empty.err, HasSubstr("lists no producer"));
}

TEST(KivRegistry, OfTheInstallationIsToldWrongWithFileAndLineToo) {
    Bench bench;
    bench.Write("Registry_64.xml", "<KivRegistry version=\"1\">\n<Producer/>\n</KivRegistry>");
    bench.SetVariable("KIV_SDK_DATA", bench.In(""));
    const Result run = bench.Kiv({"list"});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.err, HasSubstr("Registry_64.xml:2"));
}

TEST(KivProducers, TellsWhyOneWasRefused) {
    Bench bench;
    bench.Write("text.cti", "this is no library");
    const std::string registry = write_registry(
        bench.Folder(), "mixed.xml", {{"TEXT", "text.cti"}, {"GONE", "/nowhere/gone.cti"}, {"OFF", "text.cti", "false"}});
    const Result run = bench.Kiv({"producers", "--json", "--registry", registry});
    EXPECT_EQ(run.exit, 3);
    const auto producers = run.Json()["producers"];
    ASSERT_EQ(producers.size(), 3u);
    for (const int refused : {0, 1}) {
        EXPECT_EQ(producers[refused]["state"], "refused");
        EXPECT_NE(producers[refused]["status"], 0);
        EXPECT_NE(producers[refused]["reason"], "");
    }
    EXPECT_EQ(producers[2]["state"], "disabled");
    EXPECT_THAT(bench.Kiv({"producers"}).out, AllOf(HasSubstr("KIV_SIM"), HasSubstr("bound")));
}

}  // namespace
