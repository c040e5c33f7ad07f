// Who may read and write what, and why not.
#include <array>

#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

TEST(AccessMode, CombinesAsGuardsInSeries) {
    constexpr std::array modes{NI, NA, WO, RO, RW};
    constexpr EAccessMode expected[5][5] = {
        {NI, NI, NI, NI, NI}, {NI, NA, NA, NA, NA}, {NI, NA, WO, NA, WO}, {NI, NA, NA, RO, RO}, {NI, NA, WO, RO, RW}};
    for (size_t a = 0; a < modes.size(); ++a) {
        for (size_t b = 0; b < modes.size(); ++b)
            EXPECT_EQ(expected[a][b], Combine(modes[a], modes[b])) << modes[a] << " " << modes[b];
        EXPECT_EQ(modes[a], Combine(modes[a], _CycleDetectAccesMode));
        EXPECT_EQ(modes[a], Combine(_UndefinedAccesMode, modes[a]));
    }
}

/// Every combination of a register's own mode, an imposed one, and the three conditions.
TEST(AccessMode, OfAFeatureFollowsItsConditionsItsSourceAndItsLock) {
    for (const auto* registerMode : {"RO", "WO", "RW"}) {
        for (const auto* imposed : {"RO", "WO", "RW"}) {
            DescribedCamera camera(
                "<Integer Name=\"F\"><pIsImplemented>I</pIsImplemented><pIsAvailable>A</pIsAvailable><pIsLocked>L</pIsLocked>"
                "<ImposedAccessMode>" +
                std::string(imposed) +
                "</ImposedAccessMode><pValue>R</pValue></Integer>"
                "<Integer Name=\"I\"><Value>1</Value></Integer><Integer Name=\"A\"><Value>1</Value></Integer>"
                "<Integer Name=\"L\"><Value>0</Value></Integer>" +
                int_reg("R", 0, "<AccessMode>" + std::string(registerMode) + "</AccessMode>"));
            EAccessMode a = RW, b = RW;
            EAccessModeClass::FromString(registerMode, &a);
            EAccessModeClass::FromString(imposed, &b);
            const auto open = Combine(a, b);
            EXPECT_EQ(open, camera.Mode("F")) << registerMode << " " << imposed;
            camera.Integer("L").SetValue(1);
            EXPECT_EQ(open == RW ? RO : open == WO ? NA : open, camera.Mode("F")) << registerMode << " " << imposed;
            camera.Integer("A").SetValue(0);
            EXPECT_EQ(NA, camera.Mode("F"));
            camera.Integer("I").SetValue(0);
            EXPECT_EQ(NI, camera.Mode("F"));
            camera.Integer("I").SetValue(7);
            camera.Integer("A").SetValue(-1);
            camera.Integer("L").SetValue(0);
            EXPECT_EQ(open, camera.Mode("F")) << "any value but 0 is true";
        }
    }
}

TEST(AccessMode, DecidesBeforeTheDeviceIsAsked) {
    DescribedCamera camera(int_reg("Ro", 0, "<AccessMode>RO</AccessMode>") + int_reg("Wo", 4, "<AccessMode>WO</AccessMode>"));
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Ro").SetValue(1), "Ro", "Node is not writable.");
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Ro").SetValue(1, false), "Ro", "Node is not writable.");
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Wo").GetValue(), "Wo", "Node is not readable.");
    EXPECT_NODE_ERROR(AccessException, camera.Integer("Wo").ToString(), "Wo", "Node is not readable.");
    camera.Integer("Wo").SetValue(3);
    EXPECT_EQ(0, camera.memory.reads);
    EXPECT_EQ(1, camera.memory.writes);
    try {
        camera.Integer("Ro").SetValue(1);
    } catch (const GenICam::GenericException& error) {
        EXPECT_NE(std::string(error.what()).find("AccessException thrown in node 'Ro' while calling 'Ro.SetValue()'"),
                  std::string::npos)
            << error.what();
    }
}

TEST(AccessMode, ComesFromThePortAndFromWhatTheAddressIsMadeOf) {
    DescribedCamera camera(
        R"(<IntReg Name="R"><pAddress>Where</pAddress><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
        <Endianess>LittleEndian</Endianess></IntReg><Integer Name="Where"><pIsAvailable>On</pIsAvailable><Value>8</Value></Integer>
        <Integer Name="On"><Value>1</Value></Integer>)");
    EXPECT_EQ(RW, camera.Mode("R"));
    camera.Integer("On").SetValue(0);
    EXPECT_EQ(NA, camera.Mode("R"));
    camera.Integer("On").SetValue(1);
    camera.memory.mode = RO;
    camera.Map().Connect(&camera.memory);
    EXPECT_EQ(RO, camera.Mode("R"));
    camera.Map().Connect(nullptr);
    EXPECT_EQ(NA, camera.Mode("R"));
    EXPECT_EQ(NA, camera.Mode("Device"));
    EXPECT_FALSE(camera.Map().Connect(&camera.memory, "Elsewhere"));
}

TEST(AccessMode, IsNotAvailableWhileAConditionCannotBeRead) {
    DescribedCamera camera(R"(<Integer Name="F"><pIsAvailable>Flag</pIsAvailable><Value>1</Value></Integer>
        <Integer Name="G"><pIsLocked>Flag</pIsLocked><Value>1</Value></Integer>)" +
                           int_reg("Flag", 0));
    camera.memory.Put(0, {1});
    camera.memory.isBroken = true;
    EXPECT_EQ(NA, camera.Mode("F"));
    EXPECT_EQ(RW, camera.Mode("G"));
    camera.memory.isBroken = false;
    EXPECT_EQ(RW, camera.Mode("F")) << "the failure was remembered";
    EXPECT_EQ(RO, camera.Mode("G"));
}

TEST(AccessMode, IsAskedAnewWhenACondionIsNotCached) {
    DescribedCamera camera(R"(<Integer Name="F"><pIsAvailable>Flag</pIsAvailable><Value>1</Value></Integer>)" +
                           int_reg("Flag", 0, "<Cachable>NoCache</Cachable>"));
    EXPECT_EQ(NA, camera.Mode("F"));
    camera.memory.Put(0, {1});
    EXPECT_EQ(RW, camera.Mode("F"));
    EXPECT_EQ(No, camera.Node("F").IsAccessModeCacheable());
    EXPECT_EQ(Yes, camera.Node("Flag").IsAccessModeCacheable());
}

TEST(Imposing, NarrowsAndLiftsAgain) {
    DescribedCamera camera(R"(<Integer Name="F"><Visibility>Expert</Visibility><pValue>R</pValue></Integer>)" + int_reg("R", 0));
    camera.Node("R").ImposeAccessMode(RO);
    EXPECT_EQ(RO, camera.Mode("F"));
    camera.Node("R").ImposeAccessMode(NI);
    EXPECT_EQ(NI, camera.Mode("F"));
    camera.Node("R").ImposeAccessMode(RW);
    EXPECT_EQ(RW, camera.Mode("F"));
    camera.Node("F").ImposeAccessMode(static_cast<EAccessMode>(1000));
    EXPECT_EQ(RW, camera.Mode("F"));
    camera.Node("F").ImposeVisibility(Beginner);
    EXPECT_EQ(Expert, camera.Node("F").GetVisibility());
    camera.Node("F").ImposeVisibility(Invisible);
    EXPECT_EQ(Invisible, camera.Node("F").GetVisibility());
    camera.Node("F").ImposeVisibility(Beginner);
    EXPECT_EQ(Expert, camera.Node("F").GetVisibility());
    camera.Integer("F").ImposeMin(10);
    camera.Integer("F").ImposeMax(20);
    EXPECT_EQ(10, camera.Integer("F").GetMin());
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("F").SetValue(21), "F", "Max = 20");
}

TEST(WritingAWriteOnlyField, StartsFromZeroOrFromWhatWasWritten) {
    const auto field = [](const char* name, int bit) {
        return "<MaskedIntReg Name=\"" + std::string(name) +
               "\"><Address>0</Address><Length>1</Length><AccessMode>WO</AccessMode>"
               "<pPort>Device</pPort><Bit>" +
               std::to_string(bit) + "</Bit><Endianess>LittleEndian</Endianess></MaskedIntReg>";
    };
    DescribedCamera camera(field("A", 0) + field("B", 7));
    camera.memory.Put(0, {0x55});
    camera.Integer("A").SetValue(1);
    EXPECT_EQ((std::vector<int>{0x01}), camera.memory.At(0, 1));
    camera.Integer("B").SetValue(1);
    EXPECT_EQ((std::vector<int>{0x81}), camera.memory.At(0, 1));
    EXPECT_EQ(0, camera.memory.reads);
}

TEST(PortFailure, ArrivesAsItIsWithTheNameOfTheNode) {
    DescribedCamera camera(R"(<Integer Name="F"><pValue>R</pValue></Integer>)" + int_reg("R", 0));
    camera.memory.isBroken = true;
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("F").GetValue(), "F", "The wire is cut.");
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("F").SetValue(1), "F", "The wire is cut.");
    camera.memory.isBroken = false;
    EXPECT_EQ(0, camera.Integer("F").GetValue()) << "a write that failed must not be remembered";
}
