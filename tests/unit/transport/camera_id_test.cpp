#include "transport/camera_id.h"

#include <gtest/gtest.h>

namespace kiv {

TEST(CameraId, PartsComeBackOutOfTheText) {
    CameraId id{"KIV_SIM", "SIM0", "SIM0_4F0001"};
    auto text = format(id);
    EXPECT_EQ(text, "TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_4F0001");
    EXPECT_EQ(producer_part(text), "KIV_SIM");
    EXPECT_EQ(interface_part(text), "SIM0");
    EXPECT_EQ(device_part(text), "SIM0_4F0001");
}

TEST(CameraId, TheDevicePartMayHoldAnything) {
    for (const char* device : {"My Camera", "a , b , INT=>c", "udp://10.0.0.1/left", "Fake(00:00)", ""}) {
        auto text = format({"P", "XX::InterfaceA", device});
        EXPECT_EQ(device_part(text), device);
        EXPECT_EQ(interface_part(text), "XX::InterfaceA");
    }
}

TEST(CameraId, AMissingOrOverlongPartIsNoPart) {
    EXPECT_EQ(producer_part("INT=>I , DEV=>D"), std::nullopt);
    EXPECT_EQ(interface_part("TL=>P , DEV=>D"), std::nullopt);
    EXPECT_EQ(device_part("TL=>P , INT=>I"), std::nullopt);
    EXPECT_EQ(producer_part("TL=>" + std::string(512, 'x')), std::nullopt);
    EXPECT_EQ(producer_part("TL=>" + std::string(511, 'x')), std::string(511, 'x'));
}

}  // namespace kiv
