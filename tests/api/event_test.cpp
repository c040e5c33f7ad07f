// Registered events: which are served and how their data come, what the producer is asked, and events that outlive what they
// belong to.
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#if __has_include(<poll.h>)
#include <poll.h>
#define KIV_HAS_POLL 1
#endif

#include "api/data_stream_fixture.h"

namespace kiv_test {
namespace {

using scripted::image_frame;

constexpr std::uint32_t new_buffer = 1, change = 3, record = 1001, value = 1004;

class Events : public DataStream {
protected:
    using DataStream::DataStream;

    void TearDown() override {
        DataStream::TearDown();
        if (event) K_Event_Close(event);
    }
    void OnCamera(std::uint32_t kind) { ASSERT_STATUS(K_ST_SUCCESS, K_Camera_RegisterEvent(camera, kind, condition, &event)); }
    void OnStream(std::uint32_t kind) {
        ASSERT_NO_FATAL_FAILURE(OpenStream());
        ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_RegisterEvent(stream, kind, condition, &event));
    }
    void Raise(std::uint32_t kind, const std::string& data) {
        ASSERT_TRUE(producer->Raise(Device(), static_cast<GenTL::EVENT_TYPE>(kind), data));
    }
    /// The data in a buffer of `size` bytes, which must come back unchanged.
    std::string Collect(std::uint32_t size) {
        std::string data(size, '?');
        auto returned = size;
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetData(event, data.data(), &returned));
        EXPECT_EQ(size, returned);
        return data;
    }
    K_STATUS_CODES GetData(std::uint32_t size) {
        std::string data(1024, '?');
        return K_Event_GetData(event, data.data(), &size);
    }
    void ExpectEnded() {
        char bytes[16];
        std::uint32_t size = sizeof bytes;
        producer->ForgetCalls();
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetData(event, bytes, &size));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetInfo(event, 0, bytes, &size));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_Flush(event));
        EXPECT_THAT(producer->Calls(), ::testing::IsEmpty()) << "the producer is not asked any more, by nobody";
    }
};

class EventsGigE : public Events {
protected:
    EventsGigE() : Events(scripted_gev()) {}
};

TEST_F(Events, FindFaultInTheirOrder) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    char byte = 0;
    std::uint32_t size = 1;
    EVT_CONDITION_HANDLE stale = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreateCondition(&stale));
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_CloseCondition(stale));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_RegisterEvent(nullptr, 1005, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_RegisterEvent(nullptr, 1005, nullptr, nullptr));
    auto on_both = [&](K_STATUS_CODES expected, std::uint32_t kind, void* target, EVT_HANDLE* result) {
        EXPECT_STATUS(expected, K_Camera_RegisterEvent(camera, kind, target, result));
        EXPECT_STATUS(expected, K_DataStream_RegisterEvent(stream, kind, target, result));
    };
    on_both(K_ST_INVALID_HANDLE, 1005, nullptr, &event);
    on_both(K_ST_INVALID_HANDLE, 1005, condition, nullptr);
    on_both(K_ST_INVALID_PARAMETER, 1005, &byte, &event);
    on_both(K_ST_INVALID_PARAMETER, 0xFFFFFFFF, condition, &event);
    for (void* wild : {static_cast<void*>(&byte), static_cast<void*>(stale), static_cast<void*>(camera)})
        on_both(K_ST_INVALID_HANDLE, 1, wild, &event);
    EXPECT_EQ(nullptr, event);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_UnRegisterEvent(nullptr, 1005));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_UnRegisterEvent(camera, 1005));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_UnRegisterEvent(nullptr, 1005));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_UnRegisterEvent(stream, 1005));
    EXPECT_EQ(0u, producer->Count("GCRegisterEvent") + producer->Count("GCUnregisterEvent"));
    for (auto bad : {EVT_HANDLE(), reinterpret_cast<EVT_HANDLE>(condition)}) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetData(bad, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetInfo(bad, -1, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_Flush(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_Close(bad));
    }
    OnCamera(change);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetData(event, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetData(event, &byte, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetInfo(event, -1, &byte, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetInfo(event, 0, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetInfo(event, 0, &byte, nullptr));
    EXPECT_EQ(0u, producer->Count("EventGetData") + producer->Count("EventGetInfo"));
}

TEST_F(Events, TheProducersRefusalIsTheAnswer) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    producer->Refuse("GCRegisterEvent", GenTL::GC_ERR_NOT_AVAILABLE, 1, 2);
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Camera_RegisterEvent(camera, record, condition, &event));
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_DataStream_RegisterEvent(stream, new_buffer, condition, &event));
    EXPECT_EQ(nullptr, event);
    EXPECT_EQ(0u, producer->Count("EventGetData")) << "no thread was started";
    producer->SetHook("GCRegisterEvent", [](auto&) -> std::optional<GenTL::GC_ERROR> { throw std::runtime_error("foreign"); });
    EXPECT_STATUS(K_ST_ERROR, K_Camera_RegisterEvent(camera, value, condition, &event));
    producer->SetHook("GCRegisterEvent", nullptr);
    OnCamera(value);
    EXPECT_EQ((std::vector<std::uint64_t>{scripted_address(Device()), value}),
              producer->CallsOf("GCRegisterEvent").back().numbers);
    producer->Refuse("GCUnregisterEvent", GenTL::GC_ERR_IO, 1, 1);
    EXPECT_STATUS(K_ST_IO, K_Camera_UnRegisterEvent(camera, value));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(4)) << "the thread has ended all the same";
}

TEST_F(Events, AThreadServesTheDevicesRecord) {
    OnCamera(record);
    ASSERT_TRUE(producer->WaitForCalls("EventGetData", 1));
    EXPECT_EQ(10u, producer->CallsOf("EventGetData")[0].numbers[2]) << "milliseconds at a time";
    EXPECT_EQ(std::string(556, '\0'), Collect(556)) << "before the first";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(555));
    for (auto* letters : {"ab", "cd"}) {
        Raise(record, std::string(556, letters[0]));
        Raise(record, std::string(600, letters[1]));
        ASSERT_TRUE(Signalled());
        EXPECT_EQ(std::string(556, letters[0]), Collect(556)) << "the first waits until it is collected";
        ASSERT_TRUE(Signalled());
        EXPECT_GENICAM_ERROR("Invalid Buffer Size", "", GetData(599));
        EXPECT_EQ(std::string(600, letters[1]), Collect(600));
    }
    Raise(record, "short");
    ASSERT_TRUE(Signalled());
    EXPECT_EQ(std::string("short") + std::string(551, '\0'), Collect(556)) << "nothing of the one before";
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, record));
    EXPECT_EQ("short", Collect(556).substr(0, 5)) << "stays";
}

TEST_F(Events, AThreadServesTheDevicesValue) {
    OnCamera(value);
    ASSERT_TRUE(producer->WaitForCalls("EventGetData", 1));
    EXPECT_EQ(4u, producer->CallsOf("EventGetData")[0].numbers[1]);
    Raise(value, "1234");
    ASSERT_TRUE(Signalled());
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(3));
    EXPECT_EQ("1234", Collect(4));
    EXPECT_EQ("1234????", Collect(8));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, value));
    producer->ForgetCalls();
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(4));
    EXPECT_STATUS(K_ST_NOT_INITIALIZED, K_Camera_UnRegisterEvent(camera, value)) << "the producer's answer";
    EXPECT_EQ(0u, producer->Count("EventGetData"));
    expect_clean_end = false;  // the second unregistering broke the producer's rule
}

TEST_F(Events, OtherKindsStayInTheProducer) {
    OnCamera(change);
    Raise(change, "Width=640");
    char bytes[64] = {};
    std::uint32_t size = 4;
    EXPECT_EQ(0u, producer->Count("EventGetData")) << "no thread";
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_Event_GetData(event, bytes, &size));
    size = sizeof bytes;
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetData(event, bytes, &size));
    EXPECT_EQ("Width=640", std::string(bytes, size));
    EXPECT_STATUS(K_ST_TIMEOUT, K_Event_GetData(event, bytes, &size));
    EXPECT_EQ(10u, producer->CallsOf("EventGetData").back().numbers[2]) << "milliseconds";
    Raise(change, "x");
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_Flush(event));
    EXPECT_STATUS(K_ST_TIMEOUT, K_Event_GetData(event, bytes, &size));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, change));
}

TEST_F(Events, TheQueueIsCountedIn4BytesToo) {
    OnCamera(change);
    for (int i = 0; i < 3; ++i) Raise(change, "x");
    std::uint32_t numbers[2] = {77, 88};
    std::uint32_t size = 4;
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetInfo(event, GenTL::EVENT_NUM_IN_QUEUE, numbers, &size));
    EXPECT_EQ(3u, numbers[0]);
    EXPECT_EQ(88u, numbers[1]) << "not a byte more";
    EXPECT_EQ(4u, size);
    auto calls = producer->CallsOf("EventGetInfo");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(4u, calls[0].numbers[2]) << "as the caller asks";
    EXPECT_EQ(8u, calls[1].numbers[2]) << "as the standard has it";
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_Event_GetInfo(event, GenTL::EVENT_SIZE_MAX, numbers, &size));
    EXPECT_EQ(88u, numbers[1]);
    size = 8;
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetInfo(event, GenTL::EVENT_NUM_IN_QUEUE, numbers, &size));
    EXPECT_EQ(8u, size);
    producer->Refuse("EventGetInfo", GenTL::GC_ERR_NOT_AVAILABLE, 1, 1);
    size = 4;
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Event_GetInfo(event, GenTL::EVENT_NUM_IN_QUEUE, numbers, &size));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, change));
}

TEST_F(Events, NewBuffersComeOneByOne) {
    OnStream(new_buffer);
    EXPECT_EQ(scripted_address(StreamModule()), producer->CallsOf("GCRegisterEvent")[0].numbers[0]);
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    for (std::uint64_t id = 1; id <= 5; ++id) {
        ASSERT_TRUE(producer->Deliver(producer->FirstStream(), image_frame(id, 64, 48)));
        ASSERT_TRUE(Signalled());
        void* data[2] = {};
        std::uint32_t size = 0;
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetData(event, data, &size));
        EXPECT_EQ(0u, size) << "neither checked nor changed";
        EXPECT_EQ(buffer, data[0]);
        EXPECT_EQ(this, data[1]);
        EXPECT_EQ(static_cast<char>(id), memory[0]);
        EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_QueueBuffer(stream, buffer));
    }
    EXPECT_EQ(16u, producer->CallsOf("EventGetData")[0].numbers[1]);
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_UnRegisterEvent(stream, new_buffer));
    EXPECT_EQ("GCUnregisterEvent", producer->Order({"EventGetData", "GCUnregisterEvent"}).back()) << "the thread ended before";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(16));
}

TEST_F(Events, AKindIsServedWhereItBelongs) {
    OnCamera(new_buffer);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(16));
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(event));
    for (auto kind : {record, value}) {
        OnStream(kind);
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, GetData(1024));
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(event));
        CloseStream();
    }
    OnStream(change);
    ASSERT_TRUE(producer->Raise(StreamModule(), change, "gone"));
    EXPECT_TRUE(Signalled()) << "the thread of a stream takes it";
    char bytes[16];
    std::uint32_t size = sizeof bytes;
    EXPECT_STATUS(K_ST_TIMEOUT, K_Event_GetData(event, bytes, &size)) << "and the producer is asked for the next one";
}

TEST_F(Events, EachKindHasItsThread) {
    OnStream(new_buffer);
    EVT_HANDLE other = nullptr;
    EVT_CONDITION_HANDLE others = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreateCondition(&others));
    ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_RegisterEvent(stream, change, others, &other));
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_UnRegisterEvent(stream, change));
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    ASSERT_TRUE(producer->Deliver(producer->FirstStream(), image_frame(1, 64, 48)));
    EXPECT_TRUE(Signalled()) << "the first is still served";
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(other));
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_CloseCondition(others));
}

TEST_F(Events, ANeverCollectedEventDoesNotHoldUpTheEnd) {
    OnStream(new_buffer);
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    ASSERT_TRUE(producer->Deliver(producer->FirstStream(), image_frame(1, 64, 48)));
    ASSERT_TRUE(Signalled());
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_UnRegisterEvent(stream, new_buffer));
}

#ifdef KIV_HAS_POLL
TEST_F(Events, APlainEventIsATargetToo) {
    void* plain = nullptr;
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_CreatePlainEvent(false, nullptr));
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreatePlainEvent(false, &plain));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_RegisterEvent(camera, value, plain, &event));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_SignalCondition(static_cast<EVT_CONDITION_HANDLE>(plain)));
    std::int32_t descriptor = -1;
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_GetPlainEventFd(plain, &descriptor));
    Raise(value, "1234");
    pollfd look{descriptor, POLLIN, 0};
    EXPECT_EQ(1, poll(&look, 1, 10000));
    EXPECT_EQ("1234", Collect(4));
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_ClosePlainEvent(plain));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_ClosePlainEvent(plain));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetPlainEventFd(plain, &descriptor));
    Raise(value, "5678");
    ASSERT_TRUE(producer->WaitUntil([&] { return producer->events.back().queue.empty(); })) << "goes on, with nobody to tell";
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, value));
}
#endif

TEST_F(Events, GoOnWithoutTheirRegistration) {
    OnCamera(value);
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(event));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_Close(event));
    Raise(value, "1234");
    EXPECT_TRUE(Signalled()) << "closing does not unregister";
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_CloseCondition(condition));
    Raise(value, "5678");
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, value));
    event = nullptr;
}

TEST_F(Events, EndWithTheirStream) {
    OnStream(new_buffer);
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    ASSERT_TRUE(producer->Deliver(producer->FirstStream(), image_frame(1, 64, 48)));
    ASSERT_TRUE(Signalled());
    CloseStream();
    EXPECT_EQ(0u, producer->Count("GCUnregisterEvent"));
    ExpectEnded();
}

TEST_F(Events, EndWithTheirCamera) {
    OnCamera(record);
    EVT_HANDLE on_stream = nullptr;
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_RegisterEvent(stream, new_buffer, condition, &on_stream));
    CloseCamera();
    camera = nullptr;
    ExpectEnded();
    std::swap(event, on_stream);
    ExpectEnded();
    CloseFactory();
    EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(on_stream));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_UnRegisterEvent(stream, new_buffer));
}

TEST_F(Events, AnExceptionOutOfTheProducerDoesNotEndTheThread) {
    OnCamera(value);
    auto thrown = std::make_shared<std::atomic<int>>(0);
    producer->SetHook("EventGetData", [thrown](auto&) -> std::optional<GenTL::GC_ERROR> {
        if ((*thrown)++ == 0) throw std::runtime_error("a producer that knows no better");
        return std::nullopt;
    });
    EXPECT_TRUE(producer->WaitUntil([&] { return *thrown > 1; }));
    Raise(value, "1234");
    EXPECT_TRUE(Signalled());
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, value));
    producer->SetHook("EventGetData", nullptr);
}

TEST_F(Events, AProducerThatDoesNotComeBackCostsTheThreadOnly) {
    auto gate = std::make_shared<std::promise<void>>();
    std::weak_ptr<std::promise<void>> inside = gate;
    producer->SetHook("EventGetData", [gate, opened = gate->get_future().share()](auto&) -> std::optional<GenTL::GC_ERROR> {
        opened.wait();
        return GenTL::GC_ERR_ABORT;
    });
    OnStream(new_buffer);
    ASSERT_TRUE(producer->WaitForCalls("EventGetData", 1));
    producer->SetHook("EventGetData", nullptr);
    CloseStream();
    CloseCamera();
    CloseFactory();
    gate->set_value();
    gate.reset();
    // The thread is back from the producer when its copy of the hook is gone; what it touches then is its own.
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!inside.expired() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    EXPECT_TRUE(inside.expired());
}

TEST_F(EventsGigE, ComeAndGoWhileTheyHappen) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    std::atomic<bool> over = false;
    std::atomic<EVT_HANDLE> current = nullptr;
    std::thread raiser([&] {
        while (!over) {
            producer->Raise(StreamModule(), new_buffer, std::string(16, 'x'));
            producer->Raise(Device(), record, std::string(556, 'x'));
            std::this_thread::yield();
        }
    });
    std::thread collector([&] {
        while (!over) {
            std::uint32_t result = 0;
            K_Event_WaitForCondition(condition, 1, &result);
            std::string data(1024, '?');
            std::uint32_t size = 1024;
            if (auto handle = current.load()) K_Event_GetData(handle, data.data(), &size);
        }
    });
    for (int round = 0; round < 40; ++round) {
        bool camera_event = round % 2 == 1, unregister = round % 3 != 0;
        EVT_HANDLE registered = nullptr;
        if (camera_event)
            ASSERT_STATUS(K_ST_SUCCESS, K_Camera_RegisterEvent(camera, record, condition, &registered));
        else
            ASSERT_STATUS(K_ST_SUCCESS, K_DataStream_RegisterEvent(stream, new_buffer, condition, &registered));
        current = registered;
        producer->WaitUntil([&] { return producer->Count("EventGetData") > 2; });
        std::thread closer([&] { EXPECT_STATUS(K_ST_SUCCESS, K_Event_Close(registered)); });
        if (camera_event) {
            EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UnRegisterEvent(camera, record));
        } else if (unregister) {
            EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_UnRegisterEvent(stream, new_buffer));
        } else {
            CloseStream();
            OpenStream();
        }
        closer.join();
        producer->ForgetCalls();
    }
    over = true;
    raiser.join();
    collector.join();
}

TEST_F(EventsGigE, OfBareModulesAreTheProducersOwn) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    void* bare = nullptr;
    char bytes[16] = {};
    std::uint32_t size = sizeof bytes;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_DataStream_RegisterEvent(nullptr, stream, 1, &bare));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_DataStream_RegisterEvent(layer, nullptr, 1005, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_DataStream_RegisterEvent(layer, stream, 1005, &bare));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_DataStream_RegisterEvent(layer, stream, 1, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_Event_GetData(layer, nullptr, bytes, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_GigE_CreateEvents(layer, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_GigE_CreateEvents(layer, camera, nullptr));

    ASSERT_STATUS(K_ST_SUCCESS, K_GenTL_DataStream_RegisterEvent(layer, stream, change, &bare));
    ASSERT_TRUE(producer->Raise(StreamModule(), change, "data"));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_Event_GetData(layer, bare, bytes, nullptr, 0));
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_Event_GetData(layer, bare, bytes, &size, 25));
    EXPECT_EQ("data", std::string(bytes, size));
    EXPECT_EQ(25u, producer->CallsOf("EventGetData").back().numbers[2]);
    EXPECT_STATUS(K_ST_TIMEOUT, K_GenTL_Event_GetData(layer, bare, bytes, &size, 0));

    // The library itself listens to kind 1000 of such a camera.
    producer->WaitUntil([&] { return producer->FindRegistration(Device(), 1000) != nullptr; });
    producer->ForgetCalls();
    producer->SetHook("GCRegisterEvent", [](const scripted::Call& call) -> std::optional<GenTL::GC_ERROR> {
        if (call.numbers[1] == 1000) return GenTL::GC_ERR_RESOURCE_IN_USE;
        return std::nullopt;
    });
    void* events[3] = {this, this, this};
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GigE_CreateEvents(layer, camera, events));
    std::vector<std::uint64_t> kinds;
    for (auto& call : producer->CallsOf("GCRegisterEvent")) kinds.push_back(call.numbers[1]);
    EXPECT_EQ((std::vector<std::uint64_t>{1000, 1001, 1004}), kinds);
    EXPECT_EQ(nullptr, events[0]) << "refused";
    EXPECT_EQ(events[1], producer->FindRegistration(Device(), 1001));
    EXPECT_EQ(events[2], producer->FindRegistration(Device(), 1004));
    producer->SetHook("GCRegisterEvent", nullptr);
    producer->Refuse("GCRegisterEvent", GenTL::GC_ERR_NO_DATA);
    EXPECT_STATUS(K_ST_NO_DATA, K_GenTL_GigE_CreateEvents(layer, Device(), events));
    producer->Accept("GCRegisterEvent");
    SetType("U3V");
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_GenTL_GigE_CreateEvents(layer, Device(), events));
}

}  // namespace
}  // namespace kiv_test
