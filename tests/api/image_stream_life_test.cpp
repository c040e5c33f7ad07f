// The life of an image stream: starts that fail, cameras that go, closing from any side. It always comes back.
#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include "api/image_stream_fixture.h"

namespace kiv_test {
namespace {

TEST_F(ImageStream, AFailureOfTheStartGivesAHandleWithoutStream) {
    struct {
        const char* entry;
        GenTL::GC_ERROR status;
    } failures[] = {{"DevOpenDataStream", GenTL::GC_ERR_ACCESS_DENIED}, {"DevGetDataStreamID", GenTL::GC_ERR_NOT_IMPLEMENTED},
                    {"DSAnnounceBuffer", GenTL::GC_ERR_OUT_OF_MEMORY},  {"DSQueueBuffer", GenTL::GC_ERR_BUSY},
                    {"GCRegisterEvent", GenTL::GC_ERR_NOT_AVAILABLE},   {"DSStartAcquisition", GenTL::GC_ERR_INVALID_BUFFER}};
    for (auto& failure : failures) {
        producer->Refuse(failure.entry, failure.status);
        EXPECT_STATUS(K_ST_INVALID_HANDLE, OpenStream()) << failure.entry;
        producer->Accept(failure.entry);
        ASSERT_NE(nullptr, stream) << failure.entry;
        void* handle = this;
        EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetStreamHandle(stream, &handle));
        EXPECT_EQ(nullptr, handle) << failure.entry;
        EXPECT_EQ((std::vector<std::string>{"TL", "IF0", "CAM0"}), producer->OpenModules()) << failure.entry;
        CloseStream();
        EXPECT_EQ(0u, Register(scripted::reg::params_locked)) << failure.entry;
    }
}

TEST_F(ImageStream, AStreamWithoutADescriptionOfItsOwnSaysSoAndStillRuns) {
    {
        std::lock_guard guard(producer->lock);
        producer->FirstStream().port.urls = {"file:///no/such/stream.xml"};
    }
    EXPECT_STATUS(K_ST_INVALID_HANDLE, OpenStream());
    ASSERT_NE(nullptr, stream);
    Deliver(image_frame(1, 64, 48));
    EXPECT_EQ(1u, images.Next().info.frame_id);
}

TEST_F(ImageStream, ClosingTheCameraEndsItsStream) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    Deliver(image_frame(1, 64, 48));
    images.Next();
    CloseCamera();
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
    EXPECT_EQ((std::vector<std::string>{"DSClose", "DevClose"}), producer->Order({"DSClose", "DevClose"}));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream)) << "the handle is the caller's and still closes";
    stream = nullptr;
}

TEST_F(ImageStream, ClosingTheFactoryEndsItsStreams) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    CloseFactory();
    camera = nullptr;
    EXPECT_THAT(producer->OpenModules(), ::testing::IsEmpty());
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream));
    stream = nullptr;
}

TEST_F(ImageStream, AnUnpluggedCameraEndsNothingButTheImages) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    Deliver(image_frame(1, 64, 48));
    images.Next();
    for (auto* entry : {"EventGetData", "GCReadPort", "GCWritePort", "DSStopAcquisition", "DSFlushQueue", "DSQueueBuffer"})
        producer->Refuse(entry, GenTL::GC_ERR_IO);
    producer->ForgetCalls();
    EXPECT_TRUE(producer->WaitForCalls("EventGetData", 2)) << "the thread goes on asking";
    auto gone = camera;
    std::int64_t value = 0;
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(gone, "Counter", &value));
    for (auto* entry : {"DSFlushQueue"}) producer->Accept(entry);
    CloseStream();
    CloseCamera();
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
}

TEST_F(ImageStream, OpensAgainAfterClosing) {
    for (std::uint64_t round = 1; round <= 3; ++round) {
        ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
        Deliver(image_frame(round, 64, 48));
        EXPECT_EQ(round, images.Next().info.frame_id);
        CloseStream();
    }
}

TEST_F(ImageStream, TwoThreadsMayCloseOneStream) {
    for (int round = 0; round < 10; ++round) {
        ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
        std::vector<K_STATUS_CODES> results(3);
        std::vector<std::thread> closers;
        for (auto& result : results) closers.emplace_back([&] { result = K_Image_CloseStream(stream); });
        for (auto& closer : closers) closer.join();
        std::ranges::sort(results, std::greater{});
        EXPECT_EQ((std::vector<K_STATUS_CODES>{K_ST_SUCCESS, K_ST_INVALID_HANDLE, K_ST_INVALID_HANDLE}), results);
        stream = nullptr;
    }
}

struct Gate {
    std::mutex lock;
    std::condition_variable changed;
    bool entered = false, open = false, left = false;
};

void stay_at_the_gate(void* context, K_IMAGE_INFO*) {
    auto& gate = *static_cast<Gate*>(context);
    std::unique_lock guard(gate.lock);
    gate.entered = true;
    gate.changed.notify_all();
    gate.changed.wait(guard, [&] { return gate.open; });
    gate.left = true;
}

TEST_F(ImageStream, ClosingWaitsUntilTheCallbackHasLeft) {
    Gate gate;
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, &gate, reinterpret_cast<AnyFunction>(stay_at_the_gate), &stream, buffer_size, 0));
    Deliver(image_frame(1, 64, 48));
    std::unique_lock guard(gate.lock);
    gate.changed.wait(guard, [&] { return gate.entered; });
    guard.unlock();
    bool left_before_close_returned = false;
    std::thread closer([&] {
        CloseStream();
        std::lock_guard inside(gate.lock);
        left_before_close_returned = gate.left;
    });
    EXPECT_TRUE(producer->WaitForCalls("DSStopAcquisition", 1)) << "closing has begun";
    guard.lock();
    gate.open = true;
    guard.unlock();
    gate.changed.notify_all();
    closer.join();
    EXPECT_TRUE(left_before_close_returned);
}

TEST_F(ImageStream, AnExceptionOutOfTheProducerDoesNotEndTheProgram) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    std::uint64_t id = 0;
    for (auto* entry : {"DSGetBufferInfo", "DSGetInfo", "DSQueueBuffer", "EventGetData"}) {
        auto thrown = std::make_shared<std::atomic<int>>(0);  // shared: a call may be inside the hook when the test goes on
        producer->SetHook(entry, [thrown](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> {
            if ((*thrown)++ == 0) throw std::runtime_error("a producer that knows no better");
            return std::nullopt;
        });
        Deliver(image_frame(++id, 64, 48));
        EXPECT_TRUE(producer->WaitUntil([&] { return *thrown > 0; })) << entry;
        producer->SetHook(entry, nullptr);
        Deliver(image_frame(++id, 64, 48));
        while (images.Next().info.frame_id != id && !HasFailure()) {
        }
    }
}

THRD_HANDLE closes_itself = nullptr;
std::promise<K_STATUS_CODES> closed_with;
void close_inside(K_IMAGE_INFO*) { closed_with.set_value(K_Image_CloseStream(closes_itself)); }

TEST_F(ImageStream, ClosingInsideTheCallbackDoesNotHang) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, nullptr, reinterpret_cast<AnyFunction>(close_inside),
                                                   &closes_itself, buffer_size, 0));
    Deliver(image_frame(1, 64, 48));
    auto closed = closed_with.get_future();
    ASSERT_EQ(std::future_status::ready, closed.wait_for(std::chrono::seconds(10)));
    EXPECT_STATUS(K_ST_SUCCESS, closed.get());
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0", "CAM0"}), producer->OpenModules()) << "nothing is left for later";
    EXPECT_EQ(10u, producer->Count("DSRevokeBuffer"));
}

// ---- producers that never come back ----

/// An entry point that does not return until the test lets it.
class Stuck {
public:
    Stuck(scripted::World& world, const std::string& entry) {
        world.SetHook(entry, [state = state_](const scripted::Call&) -> std::optional<GenTL::GC_ERROR> {
            std::unique_lock guard(state->lock);
            state->inside = true;
            state->changed.notify_all();
            state->changed.wait(guard, [&] { return state->open; });
            return GenTL::GC_ERR_ABORT;
        });
    }
    ~Stuck() { LetGo(); }
    void WaitUntilInside() {
        std::unique_lock guard(state_->lock);
        EXPECT_TRUE(state_->changed.wait_for(guard, std::chrono::seconds(10), [&] { return state_->inside; }));
    }
    void LetGo() {
        std::lock_guard guard(state_->lock);
        state_->open = true;
        state_->changed.notify_all();
    }

private:
    struct State {
        std::mutex lock;
        std::condition_variable changed;
        bool inside = false, open = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();  // shared: the call may outlive the test's step
};

constexpr const char* terminated = ">>> Terminated Stream Process Loop.\n";

TEST_F(ImageStream, ClosesThoughAWaitNeverReturns) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    Stuck stuck(*producer, "EventGetData");
    stuck.WaitUntilInside();
    CloseStream();
    CloseCamera();
    CloseFactory();
    EXPECT_THAT(producer->OpenModules(), ::testing::IsEmpty()) << "everything else is closed all the same";
    producer->ForgetCalls();
    stuck.LetGo();
    EXPECT_TRUE(debug.WaitFor(terminated)) << "the thread, when it comes back, leaves";
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty()) << "and does not call into what is closed";
}

TEST_F(ImageStream, ClosesThoughARegisterReadNeverReturns) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    Stuck stuck(*producer, "GCReadPort");
    std::int64_t value = 0;
    std::thread reader([&] { EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(camera, "Counter", &value)); });
    stuck.WaitUntilInside();
    auto frame = image_frame(1, 8, 8);
    frame.data.resize(84);
    frame.chunks = {{0xC0DE, 64, 20}};
    frame.infos[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::number_info(GenTL::INFO_DATATYPE_UINT64, 7);
    Deliver(frame);  // its chunks cannot be attached: the reader has the node map
    EXPECT_TRUE(producer->WaitForCalls("DSGetBufferChunkData", 2));
    CloseStream();
    CloseCamera();
    CloseFactory();
    EXPECT_THAT(producer->OpenModules(), ::testing::IsEmpty());
    producer->ForgetCalls();
    stuck.LetGo();
    reader.join();
    EXPECT_TRUE(debug.WaitFor(terminated));
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty());
    EXPECT_EQ(0u, images.Waiting());
}

TEST_F(ImageStream, AStartThatNeverReturnsGivesAHandleWithoutStream) {
    Stuck stuck(*producer, "DSStartAcquisition");
    EXPECT_STATUS(K_ST_INVALID_HANDLE, OpenStream());
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0", "CAM0"}), producer->OpenModules());
    CloseStream();
    CloseCamera();
    producer->ForgetCalls();
    stuck.LetGo();
    EXPECT_TRUE(debug.WaitFor(terminated));
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty());
}

TEST_F(ImageStream, ClosesThoughNothingIsTakenBack) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    Deliver(image_frame(1, 64, 48));
    images.Next();
    for (auto* entry : {"DSStopAcquisition", "EventKill", "GCUnregisterEvent", "DSFlushQueue", "DSRevokeBuffer"})
        producer->Refuse(entry, GenTL::GC_ERR_IO);
    CloseStream();
    EXPECT_EQ(10u, producer->Count("DSRevokeBuffer"));
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0", "CAM0"}), producer->OpenModules());
}

// ---- closing from several sides ----

TEST_F(ImageStream, StreamAndCameraMayBeClosedAtOnce) {
    for (int round = 0; round < 10; ++round) {
        if (!camera) {
            ASSERT_NO_FATAL_FAILURE(OpenCamera());
        }
        ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
        Deliver(image_frame(1, 64, 48));
        std::thread closer([&] { EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream)); });
        CloseCamera();
        closer.join();
        stream = nullptr;
        EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
    }
}

struct Closer {
    std::function<void(K_IMAGE_INFO&)> close;
    std::promise<void> done;
};
void close_by(void* context, K_IMAGE_INFO* image) {
    auto& closer = *static_cast<Closer*>(context);
    closer.close(*image);
    closer.done.set_value();
}

TEST_F(ImageStream, TheCallbackMayCloseTheCameraAndTheFactory) {
    Closer closer;
    char first = 0, last = 0;
    closer.close = [&](K_IMAGE_INFO& image) {
        CloseCamera();
        CloseFactory();
        auto* bytes = static_cast<const char*>(image.image_data);
        first = bytes[0], last = bytes[buffer_size - 1];  // the image stays until the callback returns
    };
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, &closer, reinterpret_cast<AnyFunction>(close_by), &stream, buffer_size, 0));
    Deliver(image_frame(9, 64, 48));
    ASSERT_EQ(std::future_status::ready, closer.done.get_future().wait_for(std::chrono::seconds(10)));
    EXPECT_THAT(producer->OpenModules(), ::testing::IsEmpty());
    EXPECT_EQ(9, first);
    EXPECT_EQ(9, last);
    EXPECT_TRUE(debug.WaitFor(terminated));
    CloseStream();
}

TEST_F(ImageStream, TheCallbackMayCloseTheStreamThatAClosingCameraWaitsFor) {
    Closer closer;
    std::promise<void> inside;
    closer.close = [&](K_IMAGE_INFO&) {
        inside.set_value();
        EXPECT_TRUE(producer->WaitForCalls("DSStopAcquisition", 1)) << "the camera is being closed";
        CloseStream();
    };
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, &closer, reinterpret_cast<AnyFunction>(close_by), &stream, buffer_size, 0));
    Deliver(image_frame(1, 64, 48));
    ASSERT_EQ(std::future_status::ready, inside.get_future().wait_for(std::chrono::seconds(10)));
    CloseCamera();
    ASSERT_EQ(std::future_status::ready, closer.done.get_future().wait_for(std::chrono::seconds(10)));
    EXPECT_EQ(1u, producer->Count("DSClose"));
    EXPECT_EQ(10u, producer->Count("DSRevokeBuffer"));
    EXPECT_TRUE(debug.WaitFor(terminated));
}

void throw_something(K_IMAGE_INFO*) { throw std::runtime_error("a callback that knows no better"); }

TEST_F(ImageStream, AnExceptionOutOfTheCallbackCostsNothing) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, nullptr, reinterpret_cast<AnyFunction>(throw_something), &stream,
                                                   buffer_size, 0));
    for (std::uint64_t id = 1; id <= 2; ++id) {
        Deliver(image_frame(id, 64, 48));
        EXPECT_TRUE(debug.WaitFor("threw an exception", id));
    }
}

}  // namespace
}  // namespace kiv_test
