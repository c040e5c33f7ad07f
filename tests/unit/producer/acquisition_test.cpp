#include <set>
#include <thread>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Acquisition : public ProducerTest {
protected:
    uint64_t Count(STREAM_INFO_CMD command) { return StreamInfo<uint64_t>(command, INFO_DATATYPE_UINT64); }
    bool Grabbing() { return StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING, INFO_DATATYPE_BOOL8); }
    void Ready(size_t count, const char* device_id = "SIM0_FAST") {
        ASSERT_NO_FATAL_FAILURE(Open(device_id));
        ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(count));
        event = RegisterNewBuffer();
        ASSERT_NO_FATAL_FAILURE(QueueAll());
    }
    EVENT_HANDLE event = nullptr;
};

TEST_F(Acquisition, StartsAndStopsInPairs) {
    ASSERT_NO_FATAL_FAILURE(Open());
    EXPECT_EQ(GC_ERR_INVALID_BUFFER, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1)) << "no buffer is announced";
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 0));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.DSStartAcquisition(stream, 1, GENTL_INFINITE));
    EXPECT_FALSE(Grabbing());
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    EXPECT_TRUE(Grabbing());
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.DSStopAcquisition(stream, 2));
    EXPECT_TRUE(Grabbing());
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL));
}

TEST_F(Acquisition, AnImageIsInTheBufferWithAllThatIsKnownOfIt) {
    ASSERT_NO_FATAL_FAILURE(Ready(1));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    ASSERT_EQ(buffers[0], buffer);
    for (BUFFER_INFO_CMD flag : {BUFFER_INFO_NEW_DATA, BUFFER_INFO_IMAGEPRESENT}) EXPECT_TRUE(BufferFlag(buffer, flag)) << flag;
    for (BUFFER_INFO_CMD flag : {BUFFER_INFO_IS_QUEUED, BUFFER_INFO_IS_ACQUIRING, BUFFER_INFO_IS_INCOMPLETE,
                                 BUFFER_INFO_DATA_LARGER_THAN_BUFFER, BUFFER_INFO_CONTAINS_CHUNKDATA})
        EXPECT_FALSE(BufferFlag(buffer, flag)) << flag;
    const std::pair<BUFFER_INFO_CMD, size_t> sizes[] = {{BUFFER_INFO_SIZE_FILLED, 128 * 96},
                                                        {BUFFER_INFO_DATA_SIZE, 128 * 96},
                                                        {BUFFER_INFO_WIDTH, 128},
                                                        {BUFFER_INFO_HEIGHT, 96},
                                                        {BUFFER_INFO_XOFFSET, 0},
                                                        {BUFFER_INFO_IMAGEOFFSET, 0},
                                                        {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 96},
                                                        {BUFFER_INFO_PAYLOADTYPE, PAYLOAD_TYPE_IMAGE}};
    for (const auto& [command, expected] : sizes) EXPECT_EQ(expected, BufferSize(buffer, command)) << command;
    const auto number = [&](BUFFER_INFO_CMD command) { return BufferInfo<uint64_t>(buffer, command, INFO_DATATYPE_UINT64); };
    EXPECT_EQ(0x01080001u, number(BUFFER_INFO_PIXELFORMAT));
    EXPECT_EQ(static_cast<uint64_t>(PIXELFORMAT_NAMESPACE_PFNC_32BIT), number(BUFFER_INFO_PIXELFORMAT_NAMESPACE));
    EXPECT_NE(0u, number(BUFFER_INFO_TIMESTAMP));
    EXPECT_EQ(memory[0].data(), BufferInfo<void*>(buffer, BUFFER_INFO_BASE, INFO_DATATYPE_PTR));
    EXPECT_GT(std::set<std::byte>(memory[0].begin(), memory[0].end()).size(), 4u) << "a picture, not a constant";
    INFO_DATATYPE type;
    size_t size = 0;
    EXPECT_EQ(GC_ERR_NOT_IMPLEMENTED, gentl.DSGetBufferInfo(stream, buffer, BUFFER_INFO_CUSTOM_ID, &type, nullptr, &size));
    EXPECT_EQ(GC_ERR_NO_DATA, gentl.DSGetBufferChunkData(stream, buffer, nullptr, &size));
    uint32_t parts = 0;
    EXPECT_EQ(GC_ERR_NO_DATA, gentl.DSGetNumBufferParts(stream, buffer, &parts));
    EXPECT_EQ(GC_ERR_NO_DATA, gentl.DSGetBufferPartInfo(stream, buffer, 0, BUFFER_PART_INFO_BASE, &type, nullptr, &size));

    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
    EXPECT_EQ(0u, BufferSize(buffer, BUFFER_INFO_SIZE_FILLED)) << "queueing forgets the image";
    EXPECT_FALSE(BufferFlag(buffer, BUFFER_INFO_NEW_DATA));
    EXPECT_EQ(GC_ERR_NOT_AVAILABLE, gentl.DSGetBufferInfo(stream, buffer, BUFFER_INFO_WIDTH, &type, nullptr, &size));
}

TEST_F(Acquisition, BuffersGoRoundAndFramesAreCounted) {
    ASSERT_NO_FATAL_FAILURE(Ready(3));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition(GENTL_INFINITE, false));
    uint64_t last_frame = 0;
    for (int i = 0; i < 30; ++i) {
        const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
        const uint64_t frame = BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64);
        EXPECT_GT(frame, last_frame) << "oldest first";
        last_frame = frame;
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
    }
    Write32(camera_register::stop, 1);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    EXPECT_GE(Count(STREAM_INFO_NUM_DELIVERED), 30u);
    EXPECT_EQ(Count(STREAM_INFO_NUM_DELIVERED), Count(STREAM_INFO_NUM_STARTED));
    EXPECT_EQ(3u, StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET) +
                      StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY, INFO_DATATYPE_SIZET))
        << "stopping moves no buffer";
}

TEST_F(Acquisition, NeedsTheStreamAndTheCamera) {
    ASSERT_NO_FATAL_FAILURE(Ready(1));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    size_t size = sizeof(EVENT_NEW_BUFFER_DATA);
    EVENT_NEW_BUFFER_DATA data;
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.EventGetData(event, &data, &size, 60)) << "the camera was not started";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    Write32(camera_register::start, 1);
    size = sizeof data;
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.EventGetData(event, &data, &size, 60)) << "the stream is not started";
    EXPECT_EQ(0u, Count(STREAM_INFO_NUM_UNDERRUN)) << "frames that nobody asked for are not lost";
}

TEST_F(Acquisition, StopsByItselfAfterTheAskedNumber) {
    ASSERT_NO_FATAL_FAILURE(Ready(4));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition(3, false));
    EXPECT_TRUE(eventually([&] { return !Grabbing(); }));
    EXPECT_EQ(3u, Count(STREAM_INFO_NUM_DELIVERED));
    EXPECT_EQ(3u, StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY, INFO_DATATYPE_SIZET));
    EXPECT_EQ(1u, StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET));
    EXPECT_EQ(GC_ERR_RESOURCE_IN_USE, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1))
        << "each start needs its stop";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(buffers[i], NextBuffer(event).BufferHandle) << "filled ones are kept";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1));
    EXPECT_TRUE(eventually([&] { return !Grabbing(); }));
    EXPECT_EQ(1u, Count(STREAM_INFO_NUM_DELIVERED)) << "counts from the last start";
    EXPECT_EQ(4u, Count(STREAM_INFO_NUM_STARTED)) << "counts from the opening";
}

TEST_F(Acquisition, AFrameWithoutABufferIsLostAndCounted) {
    ASSERT_NO_FATAL_FAILURE(Ready(1));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    const auto before = memory[0];
    for (uint64_t lost = 1; lost <= 2; ++lost) {
        Trigger();
        EXPECT_TRUE(eventually([&] { return Count(STREAM_INFO_NUM_UNDERRUN) == lost; }));
    }
    EXPECT_EQ(before, memory[0]) << "the consumer's buffer is left alone";
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
    Trigger();
    EXPECT_EQ(4u, BufferInfo<uint64_t>(NextBuffer(event).BufferHandle, BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64));
}

TEST_F(Acquisition, TooSmallABufferIsFilledAsFarAsItGoes) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1, 128 * 50));
    event = RegisterNewBuffer();
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(stream, EVENT_ERROR, &error));
    ASSERT_NO_FATAL_FAILURE(QueueAll());
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_EQ(128u * 50, BufferSize(buffer, BUFFER_INFO_SIZE_FILLED));
    EXPECT_EQ(128u * 96, BufferSize(buffer, BUFFER_INFO_DATA_SIZE));
    EXPECT_EQ(50u, BufferSize(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT));
    EXPECT_EQ(96u, BufferSize(buffer, BUFFER_INFO_HEIGHT));

    char data[1024];
    size_t size = sizeof data;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(error, data, &size, 20000));
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL,
              ask_value<int32_t>([&](auto... out) { return gentl.EventGetDataInfo(error, data, size, EVENT_DATA_ID, out...); },
                                 INFO_DATATYPE_INT32));
    EXPECT_NE("", ask_text([&](auto... out) { return gentl.EventGetDataInfo(error, data, size, EVENT_DATA_VALUE, out...); }));
}

TEST_F(Acquisition, AKillDeliversWhatHasArrived) {
    ASSERT_NO_FATAL_FAILURE(Ready(1, "SIM0_SLOW"));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    ASSERT_TRUE(eventually([&] { return BufferFlag(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    EXPECT_EQ(1u, StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET)) << "the one being filled counts";
    EXPECT_EQ(GC_ERR_BUSY, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL));
    EVENT_NEW_BUFFER_DATA data;
    size_t size = sizeof data;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, &data, &size, 0)) << "it is there when the stop returns";
    const BUFFER_HANDLE buffer = data.BufferHandle;
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_LT(BufferSize(buffer, BUFFER_INFO_SIZE_FILLED), BufferSize(buffer, BUFFER_INFO_DATA_SIZE));
    EXPECT_FALSE(BufferFlag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
}

TEST_F(Acquisition, AStopFinishesTheFrame) {
    ASSERT_NO_FATAL_FAILURE(Ready(1, "SIM0_SLOW"));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    ASSERT_TRUE(eventually([&] { return BufferFlag(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
    EVENT_NEW_BUFFER_DATA data;
    size_t size = sizeof data;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, &data, &size, 0)) << "it is there when the stop returns";
    EXPECT_FALSE(BufferFlag(data.BufferHandle, BUFFER_INFO_IS_INCOMPLETE));
}

TEST_F(Acquisition, FlushesTakeTheBufferThatIsBeingFilled) {
    ASSERT_NO_FATAL_FAILURE(Ready(2, "SIM0_SLOW"));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    ASSERT_TRUE(eventually([&] { return BufferFlag(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_TO_INPUT));
    EXPECT_EQ(2u, StreamInfo<size_t>(STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET));
    EXPECT_EQ(0u, Count(STREAM_INFO_NUM_DELIVERED)) << "a discarded frame is not delivered";
    Trigger();
    ASSERT_TRUE(eventually([&] { return BufferFlag(buffers[1], BUFFER_INFO_IS_ACQUIRING); }));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
    for (BUFFER_HANDLE buffer : buffers) EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffer, nullptr, nullptr));
}

TEST_F(Acquisition, ClosingInTheMiddleHurtsNobody) {
    ASSERT_NO_FATAL_FAILURE(Ready(2));
    ASSERT_NO_FATAL_FAILURE(StartAcquisition(GENTL_INFINITE, false));
    std::thread asker([&] {
        INFO_DATATYPE type;
        uint64_t value = 0;
        size_t size = sizeof value;
        while (gentl.DSGetInfo(stream, STREAM_INFO_NUM_DELIVERED, &type, &value, &size) == GC_ERR_SUCCESS) size = sizeof value;
    });
    NextBuffer(event);
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSClose(stream));
    asker.join();
    const auto after = memory;
    OpenStream();
    EXPECT_EQ(after, memory);
}

}  // namespace
}  // namespace kiv::test
