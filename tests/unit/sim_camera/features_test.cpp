// The camera as a host sees it: through its features, with the node map engine between.

#include <GenApi/GenApi.h>
#include <GenICam/exceptions.h>

#include "sim_camera_fixture.h"

namespace kivsim {
namespace {

using namespace GenApi;

class CameraPort : public IPort {
public:
    explicit CameraPort(Camera& camera) : camera_(camera) {}
    EAccessMode GetAccessMode() const override { return RW; }
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIPort; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        Check(camera_.Read(static_cast<uint64_t>(address), buffer, static_cast<size_t>(length)), "read", address);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        Check(camera_.Write(static_cast<uint64_t>(address), buffer, static_cast<size_t>(length)), "write", address);
    }

private:
    static void Check(int32_t status, const char* what, int64_t address) {
        if (status != 0)
            throw std::runtime_error(std::string(what) + " at " + std::to_string(address) + ": " + std::to_string(status));
    }
    Camera& camera_;
};

class Features : public SimCameraTest {
protected:
    void Connect() {
        config.url = CameraConfig::Url::Plain;
        Open();
        port = std::make_unique<CameraPort>(*camera);
        const std::string url = camera->Url();
        std::string text(std::stoull(url.substr(url.rfind(';') + 1), nullptr, 16), '\0');
        ASSERT_EQ(GenTL::GC_ERR_SUCCESS, camera->Read(0x100000, text.data(), text.size()));
        map._LoadXMLFromString(text.c_str());
        ASSERT_TRUE(map._Connect(port.get(), "Device"));
    }
    template <class Interface>
    Interface& As(const char* name) {
        auto* found = dynamic_cast<Interface*>(map._GetNode(name));
        if (!found) throw std::runtime_error(std::string(name) + " is not such a feature");
        return *found;
    }
    void SetFeature(const char* name, const char* value) { As<IValue>(name).FromString(value); }
    std::string Feature(const char* name) { return As<IValue>(name).ToString(true).c_str(); }

    std::unique_ptr<CameraPort> port;
    CNodeMapRef map{"Device"};
};

TEST_F(Features, ReachTheirRegistersThroughConverters) {
    config.color = true;
    Connect();
    SetFeature("ExposureTime", "1234.5");
    EXPECT_EQ(12345U, Get("ExposureTicks"));
    SetFeature("GainSelector", "Red");
    SetFeature("Gain", "6.02");
    EXPECT_EQ(602U, Get("Gain", 1));
    EXPECT_EQ(0U, Get("Gain", 0));
    EXPECT_NEAR(2.0, As<IFloat>("GainFactor").GetValue(), 0.001);
    SetFeature("BalanceRatioSelector", "Blue");
    SetFeature("BalanceRatio", "2");
    EXPECT_EQ(2048U, Get("BalanceRatio", 2));
    SetFeature("TriggerSelector", "FrameBurstStart");
    SetFeature("TriggerDelay", "100");
    EXPECT_EQ(1000U, Get("TriggerDelay", 1));
    SetFeature("DeviceLinkThroughputLimitMode", "On");
    SetFeature("DeviceLinkThroughputLimit", "125000000");
    EXPECT_EQ(125U, Get("ThroughputLimit"));
    SetFeature("LUTSelector", "Green");
    SetFeature("LUTIndex", "100");
    SetFeature("LUTValue", "77");
    EXPECT_EQ(77U, Get("Lut", 2 * 4096 + 100));
    SetFeature("ReverseY", "1");
    EXPECT_EQ(2U, Get("ReadoutControl"));
    SetFeature("UserOutputSelector", "UserOutput1");
    SetFeature("UserOutputValue", "1");
    EXPECT_EQ(2U, Get("UserOutputs"));
    SetFeature("DeviceUserID", "belt 2");
    EXPECT_EQ("belt 2", Feature("DeviceUserID"));
    EXPECT_EQ("KS-S345-C", Feature("SensorName"));
    EXPECT_NEAR(3.45, As<IFloat>("SensorPixelHeight").GetValue(), 1e-9);
    EXPECT_EQ("2026", Feature("SensorModuleCalibrationYear"));
    EXPECT_NEAR(0.4095, As<IFloat>("SensorModuleConversionGain").GetValue(), 1e-6);
    EXPECT_EQ("1", Feature("SensorModuleValid"));
}

TEST_F(Features, LimitsFollowEachOther) {
    Connect();
    EXPECT_EQ(320, As<IInteger>("Width").GetMax());
    SetFeature("Width", "200");
    EXPECT_EQ(120, As<IInteger>("OffsetX").GetMax());
    SetFeature("OffsetX", "80");
    EXPECT_EQ(240, As<IInteger>("Width").GetMax());
    SetFeature("BinningHorizontal", "2");
    EXPECT_EQ(160, As<IInteger>("WidthMax").GetValue());
    EXPECT_EQ("160", Feature("Width"));
    EXPECT_EQ("0", Feature("OffsetX"));
    EXPECT_EQ(160 * 240, As<IInteger>("PayloadSize").GetValue());
    SetFeature("PixelFormat", "Mono12p");
    EXPECT_EQ(240 * 240, As<IInteger>("PayloadSize").GetValue());
    EXPECT_EQ("4095", Feature("PixelDynamicRangeMax"));
    EXPECT_EQ("Bpp12", Feature("PixelSize"));
    SetFeature("ExposureTime", "100000");
    EXPECT_NEAR(10, As<IFloat>("AcquisitionFrameRate").GetMax(), 1e-6);
    EXPECT_NEAR(10, As<IFloat>("ResultingFrameRate").GetValue(), 1e-4);
}

TEST_F(Features, ModesDecideWhatCanBeUsed) {
    Connect();
    auto mode = [&](const char* name) { return map._GetNode(name)->GetAccessMode(); };
    EXPECT_EQ(NI, mode("BalanceRatio"));
    EXPECT_EQ(NI, mode("EnumEntry_PixelFormat_RGB8"));
    EXPECT_TRUE(IsAvailable(mode("EnumEntry_PixelFormat_Mono10p")));
    EXPECT_EQ(NA, mode("AcquisitionFrameCount"));
    SetFeature("AcquisitionMode", "MultiFrame");
    EXPECT_EQ(RW, mode("AcquisitionFrameCount"));
    SetFeature("TLParamsLocked", "1");
    EXPECT_EQ(RO, mode("Width"));
    EXPECT_EQ(RO, mode("PixelFormat"));
    EXPECT_EQ(RW, mode("Gain"));
    SetFeature("TLParamsLocked", "0");
    EXPECT_EQ(RW, mode("Width"));
    SetFeature("GainAuto", "Continuous");
    EXPECT_EQ(RO, mode("Gain"));
    EXPECT_FALSE(IsAvailable(mode("UserSetSave")));
    SetFeature("UserSetSelector", "UserSet1");
    EXPECT_TRUE(IsWritable(mode("UserSetSave")));
    SetFeature("TriggerSource", "Line0");
    EXPECT_FALSE(IsAvailable(mode("TriggerSoftware")));
    EXPECT_EQ(RW, mode("TriggerActivation"));
}

TEST_F(Features, LoadingAUserSetRenewsWhatWasRead) {
    Connect();
    SetFeature("ExposureTime", "777");
    EXPECT_EQ("777", Feature("ExposureTime").substr(0, 3));
    SetFeature("UserSetSelector", "Default");
    As<ICommand>("UserSetLoad").Execute();
    EXPECT_EQ(5000, As<IFloat>("ExposureTime").GetValue());
    EXPECT_TRUE(As<ICommand>("UserSetLoad").IsDone());
}

}  // namespace
}  // namespace kivsim
