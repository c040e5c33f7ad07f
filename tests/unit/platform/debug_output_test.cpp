#include <gtest/gtest.h>
#include <kiv/platform/debug_output.h>
#include <kiv/platform/event.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace kiv::platform;

namespace {

constexpr Milliseconds patience{20'000};

void collect(const char* text, void* context) { *static_cast<std::string*>(context) += text; }

class DebugOutput : public testing::Test {
protected:
    ~DebugOutput() override { set_debug_sink(nullptr, nullptr); }
};

TEST_F(DebugOutput, TheSinkGetsNarrowAndWideTextsAsUtf8) {
    debug_print("nobody listens");
    std::string seen;
    set_debug_sink(collect, &seen);
    debug_print("one\n");
    debug_print(L"tw\u00F6\n");
    debug_print(std::string_view("three and more").substr(0, 5));
    set_debug_sink(nullptr, nullptr);
    debug_print("lost");
    EXPECT_EQ("one\ntw\xC3\xB6\nthree", seen);
}

TEST_F(DebugOutput, ASinkMayReplaceItselfAndMayThrow) {
    static std::string seen;
    seen.clear();
    set_debug_sink(
        [](const char* text, void*) {
            set_debug_sink(collect, &seen);
            seen += std::string("first ") + text;
            throw 1;
        },
        nullptr);
    debug_print("a");
    debug_print("b");
    EXPECT_EQ("first ab", seen);
}

TEST_F(DebugOutput, ReplacingWaitsUntilTheFormerSinkIsLeft) {
    struct Context {
        Event inside{ResetMode::manual}, go_on{ResetMode::manual};
        std::atomic<bool> left{false};
    } context;
    set_debug_sink(
        [](const char*, void* c) {
            auto& in = *static_cast<Context*>(c);
            in.inside.Set();
            in.go_on.Wait(patience);
            in.left = true;
        },
        &context);
    std::thread printing([] { debug_print("x"); });
    ASSERT_TRUE(context.inside.Wait(patience));
    std::thread helper([&] { context.go_on.Set(); });
    set_debug_sink(nullptr, nullptr);
    EXPECT_TRUE(context.left) << "the context could go now, while somebody uses it";
    printing.join();
    helper.join();
}

TEST_F(DebugOutput, ThreadsMayPrintWhileTheSinkChanges) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            while (!stop) debug_print("x");
        });
    for (int i = 0; i < 200; ++i) {
        std::atomic<int> calls{0};  // gone at the end of each round
        set_debug_sink([](const char*, void* c) { ++*static_cast<std::atomic<int>*>(c); }, &calls);
        std::this_thread::yield();
        set_debug_sink(nullptr, nullptr);
    }
    stop = true;
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
