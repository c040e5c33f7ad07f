// Data streams: what is asked of the producer, what comes back, and streams that fail, close twice or outlive their camera.
#include <algorithm>
#include <thread>

#include "api/data_stream_fixture.h"

namespace kiv_test {
namespace {

using scripted::image_frame;
using scripted::reg::params_locked;

TEST_F(DataStream, OpensInItsOrder) {
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetNumOfDataStreams(camera, &count));
    EXPECT_EQ(1u, count);
    SetRegister(params_locked, 1);
    producer->ForgetCalls();
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_CreateDataStream(camera, 0, &stream));
    Strings order{"DevGetNumDataStreams", "DevGetDataStreamID", "DevGetDataStreamID", "DevOpenDataStream"};
    EXPECT_EQ(order, producer->Order(order));
    auto first = producer->CallsOf("DevGetDataStreamID")[0].numbers;
    EXPECT_EQ(0u, first[2]) << "the size is asked for first";
    EXPECT_EQ(25u, first[3]);
    EXPECT_EQ("STREAM0", producer->CallsOf("DevOpenDataStream")[0].text);
    EXPECT_EQ(1u, Register(params_locked)) << "nothing is written";
    NODE_HANDLE node = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNodeByName(stream, "StreamPort", &node));
}

TEST_F(DataStream, AFailureOfTheOpeningLeavesTheProducerAlone) {
    struct {
        const char* entry;
        K_STATUS_CODES status;
        unsigned from;
    } failures[] = {{"DevGetNumDataStreams", K_ST_NOT_AVAILABLE, 1},
                    {"DevGetDataStreamID", K_ST_INVALID_ID, 1},
                    {"DevGetDataStreamID", K_ST_INVALID_ID, 2},
                    {"DevOpenDataStream", K_ST_INVALID_HANDLE, 1},
                    {"GCGetPortURLInfo", K_ST_INVALID_HANDLE, 1}};
    for (auto& failure : failures) {
        producer->Refuse(failure.entry, GenTL::GC_ERR_IO, failure.from);
        if (failure.entry == std::string("GCGetPortURLInfo")) producer->Refuse("GCGetPortURL", GenTL::GC_ERR_IO);
        EXPECT_STATUS(failure.status, K_Camera_CreateDataStream(camera, 0, &stream)) << failure.entry;
        EXPECT_EQ(nullptr, stream);
        producer->Accept(failure.entry);
        producer->Accept("GCGetPortURL");
    }
    EXPECT_STATUS(K_ST_INVALID_ID, K_Camera_CreateDataStream(camera, 1, &stream)) << "no such stream";
    EXPECT_THAT(producer->OpenModules(), ::testing::Contains("STREAM0")) << "opened by the last of them and left open";
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_CreateDataStream(camera, 0, &stream)) << "it is in use";
    CloseCamera();
    EXPECT_EQ(0u, producer->Count("DSClose")) << "its device closes it";
}

TEST_F(DataStream, ADeviceWithoutStreamsHasNone) {
    producer->FirstDevice().streams.clear();
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Camera_CreateDataStream(camera, 0, &stream));
    EXPECT_EQ(0u, producer->Count("DevGetDataStreamID"));
}

TEST_F(DataStream, WithoutTheMulticastExtensionThereIsNoMulticastStream) {
    SetRegister(params_locked, 1);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_CreateDataStreamMc(camera, 0, &stream, 2));
    EXPECT_EQ(nullptr, stream);
    EXPECT_EQ(0u, Register(params_locked));
}

TEST_F(DataStreamGigE, TheMulticastExtensionOpensWithoutListing) {
    producer->Refuse("DevCreateDataStreamMc", GenTL::GC_ERR_ACCESS_DENIED, 1, 1);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_CreateDataStreamMc(camera, 0, &stream, 2));
    SetRegister(params_locked, 1);
    producer->ForgetCalls();
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_CreateDataStreamMc(camera, 0, &stream, 0x12345678));
    EXPECT_EQ((std::vector<std::uint64_t>{scripted_address(Device()), 0, 0x12345678}),
              producer->CallsOf("DevCreateDataStreamMc")[0].numbers);
    EXPECT_EQ(0u, producer->Count("DevGetNumDataStreams") + producer->Count("DevGetDataStreamID"));
    EXPECT_EQ(0u, Register(params_locked));
}

TEST_F(DataStream, AcquiresIntoTheCallersMemory) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    EXPECT_EQ((std::vector<std::uint64_t>{scripted_address(StreamModule()), scripted_address(memory.data()), memory.size(),
                                          scripted_address(this)}),
              producer->CallsOf("DSAnnounceBuffer")[0].numbers);
    EXPECT_EQ(1u, Register(params_locked));
    auto frame = image_frame(7, 64, 48);
    frame.chunks = {{11, 0, 8}, {12, 16, 4}};
    ASSERT_TRUE(producer->Deliver(producer->FirstStream(), frame));
    EXPECT_EQ(7, memory[100]);

    BUF_HANDLE found = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetBufferID(stream, 0, &found));
    EXPECT_EQ(buffer, found);
    std::uint64_t number = 0;
    std::uint32_t size = sizeof number;
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetBufferInfo(stream, buffer, GenTL::BUFFER_INFO_FRAMEID, &number, &size));
    EXPECT_EQ(7u, number);
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetStreamInfo(stream, GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY, &number, &size));
    EXPECT_EQ(1u, number);
    std::uint64_t chunks = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetBufferChunkData(stream, buffer, nullptr, &chunks));
    ASSERT_EQ(2u, chunks);
    K_SINGLE_CHUNK_DATA list[2]{};
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetBufferChunkData(stream, buffer, list, &chunks));
    EXPECT_EQ(12u, list[1].chunk_id);
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_DataStream_GetBufferChunkData(stream, buffer, list, nullptr)) << "no room";

    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StopAcquisition(stream));
    EXPECT_EQ(0u, producer->CallsOf("DSStopAcquisition")[0].numbers[1]) << "flags";
    EXPECT_EQ(0u, Register(params_locked));
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_FlushQueue(stream, GenTL::ACQ_QUEUE_ALL_DISCARD));
    void* base = nullptr;
    void* context = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_RevokeBuffer(stream, buffer, &base, &context));
    EXPECT_EQ(memory.data(), base);
    EXPECT_EQ(this, context);
}

TEST_F(DataStreamGigE, TheStartPassesCountAndFlags) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    struct {
        const char* type;
        std::uint64_t flags;
    } types[] = {{"GEV", 1}, {"GigEVision", 1}, {"GEVther", 1}, {"GigE", 0}, {"U3V", 0}, {"CL", 0}, {"", 0}};
    for (auto& [type, flags] : types) {
        SetType(type);
        for (std::uint64_t count : {0, 5}) {
            producer->ForgetCalls();
            EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 1, count));
            EXPECT_EQ((std::vector<std::uint64_t>{scripted_address(StreamModule()), flags, count ? count : 4294967295u}),
                      producer->CallsOf("DSStartAcquisition")[0].numbers)
                << type;
            EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StopAcquisition(stream));
        }
    }
    SetType("GEV");
    producer->Refuse("TLGetInfo", GenTL::GC_ERR_ERROR, 1, 1);
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 1, 1));
    EXPECT_EQ(0u, producer->CallsOf("DSStartAcquisition").back().numbers[1]) << "a producer that does not tell its type";
}

TEST_F(DataStreamGigE, AStrictProducerIsAskedWithoutTheFlag) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    producer->SetHook("DSStartAcquisition", [](const scripted::Call& call) -> std::optional<GenTL::GC_ERROR> {
        if (call.numbers[1] != 0) return GenTL::GC_ERR_NOT_IMPLEMENTED;
        return std::nullopt;
    });
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_DataStream_StartAcquisition(stream, 2, 5)) << "the caller's own flags are not dropped";
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 1, 5));
    EXPECT_EQ(5u, producer->CallsOf("DSStartAcquisition").back().numbers[2]);
    producer->SetHook("DSStartAcquisition", nullptr);
}

TEST_F(DataStream, TheStopAnswersForTheUnlocking) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StopAcquisition(stream)) << "never started, which the producer refused";
    producer->Refuse("GCWritePort", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 0, 1)) << "the lock is a wish";
    EXPECT_GENICAM_ERROR("Access Denied", "TLParamsLocked", K_DataStream_StopAcquisition(stream));
    EXPECT_EQ(2u, producer->Count("DSStopAcquisition"));
    producer->Accept("GCWritePort");
}

TEST_F(DataStream, WithoutTheFeatureTheStopAnswersForTheProducer) {
    CloseCamera();
    camera = nullptr;
    producer->FirstDevice().remote.Describe("plain.xml", scripted::plain_description("Device"));
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    EXPECT_STATUS(K_ST_RESOURCE_IN_USE, K_DataStream_StopAcquisition(stream));
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StartAcquisition(stream, 0, 1));
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_StopAcquisition(stream));
}

TEST_F(DataStream, FindsFaultInItsOrder) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    auto closed = stream;
    CloseStream();
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    int byte = 0;
    void* any = &byte;
    std::uint32_t size = sizeof byte;
    auto other = reinterpret_cast<STREAM_HANDLE>(camera);
    for (auto bad : {STREAM_HANDLE(), closed == stream ? other : closed, other}) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_AnnounceBuffer(bad, nullptr, 0, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_FlushQueue(bad, -1));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_StartAcquisition(bad, 0, 0));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_StopAcquisition(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetStreamInfo(bad, 0, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetBufferID(bad, 0, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_RevokeBuffer(bad, nullptr, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_QueueBuffer(bad, any));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetBufferInfo(bad, any, 0, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetBufferChunkData(bad, any, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetParam(bad, -1, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_SetParam(bad, -1, nullptr, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_Close(bad));
    }
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_GetNumOfDataStreams(nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_GetNumOfDataStreams(camera, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_CreateDataStream(nullptr, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_CreateDataStream(camera, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Camera_CreateDataStreamMc(nullptr, 0, nullptr, 0));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Camera_CreateDataStreamMc(camera, 0, nullptr, 0));
    producer->ForgetCalls();
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_AnnounceBuffer(stream, nullptr, 4, nullptr, &any));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_AnnounceBuffer(stream, any, 4, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_FlushQueue(stream, -1));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetStreamInfo(stream, 0, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetStreamInfo(stream, 0, any, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetBufferID(stream, 0, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_RevokeBuffer(stream, nullptr, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_RevokeBuffer(stream, any, nullptr, &any));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_QueueBuffer(stream, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetBufferInfo(stream, nullptr, 0, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetBufferInfo(stream, any, 0, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetBufferInfo(stream, any, 0, any, nullptr));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_GetBufferChunkData(stream, nullptr, nullptr, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetBufferChunkData(stream, any, nullptr, nullptr));
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_DataStream_GetParam(stream, -1, nullptr, nullptr)) << "the entry comes first";
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_DataStream_SetParam(stream, 1, any, &size));
    EXPECT_EQ(sizeof byte, size);
    EXPECT_THAT(producer->Calls(), ::testing::IsEmpty());
}

TEST_F(DataStreamGigE, SizesComeBackWhateverTheResult) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    char bytes[64] = {};
    std::uint32_t size = 3;
    EXPECT_STATUS(GenTL::GC_ERR_BUFFER_TOO_SMALL, K_DataStream_GetStreamInfo(stream, GenTL::STREAM_INFO_ID, bytes, &size));
    size = sizeof bytes;
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetStreamInfo(stream, GenTL::STREAM_INFO_ID, bytes, &size));
    EXPECT_EQ(8u, size);
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_DataStream_GetParam(stream, -1, bytes, &size));
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_GetParam(stream, 42, bytes, &size));
    EXPECT_EQ(42, bytes[0]);
    EXPECT_EQ(4u, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_DataStream_SetParam(stream, 42, bytes, &size));
    EXPECT_EQ((std::vector<std::uint64_t>{scripted_address(StreamModule()), 42, scripted_address(bytes), 4}),
              producer->CallsOf("DSSetStreamParam")[0].numbers);
    BUF_HANDLE untouched = this;
    EXPECT_STATUS(GenTL::GC_ERR_INVALID_INDEX, K_DataStream_GetBufferID(stream, 9, &untouched));
    EXPECT_EQ(this, untouched);
}

TEST_F(DataStream, ACameraThatClosesTakesItsStreamsAlong) {
    ASSERT_NO_FATAL_FAILURE(OpenStream());
    ASSERT_NO_FATAL_FAILURE(StartWithBuffer());
    CloseCamera();
    camera = nullptr;
    EXPECT_EQ((Strings{"DSClose", "DevClose"}), producer->Order({"DSClose", "DevClose"}));
    CloseFactory();
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_QueueBuffer(stream, buffer));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_StopAcquisition(stream));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_DataStream_RegisterEvent(stream, 1, condition, &event));
    NODE_HANDLE node = nullptr;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_GetNodeByName(stream, "StreamPort", &node));
    CloseStream();
}

TEST_F(DataStream, AnyOfManyThreadsMayCloseIt) {
    for (int round = 0; round < 20; ++round) {
        CloseCamera();
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        ASSERT_NO_FATAL_FAILURE(OpenStream());
        std::array<K_STATUS_CODES, 2> results{};
        std::vector<std::thread> threads;
        for (auto& result : results) threads.emplace_back([&] { result = K_DataStream_Close(stream); });
        threads.emplace_back([&] { EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(camera)); });
        threads.emplace_back([&] {
            BUF_HANDLE found = nullptr;
            EXPECT_NE(K_ST_SUCCESS, K_DataStream_GetBufferID(stream, 0, &found));
        });
        for (auto& each : threads) each.join();
        EXPECT_EQ(K_ST_INVALID_HANDLE, results[0] + results[1]);
        EXPECT_EQ(1u, producer->Count("DSClose"));
        stream = nullptr;
        camera = nullptr;
    }
    expect_clean_end = false;  // the call on the stream may have come when it was closed
}

}  // namespace
}  // namespace kiv_test
