// Chunk data in the image stream: what the loop asks for, when, and what becomes of images that have their size from chunks.
#include <GenICam/exceptions.h>

#include <cstring>

#include "api/image_stream_fixture.h"

namespace kiv_test {
namespace {

constexpr const char* no_layout_id =
    "Error with K_DataStream_GetBufferInfo in ImageLib::CStreamThread::StreamProcess ==> BUFFER_INFO_CHUNKLAYOUTID.\n";
constexpr const char* no_list = "Error with K_DataStream_GetBufferChunkData in ImageLib::CStreamThread::StreamProcess.\n";
constexpr const char* not_attached = "Error with K_Camera_AttachChunkData in ImageLib::CStreamThread::StreamProcess.\n";
constexpr const char* thrown =
    "Exception with K_DataStream_GetBufferInfo in CStreamThread::StreamProcess ==> BUFFER_INFO_TIMESTAMP.\n";

scripted::Info size_info(std::size_t value) { return scripted::number_info(GenTL::INFO_DATATYPE_SIZET, value); }

/// An image of 64 bytes with a chunk of five numbers behind it.
scripted::Frame chunk_frame(std::uint64_t id, std::uint64_t layout, std::uint32_t chunk_width = 640) {
    auto frame = image_frame(id, 8, 8);
    const std::uint32_t numbers[] = {chunk_width, 480, 3, 5, 0x01100007};
    frame.data.append(reinterpret_cast<const char*>(numbers), sizeof numbers);
    frame.chunks = {{0xC0DE, 64, sizeof numbers}};
    frame.infos[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::number_info(GenTL::INFO_DATATYPE_UINT64, layout);
    return frame;
}

/// Reads a chunk feature in the callback, where it belongs.
struct ChunkReader {
    CAM_HANDLE camera;
    Images* images;
    std::mutex lock;
    std::deque<std::int64_t> widths;  // -1: not available
};
void read_chunk(void* context, K_IMAGE_INFO* image) {
    auto& reader = *static_cast<ChunkReader*>(context);
    std::int64_t width = -1;
    if (K_Camera_GetValueInt64(reader.camera, "ChunkWidth", &width) != K_ST_SUCCESS) width = -1;
    {
        std::lock_guard guard(reader.lock);
        reader.widths.push_back(width);
    }
    reader.images->Take(*image, true);
}

class ChunkStream : public ImageStream {
protected:
    void SetUp() override {
        ImageStream::SetUp();
        reader.camera = camera;
        reader.images = &images;
        ASSERT_STATUS(K_ST_SUCCESS,
                      K_Image_OpenStream(camera, 0, &reader, reinterpret_cast<AnyFunction>(read_chunk), &stream, buffer_size, 0));
        producer->ForgetCalls();
    }
    /// Delivers the frame and answers what ChunkWidth was in the callback.
    std::int64_t WidthOf(const scripted::Frame& frame) {
        Deliver(frame);
        last = images.Next().info;
        std::lock_guard guard(reader.lock);
        auto width = reader.widths.empty() ? -2 : reader.widths.front();
        if (!reader.widths.empty()) reader.widths.pop_front();
        return width;
    }
    std::size_t Fetches() { return producer->Count("DSGetBufferChunkData"); }

    ChunkReader reader{};
    K_IMAGE_INFO last{};
};

TEST_F(ChunkStream, FollowsTheLayout) {
    EXPECT_EQ(640, WidthOf(chunk_frame(1, 7)));
    EXPECT_EQ(7u, last.chunk_layout_id);
    EXPECT_EQ(2u, Fetches()) << "the count, then the list";
    EXPECT_EQ(800, WidthOf(chunk_frame(2, 7, 800)));
    EXPECT_EQ(2u, Fetches()) << "the same layout is not asked for again";
    auto moved = chunk_frame(3, 8, 1024);
    moved.chunks[0].ChunkOffset += 4;
    EXPECT_EQ(480, WidthOf(moved));
    EXPECT_EQ(4u, Fetches());
    EXPECT_EQ(640, WidthOf(chunk_frame(4, 7)));
    EXPECT_EQ(6u, Fetches()) << "only the last layout is remembered";
    CloseStream();
    std::int64_t value = 0;
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(camera, "ChunkWidth", &value)) << "detached at the end";
    for (auto* text : {no_layout_id, no_list, not_attached, thrown}) EXPECT_EQ(0u, debug.Count(text)) << text;
}

TEST_F(ChunkStream, WhatCannotBeHadIsToldOnceAnImageAndNeverStale) {
    struct {
        const char* what;
        const char* text;
        std::function<void(scripted::Frame&)> break_it;
    } faults[] = {
        {"no layout id", no_layout_id,
         [](auto& frame) { frame.infos[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::refusal(GenTL::GC_ERR_NOT_AVAILABLE); }},
        {"no chunks", no_list, [](auto& frame) { frame.chunks.clear(); }},
        {"the list refused", no_list,
         [&](auto&) { producer->Refuse("DSGetBufferChunkData", GenTL::GC_ERR_PARSING_CHUNK_DATA, 2, 1); }},
        {"behind the buffer", not_attached, [](auto& frame) { frame.chunks[0].ChunkOffset = buffer_size - 19; }},
        {"negative", not_attached, [](auto& frame) { frame.chunks[0].ChunkOffset = -1; }},
        {"longer than anything", not_attached, [](auto& frame) { frame.chunks[0].ChunkLength = ~std::size_t{0}; }},
    };
    std::uint64_t id = 0;
    for (auto& fault : faults) {
        ++id;
        EXPECT_EQ(640, WidthOf(chunk_frame(id, 100 + id))) << fault.what;
        ++id;
        auto frame = chunk_frame(id, 100 + id);
        fault.break_it(frame);
        auto before = debug.Count(fault.text);
        EXPECT_EQ(-1, WidthOf(frame)) << fault.what << ": not the values of the image before";
        EXPECT_EQ(id, last.frame_id) << fault.what << ": the image itself is delivered";
        EXPECT_EQ(before + 1, debug.Count(fault.text)) << fault.what;
        producer->Accept("DSGetBufferChunkData");
        EXPECT_EQ(700, WidthOf(chunk_frame(id, 100 + id, 700))) << fault.what << ": one bad image does not cost the others";
    }
}

TEST_F(ChunkStream, LayoutZeroMeansChunksOnlyWhereTheProducerSaysSo) {
    EXPECT_EQ(-1, WidthOf(chunk_frame(1, 0)));
    EXPECT_EQ(0u, Fetches());
    for (std::uint64_t id = 2; id <= 3; ++id) {
        auto frame = chunk_frame(id, 0, static_cast<std::uint32_t>(id));
        EXPECT_EQ(-1, WidthOf(frame)) << "a producer that does not know the question is not asked again";
    }
    EXPECT_EQ(0u, Fetches());
    CloseStream();
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, &reader, reinterpret_cast<AnyFunction>(read_chunk), &stream, buffer_size, 0));
    for (std::uint64_t id = 4; id <= 6; ++id) {
        auto frame = chunk_frame(id, 0, static_cast<std::uint32_t>(id));
        bool with = id != 5;
        frame.infos[GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA] =
            scripted::number_info<std::uint8_t>(GenTL::INFO_DATATYPE_BOOL8, with);
        EXPECT_EQ(with ? static_cast<std::int64_t>(id) : -1, WidthOf(frame)) << "each image has a layout of its own";
    }
}

TEST_F(ChunkStream, ASizeOfNothingComesFromTheChunks) {
    auto frame = chunk_frame(1, 7);
    frame.infos[GenTL::BUFFER_INFO_WIDTH] = frame.infos[GenTL::BUFFER_INFO_HEIGHT] = size_info(0);
    EXPECT_EQ(640, WidthOf(frame));
    EXPECT_EQ(640u, last.width);
    EXPECT_EQ(480u, last.height);
    EXPECT_EQ(3u, last.offset_x);
    EXPECT_EQ(5u, last.offset_y);
    EXPECT_EQ(0x01100007u, last.pixel_type);
    frame.chunks[0].ChunkLength = 8;  // of the numbers, only width and height
    frame.infos[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::number_info<std::uint64_t>(GenTL::INFO_DATATYPE_UINT64, 8);
    WidthOf(frame);
    EXPECT_EQ(640u, last.width);
    EXPECT_EQ(0u, last.offset_x) << "what the chunks do not tell is as the producer said";
    EXPECT_EQ(0x01080001u, last.pixel_type);
    frame.chunks.clear();
    frame.infos[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::number_info<std::uint64_t>(GenTL::INFO_DATATYPE_UINT64, 9);
    WidthOf(frame);
    EXPECT_EQ(0u, last.width) << "not the size of another image";
}

TEST_F(ChunkStream, AHeightOfNothingBesideAWidthIsCompleted) {
    struct {
        const char* from;
        std::function<void(scripted::Frame&)> set;
        std::uint32_t height;
    } cases[] = {
        {"the lines that came", [](auto& f) { f.infos[GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT] = size_info(6); }, 6},
        {"more lines than there is room for: the camera",
         [&](auto& f) {
             f.infos[GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT] = size_info(buffer_size), SetRegister(scripted::reg::height, 5);
         },
         5},
        {"the bytes that came",
         [&](auto& f) { f.infos[GenTL::BUFFER_INFO_SIZE_FILLED] = size_info(33), SetRegister(scripted::reg::height, 0); }, 4},
    };
    std::uint64_t id = 0;
    for (auto& each : cases) {
        auto frame = image_frame(++id, 8, 8);
        frame.infos[GenTL::BUFFER_INFO_HEIGHT] = size_info(0);
        each.set(frame);
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_InvalidateNodes(camera));
        WidthOf(frame);
        EXPECT_EQ(8u, last.width) << each.from;
        EXPECT_EQ(each.height, last.height) << each.from;
    }
}

TEST_F(ChunkStream, AGenICamExceptionOfTheProducerIsAFailedQuestion) {
    EXPECT_EQ(640, WidthOf(chunk_frame(1, 7)));
    for (GenTL::BUFFER_INFO_CMD command : {GenTL::BUFFER_INFO_TIMESTAMP, GenTL::BUFFER_INFO_CHUNKLAYOUTID}) {
        auto before = debug.Count(thrown);
        producer->SetHook("DSGetBufferInfo", [command](const scripted::Call& call) -> std::optional<GenTL::GC_ERROR> {
            if (call.numbers[2] == static_cast<std::uint64_t>(command)) throw GenICam::RuntimeException("of the producer");
            return std::nullopt;
        });
        WidthOf(chunk_frame(2, 7));
        EXPECT_EQ(2u, last.frame_id) << "the image is delivered";
        EXPECT_EQ(before + 1, debug.Count(thrown));
        producer->SetHook("DSGetBufferInfo", nullptr);
    }
}

}  // namespace
}  // namespace kiv_test
