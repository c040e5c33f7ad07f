// Chunk data of buffers that the caller acquires.
#include <array>
#include <cstring>

#include "support/scripted_factory.h"

namespace kiv_test {
namespace {

constexpr std::uint64_t chunk_id = 0xC0DE;

/// A buffer whose chunk stands at `offset`, with those five numbers in it.
std::array<std::uint8_t, 64> chunk_buffer(std::size_t offset, std::array<std::uint32_t, 5> numbers) {
    std::array<std::uint8_t, 64> buffer{};
    std::memcpy(&buffer[offset], numbers.data(), sizeof numbers);
    return buffer;
}

class Chunks : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenCamera()); }
    std::int64_t Value(const char* feature) {
        std::int64_t value = -1;
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, feature, &value)) << feature;
        return value;
    }
    K_STATUS_CODES Read(const char* feature) {
        std::int64_t value = 0;
        return K_Camera_GetValueInt64(camera, feature, &value);
    }

    std::array<std::uint8_t, 64> first = chunk_buffer(8, {640, 480, 3, 5, 0x01080001});
    std::array<std::uint8_t, 64> second = chunk_buffer(8, {320, 240, 7, 9, 0x01100007});
    const K_SINGLE_CHUNK_DATA list[1] = {{chunk_id, 8, 20}};
};

TEST_F(Chunks, ReadFromTheBufferThatWasAttachedLast) {
    EXPECT_STATUS(K_ST_GC_ERROR, Read("ChunkWidth"));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_AttachChunkData(camera, first.data(), list, 1));
    EXPECT_EQ(640, Value("ChunkWidth"));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_UpdateChunkData(camera, second.data()));
    EXPECT_EQ(320, Value("ChunkWidth"));
    EXPECT_EQ(9, Value("ChunkOffsetY"));
    const K_SINGLE_CHUNK_DATA elsewhere[] = {{0xBEEF, 0, 8}, {chunk_id, 12, 16}};
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_AttachChunkData(camera, first.data(), elsewhere, 2));
    EXPECT_EQ(480, Value("ChunkWidth")) << "another layout";
    for (int times = 0; times < 2; ++times) EXPECT_STATUS(K_ST_SUCCESS, K_Camera_DetachChunkData(camera));
    EXPECT_STATUS(K_ST_GC_ERROR, Read("ChunkWidth"));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_UpdateChunkData(camera, first.data())) << "a new start";
}

TEST_F(Chunks, AnswerWhatIsWrong) {
    auto* none = static_cast<CAM_HANDLE>(nullptr);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_AttachChunkData(none, first.data(), list, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_AttachChunkData(camera, nullptr, list, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_AttachChunkData(camera, first.data(), nullptr, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_UpdateChunkData(none, first.data()));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_UpdateChunkData(camera, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_DetachChunkData(none));

    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_UpdateChunkData(camera, first.data()));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_DetachChunkData(camera));
    EXPECT_STATUS(K_ST_NOT_INITIALIZED, K_Camera_AttachChunkData(camera, first.data(), list, 0));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_UpdateChunkData(camera, first.data())) << "the adapter is there";

    // A list that cannot be true takes away what was attached, and is not in the record of GenICam errors.
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_AttachChunkData(camera, first.data(), list, 1));
    EXPECT_STATUS(K_ST_GC_ERROR, Read("Faulty"));
    auto before = last_genicam_error();
    const K_SINGLE_CHUNK_DATA negative[] = {{chunk_id, -8, 20}};
    EXPECT_STATUS(K_ST_ERROR, K_Camera_AttachChunkData(camera, first.data(), negative, 1));
    EXPECT_STATUS(K_ST_ERROR, K_Camera_AttachChunkData(camera, first.data(), list, ~std::uint64_t{0}));
    EXPECT_STREQ(before.sDescription, last_genicam_error().sDescription);
    EXPECT_STATUS(K_ST_GC_ERROR, Read("ChunkWidth"));
}

CAM_HANDLE seen_camera = nullptr;
int detached = 0;
void detach_inside(void*) {
    if (detached++ > 0) return;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_DetachChunkData(seen_camera));
}

TEST_F(Chunks, MayBeDetachedByACallbackOfTheirOwn) {
    seen_camera = camera;
    ASSERT_STATUS(K_ST_SUCCESS, K_Node_RegisterCallback(Node("ChunkWidth"), detach_inside));
    detached = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_AttachChunkData(camera, first.data(), list, 1));
    EXPECT_LT(0, detached);
    EXPECT_STATUS(K_ST_GC_ERROR, Read("ChunkWidth")) << "detached when the attach was over";
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_UpdateChunkData(camera, first.data()));
}

}  // namespace
}  // namespace kiv_test
