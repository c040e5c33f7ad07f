// Messages and chunks of the simulated camera in its own node map.

#include "GenApi/chunk_adapter.h"
#include "GenApi/event_adapter.h"
#include "engine_map.h"

namespace kiv::test {
namespace {

class CameraMap : public EngineMap {
protected:
    CameraMap() : EngineMap(KIV_SIM_GEV_PRODUCER, "KIV_SIM_GEV_CONFIG") {
        Configure(R"({"interfaces": [{"cameras": [{"serial": "G1", "id": "G1", "width": 128, "height": 96, "frame_rate": 500,
            "url": "plain"}]}]})");
    }
    void OpenMap() {
        ASSERT_NO_FATAL_FAILURE(OpenInterface("GEV0"));
        ASSERT_NO_FATAL_FAILURE(Open("G1"));
        ASSERT_NO_FATAL_FAILURE(Load(camera, "Device"));
    }
    void Set(const char* feature, const char* value) { Node<GenApi::IValue>(feature).FromString(value); }
    int64_t Number(const char* feature) { return Node<GenApi::IInteger>(feature).GetValue(); }
};

TEST_F(CameraMap, AMessageReachesTheNodesOfItsEventInBothForms) {
    ASSERT_NO_FATAL_FAILURE(OpenMap());
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(device, EVENT_CUSTOM_ID, &event));
    GenApi::CEventAdapterGEV adapter(map.get());
    Set("EventSelector", "ExposureEnd");
    Set("EventNotification", "On");
    Set("ExposureTime", "1000");
    Set("TriggerMode", "On");
    Node<GenApi::ICommand>("AcquisitionStart").Execute();
    EXPECT_EQ(GenApi::NA, Access("EventExposureEndTimestamp"));
    uint64_t before = 0;
    for (const char* extended : {"Off", "On"}) {
        Set("GevGVCPExtendedIDMode", extended);
        Node<GenApi::ICommand>("TriggerSoftware").Execute();
        uint8_t message[576];
        size_t size = sizeof message;
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, message, &size, 20000));
        adapter.DeliverMessage(message, static_cast<uint32_t>(size));
        EXPECT_EQ(before == 0 ? 1 : 2, Number("EventExposureEndFrameID")) << extended;
        const auto time = static_cast<uint64_t>(Number("EventExposureEndTimestamp"));
        EXPECT_GT(time, before) << extended;
        EXPECT_LT(time, before + 100'000'000'000'000) << "taken from its own bytes";
        before = time;
        EXPECT_EQ(GenApi::NA, Access("EventTestTimestamp")) << "other events are not concerned";
    }
    EXPECT_EQ(0x9004, Number("EventExposureEnd"));
}

TEST_F(CameraMap, ChunksTellWhatTheImageIs) {
    ASSERT_NO_FATAL_FAILURE(OpenMap());
    Set("Width", "64");
    Set("OffsetX", "32");
    Set("ChunkModeActive", "1");
    Set("ChunkPayloadOnly", "1");
    for (const char* kind : {"OffsetX", "Width", "Height", "PixelFormat", "FrameID", "ExposureTime", "CounterValue"}) {
        Set("ChunkSelector", kind);
        Set("ChunkEnable", "1");
    }
    Set("CounterSelector", "Counter1");
    Set("CounterValue", "77");
    EXPECT_EQ(static_cast<int64_t>(StreamInfo<size_t>(STREAM_INFO_PAYLOAD_SIZE, INFO_DATATYPE_SIZET)), Number("PayloadSize"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1));
    const EVENT_HANDLE event = RegisterNewBuffer();
    QueueAll();
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    Trigger();
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    size_t count = 0;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSGetBufferChunkData(stream, buffer, nullptr, &count));
    std::vector<SINGLE_CHUNK_DATA> chunks(count);
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSGetBufferChunkData(stream, buffer, chunks.data(), &count));

    GenApi::CChunkAdapterGeneric adapter(map.get());
    GenApi::AttachStatistics_t statistics{};
    adapter.AttachBuffer(reinterpret_cast<uint8_t*>(memory[0].data()),
                         reinterpret_cast<const GenApi::SingleChunkData_t*>(chunks.data()), static_cast<int64_t>(count),
                         &statistics);
    EXPECT_EQ(8, statistics.NumAttachedChunks) << "the image and the seven others";
    EXPECT_EQ(64, Number("ChunkWidth"));
    EXPECT_EQ(96, Number("ChunkHeight"));
    EXPECT_EQ(32, Number("ChunkOffsetX"));
    EXPECT_EQ("Mono8", Text("ChunkPixelFormat"));
    EXPECT_EQ(1, Number("ChunkFrameID"));
    EXPECT_EQ(100.0, Node<GenApi::IFloat>("ChunkExposureTime").GetValue());
    Set("ChunkCounterSelector", "Counter1");
    EXPECT_EQ(77, Number("ChunkCounterValue"));
    EXPECT_EQ(64 * 96, Node<GenApi::IRegister>("ChunkImage").GetLength());
    EXPECT_EQ(GenApi::NA, Access("ChunkTimestamp")) << "not enabled";
}

}  // namespace
}  // namespace kiv::test
