// Event messages of GigE Vision cameras: from the producer's event to the callback of a node.
#include <algorithm>
#include <functional>
#include <future>
#include <thread>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

constexpr GenTL::EVENT_TYPE messages = 1000;
constexpr unsigned event_of_width = 0x9A01;

/// A packet of the control channel with one event and no data.
std::string event_message(unsigned id) {
    std::string packet("\x42\x00\x00\xC0\x00\x10\x00\x01", 8);
    packet += std::string(2, '\0') + static_cast<char>(id >> 8) + static_cast<char>(id & 0xFF) + std::string(12, '\0');
    return packet;
}

/// What the node callback does; it knows nothing but the node.
std::function<void()> on_event;
std::mutex on_event_lock;
void call_on_event(void*) {
    std::lock_guard guard(on_event_lock);
    if (on_event) on_event();
}

class GigEEvents : public ScriptedFactory {
protected:
    GigEEvents() : ScriptedFactory(scripted_gev()) {}
    void TearDown() override {
        ScriptedFactory::TearDown();
        Do(nullptr);
    }

    void Do(std::function<void()> what) {
        std::lock_guard guard(on_event_lock);
        on_event = std::move(what);
    }
    void Open() {
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        ASSERT_TRUE(producer->WaitForCalls("EventGetData", 1)) << "the thread waits for messages";
        ASSERT_STATUS(K_ST_SUCCESS, K_Node_RegisterCallback(Node("Width"), call_on_event));
    }
    void Raise(const std::string& message) { EXPECT_TRUE(producer->Raise(&producer->FirstDevice(), messages, message)); }
    bool WaitFor(std::size_t count) {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, std::chrono::seconds(10), [&] { return events >= count; });
    }
    void Count() {
        std::lock_guard guard(lock);
        ++events;
        thread = std::this_thread::get_id();
        changed.notify_all();
    }

    std::mutex lock;
    std::condition_variable changed;
    std::size_t events = 0;
    std::thread::id thread;
};

TEST_F(GigEEvents, ReachTheNodesThatCarryTheirId) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Do([&] { Count(); });
    auto registered = producer->CallsOf("GCRegisterEvent").back().numbers;
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(&producer->FirstDevice()), registered[0]) << "the device";
    EXPECT_EQ(static_cast<std::uint64_t>(messages), registered[1]);
    EXPECT_EQ(576u, producer->CallsOf("EventGetData")[0].numbers[1]);
    Raise(event_message(event_of_width));
    EXPECT_TRUE(WaitFor(1));
    EXPECT_TRUE(std::this_thread::get_id() != thread) << "on a thread of its own";
    EXPECT_EQ("0x140", Text("Width"));
    SetRegister(scripted::reg::width, 160);
    EXPECT_EQ("0x140", Text("Width")) << "cached";
    {
        // Several at once, a foreign id and bytes that are no message among them.
        std::lock_guard guard(producer->lock);
        for (auto& message : {event_message(event_of_width), event_message(0x9A02), std::string("rubbish"), std::string(),
                              event_message(event_of_width)})
            Raise(message);
    }
    EXPECT_TRUE(WaitFor(3));
    EXPECT_EQ("0xa0", Text("Width")) << "forgotten by the event";
    CloseCamera();
    EXPECT_EQ(1u, producer->Count("GCUnregisterEvent"));
}

TEST_F(GigEEvents, AMessageLongerThanAPacketDoesNotHoldUpTheOthers) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Do([&] { Count(); });
    Raise(event_message(event_of_width) + std::string(560, 'x'));
    Raise(event_message(event_of_width));
    EXPECT_TRUE(WaitFor(1));
    CloseCamera();
    EXPECT_EQ(1u, events) << "the long one is none";
}

TEST_F(GigEEvents, CamerasWorkWithoutThem) {
    producer->Refuse("GCRegisterEvent", GenTL::GC_ERR_NOT_IMPLEMENTED);
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    ASSERT_TRUE(producer->WaitForCalls("GCRegisterEvent", 1));
    EXPECT_EQ("0x140", Text("Width"));
    CloseCamera();
    EXPECT_EQ(0u, producer->Count("EventGetData"));
    EXPECT_EQ(0u, producer->Count("GCUnregisterEvent"));
}

TEST_F(GigEEvents, AnUnpluggedCameraStillCloses) {
    ASSERT_NO_FATAL_FAILURE(Open());
    for (auto* entry : {"EventGetData", "EventKill", "GCUnregisterEvent", "GCReadPort"})
        producer->Refuse(entry, GenTL::GC_ERR_IO);
    producer->ForgetCalls();
    EXPECT_TRUE(producer->WaitForCalls("EventGetData", 2));
    CloseCamera();
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
}

TEST_F(GigEEvents, ANodeCallbackMayCloseTheCameraAndTheFactory) {
    ASSERT_NO_FATAL_FAILURE(Open());
    std::promise<std::vector<std::string>> left_open;
    Do([&] {
        CloseCamera();
        CloseFactory();
        left_open.set_value(producer->OpenModules());
    });
    Raise(event_message(event_of_width));
    auto answer = left_open.get_future();
    ASSERT_EQ(std::future_status::ready, answer.wait_for(std::chrono::seconds(10)));
    EXPECT_THAT(answer.get(), ::testing::IsEmpty());
    EXPECT_TRUE(debug.WaitFor("ended after its camera")) << "when the callback has returned";
}

TEST_F(GigEEvents, AWaitThatNeverReturnsDoesNotKeepTheCameraOpen) {
    ASSERT_NO_FATAL_FAILURE(Open());
    struct State {
        std::mutex lock;
        std::condition_variable changed;
        bool inside = false, open = false;
    };
    auto state = std::make_shared<State>();
    producer->SetHook("EventGetData", [state](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> {
        std::unique_lock guard(state->lock);
        state->inside = true;
        state->changed.notify_all();
        state->changed.wait(guard, [&] { return state->open; });
        return GenTL::GC_ERR_SUCCESS;  // with whatever is in the buffer
    });
    {
        std::unique_lock guard(state->lock);
        ASSERT_TRUE(state->changed.wait_for(guard, std::chrono::seconds(10), [&] { return state->inside; }));
    }
    CloseCamera();
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
    EXPECT_THAT(debug.Text(), ::testing::HasSubstr("left to itself"));
    producer->ForgetCalls();
    {
        std::lock_guard guard(state->lock);
        state->open = true;
        state->changed.notify_all();
    }
    EXPECT_TRUE(debug.WaitFor("ended after its camera"));
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty()) << "nothing is called for a camera that is closed";
}

}  // namespace
}  // namespace kiv_test
