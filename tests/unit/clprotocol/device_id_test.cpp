#include <CLProtocol/device_id.h>
#include <GenICam/exceptions.h>
#include <gtest/gtest.h>

using CLProtocol::CDeviceID;
using Tokens = std::vector<std::string>;

namespace {

TEST(DeviceId, FullAndShortFormsAreToldApart) {
    struct {
        const char *text, *directory, *file;
        Tokens tokens;
    } const ids[] = {
        {"/opt/drivers#libX.so#Maker#Family#Model#V1#S1", "/opt/drivers", "libX.so", {"Maker", "Family", "Model", "V1", "S1"}},
        {"C:\\Drivers\\Win64_x64#X.dll#Maker", "C:\\Drivers\\Win64_x64", "X.dll", {"Maker"}},
        {"C:#X.dll#Maker", "C:", "X.dll", {"Maker"}},
        {".#X#Maker", ".", "X", {"Maker"}},
        {"drivers#X.dll#Maker#Family", "drivers", "X.dll", {"Maker", "Family"}},
        {"/home/me/c#/build#libX.so#Maker", "/home/me/c#/build", "libX.so", {"Maker"}},
        {"Maker", "", "", {"Maker"}},
        {"Maker#Family#Model#Version_1.2#S", "", "", {"Maker", "Family", "Model", "Version_1.2", "S"}},
    };
    for (const auto& id : ids) {
        const CDeviceID read = CDeviceID::FromString(id.text);
        EXPECT_EQ(id.directory, read.DriverDirectory()) << id.text;
        EXPECT_EQ(id.file, read.DriverFileName()) << id.text;
        EXPECT_EQ(id.tokens, read.Tokens()) << id.text;
        EXPECT_EQ(id.text, read.GetDeviceID());
        EXPECT_EQ(read.GetShortDeviceID(), CDeviceID::FromString(read.GetShortDeviceID()).GetDeviceID());
    }
}

TEST(DeviceId, WhatIsNoneIsRefusedByName) {
    for (const char* wrong :
         {"", "#", "A##B", "A#B#C#D#E#F", "/dir#libX.so", "/dir", "/dir##Maker", "/dir#f#A#B#C#D#E#F", "Maker#"})
        try {
            CDeviceID::FromString(wrong);
            FAIL() << wrong;
        } catch (const GenICam::InvalidArgumentException& error) {
            EXPECT_NE(std::string(error.GetDescription()).find("'" + std::string(wrong) + "'"), std::string::npos);
        }
}

TEST(DeviceId, ATemplateIsTheFirstTokensOfAnIdAndNotOfItsText) {
    const CDeviceID camera = CDeviceID::FromString("/d#f#Maker#Family#Cam10#V1#S1");
    for (const char* fitting : {"Maker", "/elsewhere#g#Maker#Family", "Maker#Family#Cam10#V1#S1"})
        EXPECT_TRUE(CDeviceID::FromString(fitting).IsTemplateOf(camera)) << fitting;
    for (const char* other : {"Make", "Maker#Family#Cam1", "Maker#Family#Cam10#V1#S2", "Family"})
        EXPECT_FALSE(CDeviceID::FromString(other).IsTemplateOf(camera)) << other;
    EXPECT_FALSE(camera.IsTemplateOf(CDeviceID::FromString("Maker#Family")));
}

TEST(DeviceId, TextsOfCamerasBecomeTokens) {
    EXPECT_EQ("Kiv_Ltd_", CLProtocol::as_token("Kiv Ltd."));
    EXPECT_EQ("_4F01", CLProtocol::as_token("4F01"));
    EXPECT_EQ("_", CLProtocol::as_token(""));
    EXPECT_EQ("a__b", CLProtocol::as_token("a\xC3\xA9"
                                           "b"));
}

}  // namespace
