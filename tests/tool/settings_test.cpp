// kiv save and kiv load, on the simulated cameras: a file brings everything back, and says what it cannot.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kiv_process.h"

using namespace tool_test;
using testing::HasSubstr;

namespace {

TEST(KivSettings, ComeBackFromTheFile) {
    Bench bench;
    for (const std::string camera : {"0", "1"})
        for (const std::string mode : {"auto", "streamable", "all"}) {
            const Result first = bench.Kiv({"save", camera, bench.In("a.xml"), "--mode", mode});
            ASSERT_EQ(first.exit, 0) << first.err;
            EXPECT_THAT(bench.Read("a.xml"), HasSubstr("<FeatureName>ExposureTime</FeatureName>"));
            ASSERT_EQ(bench.Kiv({"set", camera, "ExposureTime=1234", "Width=64", "ReverseX=1"}).exit, 0);
            const Result load = bench.Kiv({"load", camera, bench.In("a.xml")});
            EXPECT_EQ(load.exit, 0) << load.out << load.err;
            ASSERT_EQ(bench.Kiv({"save", camera, bench.In("b.xml"), "--mode", mode}).exit, 0);
            EXPECT_EQ(bench.Read("a.xml"), bench.Read("b.xml")) << camera << " " << mode;
        }
}

TEST(KivSettings, TellWhatTheFileHasWrong) {
    Bench bench;
    bench.Write("c.xml",
                "<Script><CommandList><Command><FeatureName>Nowhere</FeatureName><FeatureValue>1</FeatureValue></Command>"
                "<Command><FeatureName>Width</FeatureName><FeatureValue>1</FeatureValue></Command></CommandList></Script>");
    const Result check = bench.Kiv({"load", "0", bench.In("c.xml"), "--validate"});
    EXPECT_EQ(check.exit, 1);
    EXPECT_THAT(check.out,
                HasSubstr("Error: Feature 'Nowhere' not found in node tree!\nWarning: Feature 'Width' with value '1'"));
    const Result load = bench.Kiv({"load", "0", bench.In("c.xml"), "--load-only"});
    EXPECT_EQ(load.exit, 1);
    EXPECT_THAT(load.out,
                HasSubstr("Node 'Nowhere' not found in node tree! Skipping write\nNode 'Width' reported the following error: '"));
    const Result missing = bench.Kiv({"load", "0", bench.In("none.xml")});
    EXPECT_EQ(missing.exit, 1);
    EXPECT_THAT(missing.err, HasSubstr("none.xml"));
}

}  // namespace
