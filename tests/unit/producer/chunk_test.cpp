// Chunks in buffers: their list, their layout, and buffers without them.

#include "producer_fixture.h"

namespace kiv::test {
namespace {

constexpr uint64_t mode = 0x20B00, payload_only = 0x20B04, enable = 0x20B08, incomplete_every = 0x20C10;
enum Kind : uint32_t { Image, OffsetX, OffsetY, Width, Height, PixelFormat, LinePitch, Timestamp };
constexpr size_t image_size = 128 * 96;

class Chunks : public ProducerTest {
protected:
    void Enable(std::initializer_list<Kind> kinds) {
        Write32(mode, 1);
        for (const Kind kind : kinds) Write32(enable + 4 * kind, 1);
    }
    BUFFER_HANDLE Grab() {
        if (buffers.empty()) {
            AnnounceBuffers(1);
            event = RegisterNewBuffer();
        }
        QueueAll();
        StartAcquisition();
        Trigger();
        const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
        Write32(camera_register::stop, 1);
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
        return buffer;
    }
    std::vector<SINGLE_CHUNK_DATA> List(BUFFER_HANDLE buffer) {
        size_t count = 0;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count));
        std::vector<SINGLE_CHUNK_DATA> chunks(count);
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSGetBufferChunkData(stream, buffer, chunks.data(), &count));
        return chunks;
    }
    uint64_t Layout(BUFFER_HANDLE buffer) {
        return BufferInfo<uint64_t>(buffer, BUFFER_INFO_CHUNKLAYOUTID, INFO_DATATYPE_UINT64);
    }
    EVENT_HANDLE event = nullptr;
};

TEST_F(Chunks, StandBehindTheImage) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Enable({Width, Timestamp});
    EXPECT_EQ(image_size + 8 + 4 + 8 + 8 + 8, Read32(camera_register::payload_size));
    const BUFFER_HANDLE buffer = Grab();
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IMAGEPRESENT));
    EXPECT_EQ(128u, BufferSize(buffer, BUFFER_INFO_WIDTH));
    EXPECT_EQ(96u, BufferSize(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT));
    EXPECT_EQ(static_cast<size_t>(PAYLOAD_TYPE_IMAGE), BufferSize(buffer, BUFFER_INFO_PAYLOADTYPE));
    const auto chunks = List(buffer);
    ASSERT_EQ(3u, chunks.size());
    const struct {
        uint64_t id;
        ptrdiff_t offset;
        size_t length;
    } expected[] = {{0xC0000, 0, image_size}, {0xC0003, image_size + 8, 4}, {0xC0007, image_size + 20, 8}};
    for (size_t i = 0; i < 3; ++i) {
        const SINGLE_CHUNK_DATA chunk = chunks[i];
        EXPECT_EQ(expected[i].id, uint64_t{chunk.ChunkID}) << i;
        EXPECT_EQ(expected[i].offset, ptrdiff_t{chunk.ChunkOffset}) << i;
        EXPECT_EQ(expected[i].length, size_t{chunk.ChunkLength}) << i;
    }
    uint64_t time = 0;
    std::memcpy(&time, memory[0].data() + image_size + 20, sizeof time);
    EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP, INFO_DATATYPE_UINT64), time);
    size_t count = 2;
    SINGLE_CHUNK_DATA room[2];
    EXPECT_EQ(GC_ERR_BUFFER_TOO_SMALL, gentl.DSGetBufferChunkData(stream, buffer, room, &count));
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, gentl.DSGetBufferChunkData(stream, buffer, nullptr, nullptr));
}

TEST_F(Chunks, TheLayoutIdChangesWithWhatLiesWhere) {
    ASSERT_NO_FATAL_FAILURE(Open());
    EXPECT_EQ(0u, Layout(Grab())) << "no chunks";
    Enable({Width});
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr));
    buffers.clear();
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1, image_size + 200));
    const uint64_t first = Layout(Grab());
    EXPECT_NE(0u, first);
    EXPECT_EQ(first, Layout(Grab()));
    Enable({Height});
    const uint64_t second = Layout(Grab());
    EXPECT_NE(first, second);
    Write32(camera_register::width, 64);
    EXPECT_NE(second, Layout(Grab())) << "the chunks lie elsewhere behind a smaller image";
}

TEST_F(Chunks, APayloadOfChunksOnlyTellsNothingOfItsImage) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Enable({Width, Height});
    Write32(payload_only, 1);
    const BUFFER_HANDLE buffer = Grab();
    EXPECT_EQ(static_cast<size_t>(PAYLOAD_TYPE_CHUNK_ONLY), BufferSize(buffer, BUFFER_INFO_PAYLOADTYPE));
    EXPECT_FALSE(BufferFlag(buffer, BUFFER_INFO_IMAGEPRESENT));
    for (const BUFFER_INFO_CMD command : {BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_XOFFSET})
        EXPECT_EQ(0u, BufferSize(buffer, command));
    INFO_DATATYPE type = 0;
    size_t size = 0;
    EXPECT_EQ(GC_ERR_NOT_AVAILABLE, gentl.DSGetBufferInfo(stream, buffer, BUFFER_INFO_PIXELFORMAT, &type, nullptr, &size));
    EXPECT_EQ(3u, List(buffer).size());
}

TEST_F(Chunks, CannotBeFoundInHalfABuffer) {
    ASSERT_NO_FATAL_FAILURE(Open());
    Enable({Width});
    Write32(incomplete_every, 1);
    const BUFFER_HANDLE buffer = Grab();
    EXPECT_TRUE(BufferFlag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    size_t count = 0;
    EXPECT_EQ(GC_ERR_PARSING_CHUNK_DATA, gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
    EXPECT_EQ(GC_ERR_NO_DATA, gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count)) << "nothing in it yet";
}

}  // namespace
}  // namespace kiv::test
