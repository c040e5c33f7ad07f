// kiv view, on a screen of the test's own: what it shows and counts, its keys, and every way to end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kiv_process.h"
#include "support/x_display.h"

using namespace tool_test;
using kiv_test::VirtualScreen;
using nlohmann::json;
using testing::HasSubstr;

namespace {

/// A bench whose programs see the test's screen.
struct Desk {
    Desk() {
        // SDL leaves what libdbus keeps for the process.
        bench.SetVariable("LSAN_OPTIONS", "print_suppressions=0:suppressions=" + bench.Write("leaks", "leak:libdbus-1.so\n"));
    }
    Window WaitForWindow() const {
        EXPECT_TRUE(eventually([&] { return screen.Find(title) != None; }));
        return screen.Find(title);
    }

    const std::string title = "Colour A1 - kiv";
    VirtualScreen screen;
    Bench bench;
};

TEST(KivView, SaysThatThereIsNoDisplay) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    Bench bench;
    const Result run = bench.Kiv({"view", "0", "-n", "1"});
    EXPECT_EQ(run.exit, 7);
    EXPECT_THAT(run.err, HasSubstr("there is no display"));
}

TEST(KivView, CountsWhatItShowsAndStoresTheWindow) {
    Desk desk;
    const Result run = desk.bench.Kiv({"view", "0", "-n", "5", "--histogram", "--white-balance", "--zoom", "100", "--screenshot",
                                       desk.bench.In("window.png"), "--json"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const json summary = run.Json();
    EXPECT_EQ(summary["ending"], "complete");
    EXPECT_EQ(summary["shown"], 5);
    EXPECT_LE(summary["shown"].get<int>() + summary["skipped"].get<int>(), summary["received"]);
    const std::string png = desk.bench.Read("window.png");
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x80\0\0\x01\x82", 8)) << "640 x 360 and the bar";
}

TEST(KivView, ObeysKeysAndEndsWithItsWindow) {
    Desk desk;
    const auto running = desk.bench.Start({"view", "0", "-o", desk.bench.In("shots"), "--format", "raw"});
    const Window window = desk.WaitForWindow();
    // Saves nothing before the first image.
    EXPECT_TRUE(eventually([&] {
        desk.screen.Key(window, XK_s, true);
        return exists(desk.bench.In("shots/view_000001.raw"));
    }));
    for (const KeySym key : {XK_h, XK_F1, XK_minus, XK_1, XK_f, XK_b, XK_w, XK_o, XK_space, XK_n, XK_c}) {
        desk.screen.Key(window, key, true);
        desk.screen.Key(window, key, false);
    }
    EXPECT_TRUE(eventually([&] {
        for (const auto& entry : std::filesystem::directory_iterator(desk.bench.In("shots")))
            if (entry.path().extension() == ".png") return true;
        return false;
    }));
    desk.screen.AskToClose(window);
    const Result run = running->Wait();
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(" shown, "));
    EXPECT_EQ(desk.bench.Read("shots/view_000001.raw").size(), 80u + 320 * 240);
}

TEST(KivView, EndsWithCtrlCAndSaysWhenImagesFailToCome) {
    Desk desk;
    const auto running = desk.bench.Start({"view", "0"});
    desk.WaitForWindow();
    running->PressCtrlC();
    const Result interrupted = running->Wait();
    EXPECT_EQ(interrupted.exit, 0) << interrupted.err;
    ASSERT_EQ(desk.bench.Kiv({"set", "0", "TriggerMode=On", "TriggerSource=Software"}).exit, 0);
    const Result run = desk.bench.Kiv({"view", "0", "-n", "1", "--timeout", "0.3", "--json"});
    EXPECT_EQ(run.exit, 5);
    EXPECT_EQ(run.Json()["ending"], "timeout");
}

}  // namespace
