// The register space: what may be read and written, and what stays when the camera is closed or switched off.

#include <cmath>
#include <fstream>
#include <limits>

#include "sim_camera_fixture.h"

namespace kivsim {
namespace {

using namespace GenTL;

class Registers : public SimCameraTest {
protected:
    int32_t ReadAt(uint64_t address, size_t size) {
        std::vector<std::byte> bytes(size);
        return camera->Read(address, bytes.data(), size);
    }
    int32_t WriteAt(uint64_t address, std::vector<uint8_t> bytes) { return camera->Write(address, bytes.data(), bytes.size()); }
    static uint64_t NanosecondsSince(std::chrono::steady_clock::time_point begin) {
        return static_cast<uint64_t>(std::chrono::nanoseconds(std::chrono::steady_clock::now() - begin).count());
    }
    std::string Text(const char* name) {
        std::string text(find_register(name)->bytes, '\0');
        EXPECT_EQ(GC_ERR_SUCCESS, camera->Read(Address(name), text.data(), text.size()));
        return text.c_str();
    }
};

TEST_F(Registers, BootstrapHasItsGenCpAddresses) {
    config.model = "KivSim-T";
    config.user_id = "left";
    Open();
    uint32_t version = 0;
    ASSERT_EQ(GC_ERR_SUCCESS, camera->Read(0x000, &version, 4));
    EXPECT_EQ(0x00010003U, version);
    char model[64] = {}, serial[64] = {}, user[64] = {};
    camera->Read(0x044, model, 64);
    camera->Read(0x144, serial, 64);
    camera->Read(0x184, user, 64);
    EXPECT_STREQ("KivSim-T", model);
    EXPECT_STREQ("T0001", serial);
    EXPECT_STREQ("left", user);
    // a block of several registers in one transfer
    char names[0x1C4];
    EXPECT_EQ(GC_ERR_SUCCESS, camera->Read(0, names, sizeof names));
    EXPECT_STREQ("KivSim-T", names + 0x44);
}

TEST_F(Registers, HolesAndTheEndOfTheSpaceAreNoAddresses) {
    Open();
    const uint64_t largest = std::numeric_limits<uint64_t>::max();
    for (uint64_t address : {uint64_t{0x1D8}, uint64_t{0x250}, uint64_t{0x9000}, uint64_t{0x48000}, largest - 3, largest})
        EXPECT_EQ(GC_ERR_INVALID_ADDRESS, ReadAt(address, 4)) << std::hex << address;
    // a range that begins in a register and runs into a hole
    EXPECT_EQ(GC_ERR_INVALID_ADDRESS, ReadAt(0x1D0, 16));
    EXPECT_EQ(GC_ERR_INVALID_ADDRESS, WriteAt(0x9000, {1}));
    const auto before = Get("LineSource", 3);
    EXPECT_EQ(GC_ERR_INVALID_ADDRESS, WriteAt(Address("UserOutputs"), {1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(before, Get("LineSource", 3));
    EXPECT_EQ(0U, Get("UserOutputs")) << "a refused write leaves nothing behind";
    EXPECT_EQ(GC_ERR_INVALID_PARAMETER, camera->Read(0, nullptr, 4));
    EXPECT_EQ(GC_ERR_SUCCESS, camera->Read(0x9000, nullptr, 0));
}

TEST_F(Registers, ReadOnlyAndWriteOnlyAreKept) {
    Open();
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, WriteAt(0x044, {'X'}));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, TrySet("PayloadSize", 7));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, WriteAt(0x100000, {0}));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, ReadAt(Address("AcquisitionStart"), 4));
    EXPECT_EQ(GC_ERR_ACCESS_DENIED, ReadAt(Address("ActionDeviceKey"), 4));
}

TEST_F(Registers, ValuesOutsideTheLimitsAreRefused) {
    Open();
    const struct {
        const char* name;
        uint64_t value;
    } bad[] = {{"ExposureTicks", 99}, {"ExposureTicks", 100'000'001},
               {"Gain", 3601},        {"Width", 322},
               {"Width", 324},        {"Width", 12},
               {"Height", 242},       {"Height", 3},
               {"OffsetX", 4},        {"PixelFormat", kBayerRG8},
               {"PixelFormat", 77},   {"TriggerSource", 5},
               {"TestPattern", 11},   {"LineSource", 1},
               {"UserSetSave", 1},    {"BinningHorizontal", 0}};
    for (const auto& [name, value] : bad) {
        const auto before = find_register(name)->access == Access::WO ? 0 : Get(name);
        EXPECT_EQ(GC_ERR_INVALID_VALUE, TrySet(name, value)) << name << " = " << value;
        if (find_register(name)->access != Access::WO) {
            EXPECT_EQ(before, Get(name)) << name;
        }
    }
    const float nan = std::nanf("");
    EXPECT_EQ(GC_ERR_INVALID_VALUE, camera->Write(Address("Gamma"), &nan, 4));
    EXPECT_EQ(GC_ERR_INVALID_VALUE, camera->Write(Address("FrameRate"), &nan, 4));
}

TEST_F(Registers, SizeAndOffsetLimitEachOther) {
    Open();
    Set("Width", 200);
    Set("OffsetX", 120);
    EXPECT_EQ(GC_ERR_INVALID_VALUE, TrySet("OffsetX", 124));
    EXPECT_EQ(GC_ERR_INVALID_VALUE, TrySet("Width", 204));
    // in one block, each is checked with what stands before it
    const uint32_t block[3] = {100, 80, 220};
    EXPECT_EQ(GC_ERR_SUCCESS, camera->Write(Address("Width"), block, sizeof block));
    const uint32_t wrong[3] = {104, 90, 220};
    EXPECT_EQ(GC_ERR_INVALID_VALUE, camera->Write(Address("Width"), wrong, sizeof wrong));
    EXPECT_EQ(100U, Get("Width"));
    EXPECT_EQ(80U, Get("Height"));
}

TEST_F(Registers, BinningBringsSizeAndOffsetBackIntoTheLimits) {
    Open();
    Set("BinningHorizontal", 2);
    Set("BinningVertical", 3);
    EXPECT_EQ(160U, Get("Width"));
    EXPECT_EQ(80U, Get("Height"));
    Set("BinningHorizontal", 1);
    EXPECT_EQ(160U, Get("Width"));
    Set("OffsetX", 160);
    Set("BinningHorizontal", 4);
    EXPECT_EQ(80U, Get("Width"));
    EXPECT_EQ(0U, Get("OffsetX"));
}

TEST_F(Registers, AnyPieceOfARegisterCanBeReadAndWritten) {
    Open();
    Set("ActionGroupKey", 0x11223344);
    EXPECT_EQ(GC_ERR_SUCCESS, WriteAt(Address("ActionGroupKey") + 1, {0xAA, 0xBB}));
    EXPECT_EQ(0x11BBAA44U, Get("ActionGroupKey"));
    // the last byte of one and the first of the next
    EXPECT_EQ(GC_ERR_SUCCESS, WriteAt(Address("ActionGroupKey") + 3, {0xCC, 0xDD}));
    EXPECT_EQ(0xCCBBAA44U, Get("ActionGroupKey"));
    EXPECT_EQ(0xDDU, Get("ActionGroupKey", 1));
    uint16_t middle = 0;
    camera->Read(Address("ActionGroupKey") + 1, &middle, 2);
    EXPECT_EQ(0xBBAAU, middle);
}

TEST_F(Registers, TheSensorModuleIsBigEndian) {
    Open();
    uint8_t bytes[4] = {};
    camera->Read(Address("ModuleMagic"), bytes, 4);
    EXPECT_EQ(0, std::memcmp(bytes, "KMOD", 4));
    camera->Read(Address("ModuleCalibrated"), bytes, 4);
    EXPECT_EQ(2026, bytes[0] << 8 | bytes[1]);
}

TEST_F(Registers, PayloadSizeFollowsTheFormat) {
    Open();
    EXPECT_EQ(320U * 240, Get("PayloadSize"));
    Set("PixelFormat", kMono12);
    EXPECT_EQ(320U * 240 * 2, Get("PayloadSize"));
    Set("PixelFormat", kMono12p);
    Set("Width", 100);
    EXPECT_EQ(150U * 240, Get("PayloadSize"));
    EXPECT_EQ(150U, Get("LinePitch"));
    EXPECT_EQ(camera->PayloadSize(), Get("PayloadSize"));
}

TEST_F(Registers, SettingsOutliveTheObjectAndAreSharedWithAnother) {
    Open();
    Set("ExposureTicks", 12345);
    std::string name = "line 3";
    name.resize(64);
    camera->Write(0x184, name.data(), name.size());
    camera.reset();
    Open();
    EXPECT_EQ(12345U, Get("ExposureTicks"));
    EXPECT_EQ("line 3", Text("UserDefinedName"));

    Camera other(config);
    const uint32_t gain = 600;
    EXPECT_EQ(GC_ERR_SUCCESS, other.Write(Address("Gain"), &gain, 4));
    EXPECT_EQ(600U, Get("Gain"));
}

TEST_F(Registers, APowerCycleKeepsOnlyWhatLasts) {
    Open();
    Set("ExposureTicks", 12345);
    Set("ActionDeviceKey", 5);
    camera->Write(0x184, "kept", 5);
    const auto cycles = Get("PowerCycles");
    Set("AcquisitionStart", 1);
    const auto begin = std::chrono::steady_clock::now();
    camera->PowerCycle();
    EXPECT_LE(Get("Timestamp"), NanosecondsSince(begin));
    EXPECT_EQ(50000U, Get("ExposureTicks"));
    EXPECT_EQ("kept", Text("UserDefinedName"));
    EXPECT_EQ(cycles + 1, Get("PowerCycles"));
    EXPECT_EQ(0U, Get("AcquisitionStatus") & 1) << "the acquisition ends";
    EXPECT_EQ("T0001", Text("SerialNumber"));
    Set("ExposureTicks", 777);
    Set("DeviceReset", 1);
    EXPECT_EQ(50000U, Get("ExposureTicks")) << "the command does the same";
}

TEST_F(Registers, UserSetsAreSavedLoadedAndChosenForPowerUp) {
    Open();
    Set("ExposureTicks", 1000);
    Set("Lut", 3, 7);
    Set("UserSetSelector", 1);
    Set("UserSetSave", 1);
    Set("ExposureTicks", 2000);
    Set("Lut", 4, 7);
    Set("UserSetLoad", 1);
    EXPECT_EQ(1000U, Get("ExposureTicks"));
    EXPECT_EQ(3U, Get("Lut", 7));
    EXPECT_EQ(0U, Get("UserSetLoad")) << "a command reads as done";
    Set("UserSetDefault", 1);
    Set("ExposureTicks", 3000);
    camera->PowerCycle();
    EXPECT_EQ(1000U, Get("ExposureTicks"));
    Set("UserSetSelector", 0);
    Set("UserSetLoad", 1);
    EXPECT_EQ(50000U, Get("ExposureTicks"));
    EXPECT_EQ(7U, Get("Lut", 7));
}

TEST_F(Registers, WhatTheImageHangsOnIsLockedWhileImagesAreAcquired) {
    Open();
    Set("AcquisitionStart", 1);
    for (const char* name : {"Width", "Height", "PixelFormat", "BinningVertical", "UserSetLoad"})
        EXPECT_EQ(GC_ERR_ACCESS_DENIED, TrySet(name, find_register(name)->Has(kCommand) ? 1 : Get(name))) << name;
    Set("ExposureTicks", 2000);
    Set("OffsetY", 0);
    Set("AcquisitionStop", 1);
    Set("Width", 160);
}

TEST_F(Registers, TheClockCanBeLatchedAndReset) {
    Open();
    const auto first = Get("Timestamp");
    Set("TimestampLatch", 1);
    const auto latched = Get("TimestampLatchValue");
    EXPECT_GE(latched, first);
    EXPECT_GE(Get("Timestamp"), latched);
    EXPECT_EQ(latched, Get("TimestampLatchValue"));
    Set("BootTimestampLatch", 1);
    EXPECT_GE(Get("BootTimestamp"), latched);
    // two processes see one clock
    Camera other(config);
    uint64_t elsewhere = 0;
    other.Read(Address("Timestamp"), &elsewhere, 8);
    EXPECT_GE(elsewhere, latched);
    const auto begin = std::chrono::steady_clock::now();
    Set("TimestampReset", 1);
    Set("TimestampLatch", 1);
    EXPECT_LE(Get("TimestampLatchValue"), NanosecondsSince(begin));
}

TEST_F(Registers, AnotherCamerasOrADamagedStateFileIsStartedAfresh) {
    Open();
    Set("ExposureTicks", 12345);
    camera.reset();
    {
        std::fstream file(config.state_file, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(256 + row_of(Reg::PixelFormat).store);
        file.write("\x42\x42\x42\x42", 4);
        file.seekp(256 + row_of(Reg::BinningHorizontal).store);
        file.write("\0\0\0\0", 4);
    }
    Open();
    EXPECT_EQ(kMono8, Get("PixelFormat"));
    EXPECT_EQ(50000U, Get("ExposureTicks"));
    Set("ExposureTicks", 12345);
    camera.reset();
    config.serial = "T0002";
    Open();
    EXPECT_EQ(50000U, Get("ExposureTicks"));
    camera.reset();
    std::ofstream(config.state_file, std::ios::binary | std::ios::trunc) << "a file of another size";
    Open();
    EXPECT_EQ(320U, Get("Width"));
}

TEST_F(Registers, ImpossibleConfigurationsAreRefusedWithAReason) {
    config.sensor_width = 321;
    EXPECT_THROW(Open(), std::runtime_error);
    config.sensor_width = 320;
    config.max_frame_rate = std::nan("");
    EXPECT_THROW(Open(), std::runtime_error);
    config.max_frame_rate = 30;
    config.image_folder = (folder / "nothing").string();
    EXPECT_THROW(Open(), std::runtime_error);
    config.image_folder.clear();
    config.state_file = folder;  // a folder is no state file
    EXPECT_THROW(Open(), std::runtime_error);
}

}  // namespace
}  // namespace kivsim
