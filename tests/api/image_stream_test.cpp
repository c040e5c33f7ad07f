// The image stream: what it asks of the producer and in which order, and what it delivers.
#include <algorithm>
#include <future>

#include "api/image_stream_fixture.h"

namespace kiv_test {
namespace {

TEST_F(ImageStream, OpensInItsOrder) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    std::vector<std::string> order{"DevGetDataStreamID", "DevGetDataStreamID", "DevOpenDataStream"};
    for (int i = 0; i < 10; ++i) order.insert(order.end(), {"DSAnnounceBuffer", "DSQueueBuffer"});
    order.insert(order.end(), {"GCRegisterEvent", "DSStartAcquisition"});
    auto seen = order;
    seen.insert(seen.end(), {"DevCreateDataStreamMc"});
    EXPECT_EQ(order, producer->Order(seen));
    EXPECT_EQ("STREAM0", producer->CallsOf("DevOpenDataStream")[0].text);
    for (auto& call : producer->CallsOf("DSAnnounceBuffer")) {
        EXPECT_EQ(0u, call.numbers[1] % 16) << "aligned";
        EXPECT_EQ(buffer_size, call.numbers[2]);
        EXPECT_EQ(0u, call.numbers[3]) << "no private pointer";
    }
    EXPECT_EQ(static_cast<std::uint64_t>(GenTL::EVENT_NEW_BUFFER), producer->CallsOf("GCRegisterEvent")[0].numbers[1]);
    auto start = producer->CallsOf("DSStartAcquisition")[0].numbers;
    EXPECT_EQ(0u, start[1]) << "flags";
    EXPECT_EQ(0xFFFFFFFFFFFFFFFFu, start[2]) << "without end";
    EXPECT_EQ(1u, Register(scripted::reg::params_locked));
    void* handle = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetStreamHandle(stream, &handle));
    EXPECT_EQ(&producer->FirstStream(), handle);
}

TEST_F(ImageStream, ClosesInItsOrder) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    auto stale = stream;
    CloseStream();
    std::vector<std::string> order{"DSStopAcquisition", "GCUnregisterEvent", "DSFlushQueue", "DSFlushQueue"};
    order.insert(order.end(), 10, "DSRevokeBuffer");
    order.push_back("DSClose");
    EXPECT_EQ(order, producer->Order(order));
    EXPECT_EQ(1u, producer->CallsOf("DSStopAcquisition")[0].numbers[1]) << "kill";
    EXPECT_EQ(static_cast<std::uint64_t>(GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT), producer->CallsOf("DSFlushQueue")[0].numbers[1]);
    EXPECT_EQ(static_cast<std::uint64_t>(GenTL::ACQ_QUEUE_OUTPUT_DISCARD), producer->CallsOf("DSFlushQueue")[1].numbers[1]);
    EXPECT_EQ(0u, Register(scripted::reg::params_locked));
    EXPECT_THAT(debug.Text(), ::testing::HasSubstr(">>> Terminated Stream Process Loop.\n"));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_CloseStream(stale));
}

TEST_F(ImageStream, DeliversTheRecordAndQueuesTheBufferAgain) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    auto frame = image_frame(41, 64, 48);
    auto size = [](std::size_t value) { return scripted::number_info(GenTL::INFO_DATATYPE_SIZET, value); };
    frame.infos[GenTL::BUFFER_INFO_XOFFSET] = size(3);
    frame.infos[GenTL::BUFFER_INFO_YOFFSET] = size(5);
    frame.infos[GenTL::BUFFER_INFO_XPADDING] = size(7);
    Deliver(frame);
    auto seen = images.Next();
    EXPECT_TRUE(seen.with_context);
    EXPECT_EQ(0x01080001u, seen.info.pixel_type);
    EXPECT_EQ(64u, seen.info.width);
    EXPECT_EQ(48u, seen.info.height);
    EXPECT_EQ(buffer_size, seen.info.image_size);
    EXPECT_EQ(0u, seen.info.reserved);
    EXPECT_EQ(41000u, seen.info.timestamp);
    EXPECT_EQ(10u, seen.info.announced_buffers);
    EXPECT_EQ(9u, seen.info.queued_buffers);
    EXPECT_EQ(0u, seen.info.await_delivery);
    EXPECT_EQ(3u, seen.info.offset_x);
    EXPECT_EQ(5u, seen.info.offset_y);
    EXPECT_EQ(7u, seen.info.padding_x);
    EXPECT_EQ(41u, seen.info.frame_id);
    EXPECT_EQ(2u, seen.info.pass_state);
    EXPECT_EQ(frame.data, seen.data);
    EXPECT_TRUE(WaitForRequeue(1));
    std::vector<std::uint64_t> order{0, 1, 20, 10, 11, 3, 12, 13, 14, 16};
    auto asked = Asked();
    asked.resize(std::min(asked.size(), order.size()));
    EXPECT_EQ(order, asked);
}

TEST_F(ImageStream, ACallbackWithoutContextGetsTheRecordAlone) {
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, nullptr, reinterpret_cast<AnyFunction>(on_image), &stream, buffer_size, 0));
    Deliver(image_frame(1, 64, 48));
    EXPECT_FALSE(images.Next().with_context);
}

TEST_F(ImageStream, WithoutCallbackBuffersAreQueuedAgainUnseen) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, &images, nullptr, &stream, buffer_size, 0));
    producer->ForgetCalls();
    for (std::uint64_t i = 1; i <= 3; ++i) {
        Deliver(image_frame(i, 64, 48));
        EXPECT_TRUE(WaitForRequeue(i));
    }
    EXPECT_EQ(0u, images.Waiting());
}

TEST_F(ImageStream, AProducerOfFourBuffersGivesARingOfFour) {
    producer->max_buffers = 4;
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    for (std::uint64_t i = 1; i <= 6; ++i) {
        Deliver(image_frame(i, 64, 48));
        auto seen = images.Next();
        EXPECT_EQ(4u, seen.info.announced_buffers);
        EXPECT_EQ(i, seen.info.frame_id);
        ASSERT_TRUE(WaitForRequeue(4 + i));
    }
    CloseStream();
    EXPECT_EQ(4u, producer->Count("DSRevokeBuffer"));
}

TEST_F(ImageStream, ABufferThatCannotBeQueuedEndsTheRing) {
    producer->Refuse("DSQueueBuffer", GenTL::GC_ERR_BUSY, 3, 1);
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    EXPECT_EQ(3u, producer->Count("DSAnnounceBuffer"));
    Deliver(image_frame(1, 64, 48));
    EXPECT_EQ(2u, images.Next().info.announced_buffers);
}

TEST_F(ImageStream, NecessaryInfosThatFailSkipTheCallbackButNotTheQueue) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    std::size_t queued = 0;
    for (BUFFER_INFO_CMD command : {0, 1, 10, 11}) {
        auto frame = image_frame(7, 64, 48);
        frame.infos[command] = scripted::refusal(GenTL::GC_ERR_NOT_AVAILABLE);
        Deliver(frame);
        EXPECT_TRUE(WaitForRequeue(++queued)) << command;
        EXPECT_EQ(0u, images.Waiting()) << command;
    }
    for (BUFFER_INFO_CMD command : {3, 12, 13, 14, 16, 20}) {
        auto frame = image_frame(8, 64, 48);
        frame.infos[command] = scripted::refusal(GenTL::GC_ERR_NOT_IMPLEMENTED);
        Deliver(frame);
        EXPECT_EQ(64u, images.Next().info.width) << command;
        EXPECT_TRUE(WaitForRequeue(++queued)) << command;
    }
}

TEST_F(ImageStream, WithoutAPixelFormatImagesAreMono8) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    auto frame = image_frame(1, 64, 48);
    frame.infos.erase(GenTL::BUFFER_INFO_PIXELFORMAT);
    Deliver(frame);
    EXPECT_EQ(0x01080001u, images.Next().info.pixel_type);
}

TEST_F(ImageStream, MemoryThatIsNotOfTheRingIsNeverHandedOut) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    static char elsewhere[buffer_size];
    auto outside = image_frame(1, 64, 48);
    outside.infos[GenTL::BUFFER_INFO_BASE] = scripted::number_info(GenTL::INFO_DATATYPE_PTR, &elsewhere[0]);
    auto too_large = image_frame(2, 64, 48);
    too_large.infos[GenTL::BUFFER_INFO_SIZE] = scripted::number_info<std::size_t>(GenTL::INFO_DATATYPE_SIZET, buffer_size + 1);
    auto absurd = image_frame(3, 64, 48);
    absurd.infos[GenTL::BUFFER_INFO_SIZE] = scripted::number_info<std::size_t>(GenTL::INFO_DATATYPE_SIZET, ~std::size_t{0});
    std::size_t queued = 0;
    for (auto* frame : {&outside, &too_large, &absurd}) {
        Deliver(*frame);
        EXPECT_TRUE(WaitForRequeue(++queued));
        EXPECT_EQ(0u, images.Waiting());
    }
}

TEST_F(ImageStream, StreamInfoCopiesTheSizeWhateverTheResult) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    std::uint64_t value = 0;
    std::uint32_t size = sizeof value;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetStreamInfo(stream, GenTL::STREAM_INFO_NUM_ANNOUNCED, &value, &size));
    EXPECT_EQ(10u, value);
    EXPECT_EQ(8u, size);
    size = 77;
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, K_Image_GetStreamInfo(stream, 999, &value, &size));
    EXPECT_EQ(77u, size);
    char id[32];
    size = sizeof id;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_GetStreamInfo(stream, GenTL::STREAM_INFO_ID, id, &size));
    EXPECT_STREQ("STREAM0", id);
    EXPECT_EQ(8u, size);
}

TEST_F(ImageStream, LightStreamsTakeThePayloadSizeOfTheCamera) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStreamLight(camera, 0, &stream));
    EXPECT_EQ(320u * 240u, producer->CallsOf("DSAnnounceBuffer")[0].numbers[2]);
}

TEST_F(ImageStream, LightStreamsOfCamerasWithoutPayloadSizeAskForEmptyBuffers) {
    CloseCamera();
    std::string without = scripted::camera_description;
    auto at = without.find("\"PayloadSize\"");
    without.replace(at, 13, "\"NoPayloadSize\"");
    {
        std::lock_guard guard(producer->lock);
        producer->FirstDevice().remote.Describe("Without.xml", without);
    }
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_OpenStreamLight(camera, 0, &stream));
    ASSERT_LT(0u, producer->Count("DSAnnounceBuffer"));
    EXPECT_EQ(0u, producer->CallsOf("DSAnnounceBuffer")[0].numbers[2]);
}

TEST_F(ImageStream, ImagesOfASlowCallbackAreNotLostWhileBuffersLast) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    for (std::uint64_t i = 1; i <= 10; ++i) producer->Deliver(producer->FirstStream(), image_frame(i, 64, 48));
    for (std::uint64_t i = 1; i <= 10; ++i) EXPECT_EQ(i, images.Next().info.frame_id);
}

TEST_F(ImageStream, AStrictProducerIsAskedForItsCountsInItsOwnFormFromTheSecondTimeOn) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    for (std::uint64_t id = 1; id <= 2; ++id) {
        Deliver(image_frame(id, 64, 48));
        EXPECT_EQ(9u, images.Next().info.queued_buffers);
        ASSERT_TRUE(WaitForRequeue(id));
        std::size_t asked = 0;
        for (auto& call : producer->CallsOf("DSGetInfo")) asked += call.numbers[1] == GenTL::STREAM_INFO_NUM_QUEUED;
        EXPECT_EQ(1 + id, asked);
    }
}

TEST_F(ImageStream, EveryBufferIsAccountedFor) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    producer->ForgetCalls();
    {
        std::lock_guard guard(producer->lock);
        producer->FirstStream().infos[GenTL::STREAM_INFO_NUM_UNDERRUN] =
            scripted::number_info<std::uint64_t>(GenTL::INFO_DATATYPE_UINT64, 77);
    }
    std::size_t queued = 0;
    auto pass = [&](const scripted::Frame& frame) {
        Deliver(frame);
        ASSERT_TRUE(WaitForRequeue(++queued));
    };
    auto broken = image_frame(3, 64, 48);
    broken.infos[GenTL::BUFFER_INFO_WIDTH] = scripted::refusal(GenTL::GC_ERR_NOT_AVAILABLE);
    auto torn = image_frame(6, 64, 48);
    torn.infos[GenTL::BUFFER_INFO_IS_INCOMPLETE] = scripted::number_info<std::uint8_t>(GenTL::INFO_DATATYPE_BOOL8, 1);
    pass(image_frame(1, 64, 48));
    pass(image_frame(2, 64, 48));
    pass(broken);
    pass(torn);                         // 3 was skipped; 4 and 5 never came
    pass(image_frame(0xFFFE, 64, 48));  // a device that was restarted: as many as the numbers say
    pass(image_frame(2, 64, 48));       // past the end of 16 bits: 0xFFFF and 1 are missing
    pass(image_frame(1, 64, 48));       // counting anew is no gap
    pass(image_frame(0, 64, 48));       // nor is not counting
    producer->Refuse("DSQueueBuffer", GenTL::GC_ERR_BUSY, 1, 1);
    pass(image_frame(0, 64, 48));
    ++queued;  // the buffer that was refused is offered again with the next one
    pass(image_frame(0, 64, 48));
    auto expect = [&](const char* when) {
        K_STREAM_STATISTICS seen{};
        ASSERT_STATUS(K_ST_SUCCESS, K_Image_GetStreamStatistics(stream, &seen));
        EXPECT_EQ(9u, seen.delivered) << when;
        EXPECT_EQ(1u, seen.incomplete) << when;
        EXPECT_EQ(1u, seen.skipped) << when;
        EXPECT_EQ(0u, seen.discarded) << when;
        EXPECT_EQ(1u, seen.requeue_failures) << when;
        EXPECT_EQ(77u, seen.lost) << when;
        EXPECT_EQ(2u + (0xFFFEu - 6 - 1) + 2, seen.missing_ids) << when;
    };
    expect("while it runs");
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Image_GetStreamStatistics(stream, nullptr));
    CloseCamera();
    expect("after the camera was closed");
}

struct Question {
    THRD_HANDLE* stream = nullptr;
    std::uint8_t incomplete = 0;
    std::uint32_t size = 8;
    K_STATUS_CODES known = K_ST_ERROR, unknown = K_ST_ERROR;
    std::uint64_t event_ns = 0, called_ns = 0;
    std::promise<void> done;
};
std::uint64_t steady_ns() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}
void ask_more(void* context, K_IMAGE_INFO*) {
    auto& asked = *static_cast<Question*>(context);
    asked.called_ns = steady_ns();
    K_Image_GetEventTime(*asked.stream, &asked.event_ns);
    asked.known = K_Image_GetBufferInfo(*asked.stream, GenTL::BUFFER_INFO_IS_INCOMPLETE, &asked.incomplete, &asked.size);
    std::uint32_t size = 99;
    asked.unknown = K_Image_GetBufferInfo(*asked.stream, 1999, &asked.incomplete, &size);
    asked.done.set_value();
}

TEST_F(ImageStream, TheCallbackMayAskMoreAboutItsBuffer) {
    Question asked;
    asked.stream = &stream;
    ASSERT_STATUS(K_ST_SUCCESS,
                  K_Image_OpenStream(camera, 0, &asked, reinterpret_cast<AnyFunction>(ask_more), &stream, buffer_size, 0));
    auto torn = image_frame(1, 64, 48);
    torn.infos[GenTL::BUFFER_INFO_IS_INCOMPLETE] = scripted::number_info<std::uint8_t>(GenTL::INFO_DATATYPE_BOOL8, 1);
    const auto before = steady_ns();
    Deliver(torn);
    ASSERT_EQ(std::future_status::ready, asked.done.get_future().wait_for(std::chrono::seconds(10)));
    EXPECT_STATUS(K_ST_SUCCESS, asked.known);
    EXPECT_EQ(1u, asked.incomplete);
    EXPECT_EQ(1u, asked.size);
    EXPECT_STATUS(K_ST_NOT_IMPLEMENTED, asked.unknown);
    std::uint32_t size = 8;
    EXPECT_LE(before, asked.event_ns);
    EXPECT_LE(asked.event_ns, asked.called_ns);
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Image_GetBufferInfo(stream, GenTL::BUFFER_INFO_SIZE, &size, &size))
        << "not in the callback";
    EXPECT_STATUS(K_ST_NOT_AVAILABLE, K_Image_GetEventTime(stream, &asked.event_ns));
}

TEST_F(ImageStream, TheAcquisitionStopsAndStartsUnderTheRunningThread) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
    SetRegister(scripted::reg::params_locked, 7);
    producer->ForgetCalls();
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_DSStopAcquisition(stream, 5));
    EXPECT_EQ(5u, producer->CallsOf("DSStopAcquisition")[0].numbers[1]);
    EXPECT_STATUS(GenTL::GC_ERR_RESOURCE_IN_USE, K_Image_DSStopAcquisition(stream, 0)) << "the producer's answer";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_DSStartAcquisition(stream, 3, 12));
    auto start = producer->CallsOf("DSStartAcquisition")[0].numbers;
    EXPECT_EQ(3u, start[1]) << "on any producer";
    EXPECT_EQ(12u, start[2]);
    EXPECT_EQ(7u, Register(scripted::reg::params_locked)) << "nothing is locked or unlocked";
    Deliver(image_frame(1, 64, 48));
    EXPECT_EQ(1u, images.Next().info.frame_id);
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_DSStartAcquisition(nullptr, 0, 1));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_DSStopAcquisition(nullptr, 0));
}

TEST_F(ImageStream, FeaturesOfTheCameraByName) {
    std::int64_t value = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_DSSetValueInt64(camera, "Width", 64));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_DSGetValueInt64(camera, "Width", &value));
    EXPECT_EQ(64, value);
    EXPECT_STATUS(K_ST_GC_ERROR, K_Image_DSSetValueInt64(camera, "Width", 65)) << "verified";
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_DSExecuteCommand(camera, "Trigger"));
    EXPECT_EQ(1u, Register(scripted::reg::command));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Image_DSExecuteCommand(camera, "NoSuchFeature"));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Image_DSGetValueInt64(nullptr, "Width", &value));
}

// ---- GigE Vision ----

TEST_F(ImageStreamGigE, TakesTheMulticastExtensionAndAsksTheProducersOwnInfo) {
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, &images, reinterpret_cast<AnyFunction>(on_image_with_context),
                                                   &stream, buffer_size, 9));
    auto opened = producer->CallsOf("DevCreateDataStreamMc");
    ASSERT_EQ(1u, opened.size());
    EXPECT_EQ(0u, opened[0].numbers[1]);
    EXPECT_EQ(9u, opened[0].numbers[2]);
    EXPECT_EQ(0u, producer->Count("DevOpenDataStream"));
    EXPECT_EQ(1u, producer->CallsOf("DSStartAcquisition")[0].numbers[1]) << "flags";
    auto frame = image_frame(1, 64, 48);
    frame.infos[1001] = scripted::number_info<std::uint32_t>(GenTL::INFO_DATATYPE_UINT32, 0xBEEF);
    Deliver(frame);
    EXPECT_EQ(0xBEEFu, images.Next().info.producer_specific);
    ASSERT_TRUE(WaitForRequeue(11));
    std::vector<std::uint64_t> order{0, 1, 20, 10, 11, 3, 1001, 12, 13, 14, 16};
    auto asked = Asked();
    asked.resize(std::min(asked.size(), order.size()));
    EXPECT_EQ(order, asked);
    for (auto& call : producer->CallsOf("DSGetBufferInfo")) EXPECT_EQ(call.numbers[2] == 1001 ? 4u : 8u, call.numbers[3]);
}

TEST_F(ImageStreamGigE, AProducerThatKnowsNoStartFlagIsStartedWithoutIt) {
    for (GenTL::GC_ERROR status : {GenTL::GC_ERR_NOT_IMPLEMENTED, GenTL::GC_ERR_INVALID_PARAMETER}) {
        producer->ForgetCalls();
        producer->Refuse("DSStartAcquisition", status, 1, 1);
        ASSERT_STATUS(K_ST_SUCCESS, OpenStream());
        auto starts = producer->CallsOf("DSStartAcquisition");
        ASSERT_EQ(2u, starts.size());
        EXPECT_EQ(1u, starts[0].numbers[1]);
        EXPECT_EQ(0u, starts[1].numbers[1]);
        Deliver(image_frame(1, 64, 48));
        EXPECT_EQ(1u, images.Next().info.frame_id);
        CloseStream();
    }
}

}  // namespace
}  // namespace kiv_test
