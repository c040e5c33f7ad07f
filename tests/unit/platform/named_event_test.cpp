#include <gtest/gtest.h>
#include <kiv/platform/event.h>
#include <kiv/platform/paths.h>

#include <atomic>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "child_process.h"

using namespace kiv::platform;
using kiv::test::ChildProcess;

namespace {

constexpr Milliseconds at_once{0};
constexpr Milliseconds patience{20'000};
constexpr int not_there = 3;

std::string own_name(const std::string& what) {
    return "Test/Event " + what + " " + std::to_string(kiv_test::own_process_number());
}

TEST(NamedEvent, LivesAsLongAsSomebodyHoldsIt) {
    const std::string name = own_name("life");
    EXPECT_EQ(nullptr, Event::OpenNamed(name));
    auto made = Event::CreateNamed(name, ResetMode::automatic);
    auto opened = Event::OpenNamed(name);
    ASSERT_TRUE(opened);
    opened->Set();
    EXPECT_TRUE(made->IsSet());
    EXPECT_TRUE(made->Wait(patience));
    EXPECT_FALSE(opened->IsSet()) << "one bit, whoever looks";
    made.reset();
    EXPECT_TRUE(Event::OpenNamed(name)) << "another one still holds it";
    opened.reset();
    EXPECT_EQ(nullptr, Event::OpenNamed(name));
}

TEST(NamedEvent, AnExistingOneKeepsItsMode) {
    const std::string name = own_name("mode");
    const auto manual = Event::CreateNamed(name, ResetMode::manual);
    const auto second = Event::CreateNamed(name, ResetMode::automatic);
    second->Set();
    EXPECT_TRUE(second->Wait(patience));
    EXPECT_TRUE(manual->Wait(patience));
    manual->Reset();
    EXPECT_FALSE(second->Wait(at_once));
}

TEST(NamedEvent, ManySetsAreOneSignal) {
    const auto event = Event::CreateNamed(own_name("many"), ResetMode::automatic);
    for (int i = 0; i < 100'000; ++i) event->Set();  // more than a pipe could hold
    EXPECT_TRUE(event->Wait(at_once));
    EXPECT_FALSE(event->Wait(at_once));
}

TEST(NamedEvent, AnotherProcessSetsItOnlyWhereItExists) {
    const std::string name = own_name("process");
    EXPECT_EQ(not_there, ChildProcess({"set-event", name}).Finish());
    const auto event = Event::CreateNamed(name, ResetMode::automatic);
    EXPECT_EQ(0, ChildProcess({"set-event", name}).Finish());
    EXPECT_TRUE(event->Wait(patience));
    EXPECT_FALSE(event->Wait(at_once));
}

TEST(NamedEvent, ANameThatAKilledProcessLeftBehindIsNoEvent) {
    const std::string name = own_name("killed");
    ChildProcess holder({"hold-event", name, "manual"});
    ASSERT_EQ("ready", holder.ReadLine());
    auto event = Event::OpenNamed(name);
    ASSERT_TRUE(event);
    event->Set();
    EXPECT_TRUE(event->Wait(at_once) && event->Wait(at_once)) << "the mode came along";
    event.reset();
    EXPECT_TRUE(Event::OpenNamed(name));
    holder.Kill();
    EXPECT_EQ(nullptr, Event::OpenNamed(name));
    const auto fresh = Event::CreateNamed(name, ResetMode::automatic);
    EXPECT_FALSE(fresh->IsSet()) << "nothing of the dead one's state is left";
}

TEST(NamedEvent, ProcessesShareSignalsWithoutLossOrDoubling) {
    const std::string work_name = own_name("work"), end_name = own_name("end"), taken_name = own_name("taken");
    const auto work = Event::CreateNamed(work_name, ResetMode::automatic);
    const auto taken = Event::CreateNamed(taken_name, ResetMode::automatic);
    const auto end = Event::CreateNamed(end_name, ResetMode::manual);
    ChildProcess first({"take-event", work_name, end_name, taken_name}), second({"take-event", work_name, end_name, taken_name});
    ASSERT_EQ("ready", first.ReadLine());
    ASSERT_EQ("ready", second.ReadLine());
    constexpr int rounds = 300;
    for (int i = 1; i <= rounds; ++i) {
        work->Set();
        ASSERT_TRUE(taken->Wait(patience)) << "signal " << i << " was lost";
    }
    end->Set();
    EXPECT_EQ(rounds, std::stoi(first.ReadLine()) + std::stoi(second.ReadLine()));
    EXPECT_EQ(0, first.Finish());
    EXPECT_EQ(0, second.Finish());
}

TEST(NamedEvent, MakersAndClosersAtOnceAgreeOnTheName) {
    const std::string name = own_name("busy");
    int lost = 0;
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)  // these make the last holder's closing and the next one's opening meet
        threads.emplace_back([&] {
            while (!stop) Event::CreateNamed(name, ResetMode::manual);
        });
    for (int round = 0; round < 3000; ++round) {
        const auto held = Event::CreateNamed(name, ResetMode::manual);
        const auto again = Event::OpenNamed(name);  // must be the same one: it is held
        held->Set();
        if (!again || !again->IsSet()) ++lost;
    }
    stop = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, lost);
    for (const auto& entry : std::filesystem::directory_iterator(user_runtime_folder()))
        EXPECT_EQ(std::string::npos, entry.path().string().find(std::to_string(kiv_test::own_process_number())))
            << "left behind: " << entry.path();
}

TEST(NamedEvent, StrangeNamesAreNamesAndNotPaths) {
    const std::string names[] = {own_name("../../../evil"), own_name(path_separator == '/' ? "Global\\x" : "Global"),
                                 own_name("\xC3\xA4 %41\n"), own_name("A")};
    std::vector<std::unique_ptr<Event>> events;
    for (const std::string& name : names) {
        EXPECT_EQ(nullptr, Event::OpenNamed(name)) << name;
        events.push_back(Event::CreateNamed(name, ResetMode::automatic));
    }
    events.front()->Set();
    EXPECT_FALSE(events.back()->IsSet());
    const std::string longest(180, '/');
    const auto with_longest_name = Event::CreateNamed(longest, ResetMode::automatic);
    EXPECT_TRUE(Event::OpenNamed(longest));
    EXPECT_THROW(Event::CreateNamed("", ResetMode::automatic), std::invalid_argument);
    EXPECT_THROW(Event::OpenNamed(std::string(181, 'x')), std::invalid_argument);
}

}  // namespace
