#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Buffers : public ProducerTest {
protected:
    size_t Queued() { return StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET); }
    size_t Awaiting() { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY, INFO_DATATYPE_SIZET); }
};

TEST_F(Buffers, KeepTheOrderOfAnnouncingWithoutGaps) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(3));
    void *memory_of = nullptr, *user = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffers[1], &memory_of, &user));
    EXPECT_EQ(memory[1].data(), memory_of);
    EXPECT_EQ(memory[1].data() + 1, user);
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetBufferID(stream, 1, &buffer));
    EXPECT_EQ(buffers[2], buffer);
    EXPECT_EQ(GC_ERR_INVALID_INDEX, gentl.DSGetBufferID(stream, 2, &buffer));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DSQueueBuffer(stream, buffers[1])) << "revoked";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
    EXPECT_EQ(1u, StreamInfo<size_t>(STREAM_INFO_NUM_ANNOUNCED, INFO_DATATYPE_SIZET));
}

TEST_F(Buffers, AreAnnouncedAndQueuedOnce) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    BUFFER_HANDLE again = nullptr;
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSAnnounceBuffer(stream, memory[0].data(), 16, nullptr, &again));
    EXPECT_EQ(GC_ERR_BUSY, gentl.DSAllocAndAnnounceBuffer(stream, 16, nullptr, &again)) << "the two kinds do not mix";
    EXPECT_EQ(0u, Queued()) << "announcing does not queue";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffers[0]));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSQueueBuffer(stream, buffers[0]));
    EXPECT_EQ(GC_ERR_BUSY, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
    EXPECT_TRUE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
}

TEST_F(Buffers, OfTheProducerHaveNoPointerToGiveBack) {
    ASSERT_NO_FATAL_FAILURE(Open());
    BUFFER_HANDLE buffer = nullptr;
    int user = 0;
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.DSAllocAndAnnounceBuffer(stream, 0, &user, &buffer));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSAllocAndAnnounceBuffer(stream, 64, &user, &buffer));
    EXPECT_NE(nullptr, BufferInfo<void*>(buffer, BUFFER_INFO_BASE, INFO_DATATYPE_PTR));
    EXPECT_EQ(&user, BufferInfo<void*>(buffer, BUFFER_INFO_USER_PTR, INFO_DATATYPE_PTR));
    EXPECT_EQ(64u, BufferSize(buffer, BUFFER_INFO_SIZE));
    void *memory_of = &user, *user_of = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffer, &memory_of, &user_of));
    EXPECT_EQ(nullptr, memory_of);
    EXPECT_EQ(&user, user_of);
}

TEST_F(Buffers, OfAnotherStreamAreRefused) {
    ASSERT_NO_FATAL_FAILURE(Open("SIM0_SLOW"));
    const DS_HANDLE other = stream;
    ASSERT_NO_FATAL_FAILURE(Open("SIM0_FAST"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    EXPECT_EQ(GC_ERR_INVALID_HANDLE, gentl.DSQueueBuffer(other, buffers[0]));
    BUFFER_HANDLE same_memory = nullptr;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSAnnounceBuffer(other, memory[0].data(), memory[0].size(), nullptr, &same_memory));
    EXPECT_NE(buffers[0], same_memory) << "one memory may serve several streams";
}

TEST_F(Buffers, MoveAsTheFlushSays) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(3));
    const EVENT_HANDLE event = RegisterNewBuffer();
    const auto flush = [&](ACQ_QUEUE_TYPE operation) { EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, operation)); };
    flush(ACQ_QUEUE_UNQUEUED_TO_INPUT);
    EXPECT_EQ(3u, Queued());
    flush(ACQ_QUEUE_INPUT_TO_OUTPUT);
    EXPECT_EQ(0u, Queued());
    EXPECT_EQ(3u, Awaiting());
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSQueueBuffer(stream, buffers[2])) << "it awaits delivery";

    const auto data = NextBuffer(event);
    EXPECT_EQ(buffers[0], data.BufferHandle);
    EXPECT_EQ(memory[0].data() + 1, data.pUserPointer);
    EXPECT_FALSE(BufferFlag(buffers[0], BUFFER_INFO_NEW_DATA));
    EXPECT_FALSE(BufferFlag(buffers[0], BUFFER_INFO_IS_QUEUED));
    flush(ACQ_QUEUE_UNQUEUED_TO_INPUT);
    EXPECT_EQ(1u, Queued()) << "only the one that the consumer had";
    flush(ACQ_QUEUE_ALL_TO_INPUT);
    EXPECT_EQ(3u, Queued());
    EXPECT_EQ(0u, Awaiting());
    flush(ACQ_QUEUE_INPUT_TO_OUTPUT);
    flush(ACQ_QUEUE_OUTPUT_DISCARD);
    EXPECT_EQ(0u, Queued() + Awaiting());
    size_t size = sizeof data;
    EVENT_NEW_BUFFER_DATA nothing;
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.EventGetData(event, &nothing, &size, 0)) << "the events went with the buffers";
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.DSFlushQueue(stream, 5));
}

}  // namespace
}  // namespace kiv::test
