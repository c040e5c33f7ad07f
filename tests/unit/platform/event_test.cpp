#include <gtest/gtest.h>
#include <kiv/platform/event.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

using namespace kiv::platform;

namespace {

constexpr Milliseconds at_once{0};
constexpr Milliseconds patience{20'000};  // what a broken implementation is given before a test gives up

TEST(Event, AutoResetReleasesOneWaitAndManualResetAll) {
    Event automatic(ResetMode::automatic), manual(ResetMode::manual);
    EXPECT_FALSE(automatic.Wait(at_once));
    for (Event* event : {&automatic, &manual}) {
        event->Set();
        event->Set();  // is set already: changes nothing
        EXPECT_TRUE(event->IsSet());
        EXPECT_TRUE(event->IsSet()) << "asking consumes nothing";
    }
    EXPECT_TRUE(automatic.Wait(patience));
    EXPECT_FALSE(automatic.Wait(at_once));
    EXPECT_TRUE(manual.Wait(patience));
    EXPECT_TRUE(manual.Wait(patience));
    manual.Reset();
    EXPECT_FALSE(manual.IsSet());
    automatic.Set();
    automatic.Reset();
    EXPECT_FALSE(automatic.Wait(at_once));
    EXPECT_TRUE(Event(ResetMode::manual, true).Wait(at_once)) << "made set";
}

TEST(Event, WaitAnyTakesTheLowestIndexAndConsumesOnlyThat) {
    Event first(ResetMode::automatic), second(ResetMode::automatic), third(ResetMode::manual);
    Event* const all[] = {&first, &second, &third};
    EXPECT_EQ(std::nullopt, wait_any(all, at_once));
    EXPECT_EQ(std::nullopt, wait_any(all, Milliseconds(5)));
    second.Set();
    third.Set();
    EXPECT_EQ(1u, wait_any(all, patience));
    EXPECT_EQ(2u, wait_any(all, patience)) << "the second was consumed, the third was not";
    first.Set();
    EXPECT_EQ(0u, wait_any(all, patience));
    EXPECT_EQ(2u, wait_any(all, Milliseconds::max())) << "longer than any clock runs";

    Event* const same[] = {&first, &first};
    first.Set();
    EXPECT_EQ(0u, wait_any(same, patience));
    EXPECT_EQ(std::nullopt, wait_any(same, at_once));
}

TEST(Event, WaitAnyRefusesNoEventsAndTooMany) {
    EXPECT_THROW(wait_any({}, at_once), std::invalid_argument);
    Event event(ResetMode::manual, true);
    std::vector<Event*> many(max_wait_events, &event);
    EXPECT_EQ(0u, wait_any(many, at_once));
    many.push_back(&event);
    EXPECT_THROW(wait_any(many, at_once), std::invalid_argument);
}

// Many waiters, many setters: every set that was seen through is taken once, and nobody sleeps on while something is set.
TEST(Event, SeveralWaitersShareSignalsWithoutLossOrDoubling) {
    constexpr int rounds = 3000, waiters = 4;
    Event work(ResetMode::automatic), taken(ResetMode::automatic), end(ResetMode::manual);
    std::atomic<int> count{0};
    int plain = 0;  // guarded by the events alone: the thread sanitizer proves the order
    std::vector<std::thread> threads;
    for (int i = 0; i < waiters; ++i) {
        threads.emplace_back([&] {
            Event* const events[] = {&end, &work};
            while (wait_any(events, infinite) == 1u) {
                ++count;
                ++plain;
                taken.Set();
            }
        });
    }
    for (int i = 1; i <= rounds; ++i) {
        work.Set();
        ASSERT_TRUE(taken.Wait(patience)) << "signal " << i << " was lost";
        ASSERT_EQ(i, plain);
    }
    end.Set();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(rounds, count);
}

TEST(Event, ManualResetReleasesEveryThreadThatWaits) {
    Event gate(ResetMode::manual);
    int written_before = 0;
    std::atomic<int> passed{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            if (gate.Wait(patience)) passed += written_before;
        });
    written_before = 1;
    gate.Set();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(8, passed);
}

TEST(Event, ForeignPointersAreRecognisedWithoutBeingFollowed) {
    int no_event = 0;
    void* const nonsense = reinterpret_cast<void*>(std::uintptr_t{0x10});
    for (void* pointer : {static_cast<void*>(&no_event), nonsense, static_cast<void*>(nullptr)}) {
        EXPECT_EQ(nullptr, find_live_event(pointer));
        EXPECT_FALSE(is_foreign_event(pointer));
        EXPECT_FALSE(set_foreign_event(pointer));
    }
    auto event = std::make_unique<Event>(ResetMode::automatic);
    void* const address = event.get();
    EXPECT_EQ(event.get(), find_live_event(address));
    EXPECT_TRUE(is_foreign_event(address));
    EXPECT_TRUE(set_foreign_event(address));
    EXPECT_TRUE(event->Wait(at_once));
    event.reset();
    EXPECT_FALSE(set_foreign_event(address)) << "the event is gone";
}

}  // namespace
