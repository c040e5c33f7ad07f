// kiv watch: what it prints of features that change, and how it ends.

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <sstream>

#include "kiv_process.h"
#include "support/patterns.h"

using namespace tool_test;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

std::vector<json> lines_of(const std::string& text) {
    std::istringstream stream(text);
    std::vector<json> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(json::parse(line));
    return lines;
}

TEST(KivWatch, PrintsTheValuesAndThenEachChange) {
    Bench bench;
    const Result run =
        bench.Kiv({"watch", "0", "Width", "Timestamp", "--interval", "5", "--count", "4", "--timeout", "30", "--json"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::vector<json> lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0]["name"], "Width");
    EXPECT_EQ(lines[0]["value"], 320);
    EXPECT_TRUE(lines[0]["first"] && lines[1]["first"]);
    for (std::size_t i = 2; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i]["name"], "Timestamp") << "the width does not change";
        EXPECT_FALSE(lines[i]["first"]);
        EXPECT_GT(lines[i]["value"], lines[i - 1]["value"]);
        EXPECT_GE(lines[i]["time"], lines[i - 1]["time"]);
    }
    EXPECT_THAT(bench.Kiv({"watch", "0", "Timestamp", "--count", "1", "--timeout", "30"}).out,
                kiv_test::HasLike("^[0-9-]{10}T[0-9:]{8}\\.[0-9]{3}Z Timestamp=[0-9]+\n"));
}

TEST(KivWatch, EndsWhenNothingChangesForTheTimeout) {
    Bench bench;
    const Result quiet = bench.Kiv({"watch", "0", "Width", "--interval", "10", "--timeout", "0.2"});
    EXPECT_EQ(quiet.exit, 0) << quiet.err;
    EXPECT_THAT(quiet.out, testing::EndsWith(" Width=320\n"));
    const Result short_of = bench.Kiv({"watch", "0", "Width", "--interval", "10", "--timeout", "0.2", "--count", "2"});
    EXPECT_EQ(short_of.exit, 1);
    EXPECT_THAT(short_of.err, HasSubstr("0 of 2 changes"));
}

TEST(KivWatch, EndsOnCtrlCAndLeavesTheCameraFree) {
    if (!kiv_test::Process::CanInterrupt()) GTEST_SKIP() << "no console here to press Ctrl-C on";
    Bench bench;
    const auto running = bench.Start({"watch", "0", "Width", "--interval", "86400000"});
    ASSERT_TRUE(eventually([&] { return bench.Read("run1.out").find("Width=320") != std::string::npos; }));
    running->PressCtrlC();
    const Result run = running->Wait();
    EXPECT_EQ(run.exit, 130) << run.err;
    EXPECT_EQ(bench.Kiv({"get", "0", "Width", "--value"}).out, "320\n");
}

TEST(KivWatch, EndsWhenTheCameraIsUnplugged) {
    Bench bench;
    const auto running = bench.Start({"watch", "A1", "Timestamp", "--interval", "10"});
    ASSERT_TRUE(eventually([&] { return bench.Read("run1.out").find("Timestamp=") != std::string::npos; }));
    bench.Write("unplugged", "");
    const Result run = running->Wait();
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, AllOf(testing::StartsWith("kiv: K_Node_"), HasSubstr("Timestamp")));
}

TEST(KivWatch, RefusesWhatHasNoValueOrDoesNotExist) {
    Bench bench;
    EXPECT_THAT(bench.Kiv({"watch", "0", "AcquisitionStart"}).err, HasSubstr("is a command"));
    const Result typo = bench.Kiv({"watch", "0", "Width", "Hieght"});
    EXPECT_EQ(typo.exit, 1);
    EXPECT_THAT(typo.err, HasSubstr("Did you mean Height?"));
    EXPECT_THAT(typo.out, Not(HasSubstr("Width")));
    EXPECT_EQ(bench.Kiv({"watch", "0", "Width", "--interval", "0"}).exit, 2);
}

}  // namespace
