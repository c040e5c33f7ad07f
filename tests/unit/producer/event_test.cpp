#include <atomic>
#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Events : public ProducerTest {
protected:
    /// Puts `count` buffers into the output queue without a camera.
    void FillQueue(size_t count) {
        AnnounceBuffers(count, 16);
        QueueAll();
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, ACQ_QUEUE_INPUT_TO_OUTPUT));
    }
    GC_ERROR Get(EVENT_HANDLE event, uint64_t timeout = 0) {
        EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        return gentl.EventGetData(event, &data, &size, timeout);
    }
    size_t InQueue(EVENT_HANDLE event) {
        return ask_value<size_t>([&](auto... out) { return gentl.EventGetInfo(event, EVENT_NUM_IN_QUEUE, out...); },
                                 INFO_DATATYPE_SIZET);
    }
};

TEST_F(Events, AreRegisteredOnce) {
    ASSERT_NO_FATAL_FAILURE(Open());
    EVENT_HANDLE event = nullptr, other = nullptr;
    for (void* module : {system, interface, device, stream}) {
        EXPECT_EQ(GC_ERR_NOT_INITIALIZED, gentl.GCUnregisterEvent(module, EVENT_ERROR));
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(module, EVENT_ERROR, &event));
        EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.GCRegisterEvent(module, EVENT_ERROR, &other));
        EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCRegisterEvent(module, EVENT_CUSTOM_ID, &other));
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCUnregisterEvent(module, EVENT_ERROR));
        EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.EventFlush(event));
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(module, EVENT_ERROR, &event));
    }
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.GCRegisterEvent(device, EVENT_NEW_BUFFER, &event));
}

TEST_F(Events, ComeInTheOrderOfFiring) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(FillQueue(3));
    EXPECT_EQ(3u, InQueue(event));
    for (BUFFER_HANDLE buffer : buffers) EXPECT_EQ(buffer, NextBuffer(event).BufferHandle);
    EXPECT_EQ(GC_ERR_TIMEOUT, Get(event));
    EXPECT_EQ(GC_ERR_TIMEOUT, Get(event, 1));
    EXPECT_EQ(3u, ask_value<uint64_t>([&](auto... out) { return gentl.EventGetInfo(event, EVENT_NUM_FIRED, out...); },
                                      INFO_DATATYPE_UINT64));
    EXPECT_EQ(EVENT_NEW_BUFFER,
              ask_value<int32_t>([&](auto... out) { return gentl.EventGetInfo(event, EVENT_EVENT_TYPE, out...); },
                                 INFO_DATATYPE_INT32));
}

TEST_F(Events, AnEntryIsDroppedOnPurposeOnly) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(FillQueue(2));
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data - 1;
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, gentl.EventGetData(event, &data, &size, 0));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.EventGetData(event, &data, nullptr, 0));
    EXPECT_EQ(2u, InQueue(event));
    size = 0;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, nullptr, &size, 0)) << "a null buffer throws the entry away";
    EXPECT_EQ(1u, InQueue(event));
    EXPECT_FALSE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED)) << "and its buffer is in no queue";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventFlush(event));
    EXPECT_EQ(0u, InQueue(event));
    EXPECT_FALSE(BufferFlag(buffers[1], BUFFER_INFO_IS_QUEUED));
}

TEST_F(Events, EachKillEndsOneWaitAndLosesNothing) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(FillQueue(1));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventKill(event));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventKill(event));
    EXPECT_EQ(GC_ERR_ABORT, Get(event)) << "also when an entry is there";
    EXPECT_EQ(GC_ERR_ABORT, Get(event));
    EXPECT_EQ(GC_ERR_SUCCESS, Get(event));

    std::atomic<int> aborted{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] {
            if (Get(event, GENTL_INFINITE) == GC_ERR_ABORT) ++aborted;
        });
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.EventKill(event));
    EXPECT_TRUE(eventually([&] { return aborted == 1; }));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER)) << "ends the waits of all others";
    for (std::thread& waiter : waiters) waiter.join();
    // a waiter that had not begun to wait found the event gone instead
    EXPECT_GE(aborted, 1);
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, Get(event));
}

TEST_F(Events, UnregisteringTakesBuffersOutOfTheOutputQueue) {
    ASSERT_NO_FATAL_FAILURE(Open());
    RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(FillQueue(1));
    EXPECT_TRUE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER));
    EXPECT_FALSE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED));
    EXPECT_EQ(GC_ERR_TIMEOUT, Get(RegisterNewBuffer()));
}

TEST_F(Events, ClosingTheModuleEndsWaits) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const EVENT_HANDLE event = RegisterNewBuffer();
    GC_ERROR status = GC_ERR_SUCCESS;
    std::thread waiter([&] { status = Get(event, GENTL_INFINITE); });
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCCloseLib());
    waiter.join();
    EXPECT_TRUE(status == GC_ERR_ABORT || status == GC_ERR_NOT_INITIALIZED) << status;
}

TEST_F(Events, DataAreTakenApart) {
    ASSERT_NO_FATAL_FAILURE(Open());
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(FillQueue(1));
    const EVENT_NEW_BUFFER_DATA data = NextBuffer(event);
    const auto part = [&](EVENT_DATA_INFO_CMD command) {
        return ask_value<void*>([&](auto... out) { return gentl.EventGetDataInfo(event, &data, sizeof data, command, out...); },
                                INFO_DATATYPE_PTR);
    };
    EXPECT_EQ(buffers[0], part(EVENT_DATA_ID));
    EXPECT_EQ(memory[0].data() + 1, part(EVENT_DATA_VALUE));
    INFO_DATATYPE type;
    size_t size = 0;
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.EventGetDataInfo(event, &data, 0, EVENT_DATA_ID, &type, nullptr, &size));
    EXPECT_EQ(GC_ERR_NOT_AVAILABLE, gentl.EventGetDataInfo(event, &data, sizeof data, EVENT_DATA_NUMID, &type, nullptr, &size));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED,
              gentl.EventGetDataInfo(event, &data, sizeof data, EVENT_DATA_CUSTOM_ID, &type, nullptr, &size));
}

}  // namespace
}  // namespace kiv::test
