// The whole way, from identifier to image, with the simulated producer.
#include "support/sim_camera.h"

#include <GenTL/GenTL.h>

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>

#include "support/scripted_factory.h"
#include "support/system/process.h"

namespace kiv_test {
namespace {

class SimCameraTest : public SimCamera {
protected:
    /// What a second process reads.
    std::string Peek(const std::string& id, const std::string& feature) {
        return Process::Talking(KIV_PEEK, {folder.In("registry.xml"), id, feature})->ReadLine();
    }
    K_STATUS_CODES Set(const char* feature, const char* text) { return K_Camera_SetValueString(camera, feature, text); }
    K_STATUS_CODES Execute(const char* feature) { return K_Camera_ExecuteCommand(camera, feature); }
};

const std::string first_id = "TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_T0001";

TEST_F(SimCameraTest, ListsItsCamerasWithTheirTexts) {
    ASSERT_NO_FATAL_FAILURE(OpenFactory());
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &count));
    ASSERT_EQ(2u, count);
    EXPECT_EQ(first_id, camera_id_at(factory, 0));
    char text[64];
    struct {
        std::uint32_t command;
        const char* text;
    } infos[] = {{1, "Kiv"}, {2, "KivSim-5MC"}, {7, "T0001"}, {1003, "SIM0_T0001"}};
    for (auto& info : infos) {
        std::uint32_t size = sizeof text;
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetCameraInfo(factory, first_id.c_str(), info.command, text, &size))
            << info.command;
        EXPECT_THAT(text, ::testing::StartsWith(info.text));
    }
}

TEST_F(SimCameraTest, BothKindsOfDescriptionGiveACamera) {
    for (auto* serial : {"T0001", "T0002"}) {
        ASSERT_NO_FATAL_FAILURE(OpenCamera(serial));
        EXPECT_EQ(serial, Text("DeviceSerialNumber"));
        EXPECT_EQ(128, Integer("Width"));
        EXPECT_EQ(96, Integer("Height"));
        CloseCamera();
    }
}

TEST_F(SimCameraTest, EveryNodeAnswersForItself) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetNumOfNodes(camera, &count));
    EXPECT_LT(100u, count);
    for (std::uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE node = nullptr;
        char name[256];
        std::uint32_t size = sizeof name, type = 0, mode = 99;
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetNodeByIndex(camera, i, &node));
        ASSERT_STATUS(K_ST_SUCCESS, K_Node_GetName(node, name, &size, 0));
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetType(node, &type)) << name;
        EXPECT_LE(100u, type) << name;
        EXPECT_STATUS(K_ST_SUCCESS, K_Node_GetAccessMode(node, &mode)) << name;
        EXPECT_GE(4u, mode) << name;
        std::uint32_t kind = 0;
        char text[8192];
        size = sizeof text;
        auto status = K_Node_GetValueString(node, true, text, &size);
        if (mode < 3) continue;
        EXPECT_THAT(status, ::testing::AnyOf(K_ST_SUCCESS, K_ST_INVALID_PARAMETER, K_ST_INVALID_BUFFER_SIZE))
            << name << ": " << last_genicam_error().sDescription << kind;
    }
}

TEST_F(SimCameraTest, ValuesSurviveToASecondProcess) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "Width", 64));
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(camera, "Width", 1 << 20));
    EXPECT_EQ("status " + std::to_string(K_ST_ACCESS_DENIED), Peek(first_id, "Width")) << "one owner at a time";
    CloseCamera();
    CloseFactory();
    EXPECT_EQ("64", Peek(first_id, "Width"));
    ASSERT_NO_FATAL_FAILURE(OpenCamera());
    EXPECT_EQ(64, Integer("Width"));
    ASSERT_STATUS(K_ST_SUCCESS, Execute("DeviceReset"));
    CloseCamera();
    CloseFactory();
    EXPECT_EQ("128", Peek(first_id, "Width"));
}

struct Grabbed {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<K_IMAGE_INFO> infos;
    std::uint64_t sum = 0;
};

void grab(void* context, K_IMAGE_INFO* image) {
    auto& grabbed = *static_cast<Grabbed*>(context);
    std::lock_guard guard(grabbed.lock);
    auto* bytes = static_cast<const unsigned char*>(image->image_data);
    for (std::uint32_t i = 0; i < image->image_size; ++i) grabbed.sum += bytes[i];
    grabbed.infos.push_back(*image);
    grabbed.changed.notify_all();
}

TEST_F(SimCameraTest, GrabsImages) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera("T0002"));
    ASSERT_STATUS(K_ST_SUCCESS, Set("PixelFormat", "Mono8"));
    auto payload = Integer("PayloadSize");
    EXPECT_LE(128 * 96, payload);
    Grabbed grabbed;
    THRD_HANDLE stream = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, &grabbed, reinterpret_cast<void (*)()>(grab), &stream,
                                                   static_cast<std::uint32_t>(payload), 0));
    ASSERT_STATUS(K_ST_SUCCESS, Execute("AcquisitionStart"));
    {
        std::unique_lock guard(grabbed.lock);
        EXPECT_TRUE(grabbed.changed.wait_for(guard, std::chrono::seconds(30), [&] { return grabbed.infos.size() >= 20; }));
    }
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_SetValueInt64(camera, "Width", 64)) << "locked while images are acquired";
    EXPECT_STATUS(K_ST_SUCCESS, Execute("AcquisitionStop"));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream));
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_SetValueInt64(camera, "Width", 64));
    ASSERT_LE(20u, grabbed.infos.size());
    EXPECT_LT(0u, grabbed.sum);
    for (std::size_t i = 0; i < 20; ++i) {
        auto& info = grabbed.infos[i];
        EXPECT_EQ(128u, info.width);
        EXPECT_EQ(96u, info.height);
        EXPECT_EQ(0x01080001u, info.pixel_type);
        EXPECT_EQ(10u, info.announced_buffers);
        EXPECT_EQ(2u, info.pass_state);
        if (i > 0) {
            EXPECT_LT(grabbed.infos[i - 1].frame_id, info.frame_id);
            EXPECT_LT(grabbed.infos[i - 1].timestamp, info.timestamp);
        }
    }
}

TEST_F(SimCameraTest, AnUnpluggedCameraLeavesOrderlyAndComesBack) {
    ASSERT_NO_FATAL_FAILURE(OpenCamera("T0002"));
    Grabbed grabbed;
    THRD_HANDLE stream = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, &grabbed, reinterpret_cast<void (*)()>(grab), &stream,
                                                   static_cast<std::uint32_t>(Integer("PayloadSize")), 0));
    ASSERT_STATUS(K_ST_SUCCESS, Execute("AcquisitionStart"));
    {
        std::unique_lock guard(grabbed.lock);
        EXPECT_TRUE(grabbed.changed.wait_for(guard, std::chrono::seconds(30), [&] { return !grabbed.infos.empty(); }));
    }
    auto unplugged = folder.Write("unplug", "");
    std::int64_t value = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_InvalidateNodes(camera));
    EXPECT_STATUS(K_ST_GC_ERROR, K_Camera_GetValueInt64(camera, "Width", &value));
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream));
    CloseCamera();
    bool changed = false;
    std::uint32_t count = 0;
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &count));
    EXPECT_EQ(1u, count);
    std::filesystem::remove(unplugged);
    EXPECT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
    EXPECT_TRUE(changed);
    ASSERT_NO_FATAL_FAILURE(OpenCamera("T0002"));
    EXPECT_EQ(128, Integer("Width"));
}

}  // namespace
}  // namespace kiv_test
