/// A simulated camera in a folder of its own, with access to its registers by name and to single pixels of its frames.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "GenTL/GenTL.h"
#include "camera.h"
#include "pixel_format.h"
#include "registers.h"

namespace kivsim {

class SimCameraTest : public ::testing::Test {
protected:
    SimCameraTest() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        folder = std::filesystem::temp_directory_path() /
                 ("sim_camera_" + std::string(info->name()) + std::to_string(reinterpret_cast<uintptr_t>(this)));
        std::filesystem::create_directories(folder);
        config.sensor_width = 320;
        config.sensor_height = 240;
        config.max_frame_rate = 10000;
        config.serial = "T0001";
        config.state_file = folder / "camera.bin";
    }
    ~SimCameraTest() override {
        camera.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    Camera& Open() {
        camera = std::make_unique<Camera>(config);
        return *camera;
    }

    static uint64_t Address(const char* name, uint32_t index = 0) {
        const auto* row = find_register(name);
        EXPECT_TRUE(row) << name;
        return row ? row->address + uint64_t{index} * row->bytes : 0;
    }
    int32_t TrySet(const char* name, uint64_t value, uint32_t index = 0) {
        return camera->Write(Address(name, index), &value, find_register(name)->bytes);
    }
    void Set(const char* name, uint64_t value, uint32_t index = 0) {
        EXPECT_EQ(GenTL::GC_ERR_SUCCESS, TrySet(name, value, index)) << name << " = " << value;
    }
    uint64_t Get(const char* name, uint32_t index = 0) {
        uint64_t value = 0;
        EXPECT_EQ(GenTL::GC_ERR_SUCCESS, camera->Read(Address(name, index), &value, find_register(name)->bytes)) << name;
        return value;
    }
    void SetFloat(const char* name, float value) {
        EXPECT_EQ(GenTL::GC_ERR_SUCCESS, camera->Write(Address(name), &value, sizeof value)) << name;
    }

    struct Image {
        FrameInfo info;
        std::vector<std::byte> bytes;

        unsigned Byte(size_t i) const { return std::to_integer<unsigned>(bytes.at(i)); }
        /// A sample of a format of 8 or 16 bits a sample.
        unsigned At(uint32_t x, uint32_t y) const {
            const size_t pixel = size_t{y} * info.width + x;
            return (info.pixel_format >> 16 & 0xFF) == 8 ? Byte(pixel) : Byte(2 * pixel) | Byte(2 * pixel + 1) << 8;
        }
        /// Mean over a part of the image, in numbers of 12 bits without black level, of every `step`-th sample.
        double Mean(uint32_t x0, uint32_t y0, uint32_t x1, uint32_t y1, uint32_t step = 1) const {
            double sum = 0, count = 0;
            for (uint32_t y = y0; y < y1; y += step)
                for (uint32_t x = x0; x < x1; x += step, ++count) sum += At(x, y);
            return sum / count;
        }
    };

    bool FrameComes(std::chrono::milliseconds timeout = std::chrono::seconds(20)) {
        return camera->WaitForFrame(timeout) == Camera::Wait::Frame;
    }
    Image Take() {
        Image image;
        image.bytes.resize(camera->PayloadSize());
        EXPECT_TRUE(FrameComes());
        image.info = camera->NextFrame(image.bytes);
        return image;
    }
    /// One frame of an acquisition of its own.
    Image Grab() {
        Set("AcquisitionStart", 1);
        Image image = Take();
        Set("AcquisitionStop", 1);
        return image;
    }
    /// The belt stands still, and the sensor adds nothing: what is seen depends on the settings alone.
    void HoldStill() {
        Set("BeltSpeed", 0);
        Set("SceneFlags", 0);
        Set("BlackLevel", 0);
    }

    std::filesystem::path folder;
    CameraConfig config;
    std::unique_ptr<Camera> camera;
};

constexpr uint32_t kMono8 = 0x01080001, kMono12 = 0x01100005, kMono12p = 0x010C0047, kMono10p = 0x010A0046,
                   kBayerRG8 = 0x01080009, kBayerRG12 = 0x01100011, kRgb8 = 0x02180014, kBgr8 = 0x02180015, kYuv422 = 0x02100032;

}  // namespace kivsim
