// What changes together, and who is told.
#include <atomic>
#include <thread>
#include <utility>

#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

std::vector<std::string> names_of(const FeatureList_t& features) {
    std::vector<std::string> names;
    for (auto* feature : features) names.push_back(feature->GetNode()->GetName().str());
    return names;
}

const std::string selectedGain = R"(
    <Integer Name="Selector"><Value>0</Value><Max>3</Max><pSelected>Gain</pSelected></Integer>
    <Integer Name="Gain"><pValue>GainReg</pValue></Integer>
    <IntReg Name="GainReg"><Address>16</Address><pIndex Offset="4">Selector</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>)";

}  // namespace

TEST(Selector, MovesTheRegisterOfWhatItSelects) {
    DescribedCamera camera(selectedGain + int_reg("Apart", 0));
    camera.memory.Put(16, {10, 0, 0, 0, 11, 0, 0, 0});
    EXPECT_EQ(10, camera.Integer("Gain").GetValue());
    camera.Integer("Apart").GetValue();
    camera.memory.reads = 0;
    camera.Integer("Selector").SetValue(1);
    EXPECT_EQ(11, camera.Integer("Gain").GetValue());
    EXPECT_EQ(20, camera.Register("GainReg").GetAddress());
    camera.Integer("Gain").SetValue(21);
    EXPECT_EQ((std::vector<int>{10, 0, 0, 0, 21}), camera.memory.At(16, 5));
    camera.Integer("Apart").GetValue();
    EXPECT_EQ(1, camera.memory.reads);
}

TEST(Selector, OutdatesWhatTheDeviceSwitchesByItself) {
    DescribedCamera camera(
        R"(<Integer Name="Outer"><pValue>SelReg</pValue></Integer><Integer Name="Gain"><pValue>GainReg</pValue></Integer>)" +
        int_reg("SelReg", 0, "<pSelected>Gain</pSelected>") + int_reg("GainReg", 4));
    EXPECT_EQ(0, camera.Integer("Gain").GetValue());
    camera.memory.Put(4, {5});
    camera.Integer("Outer").SetValue(1);
    EXPECT_EQ(5, camera.Integer("Gain").GetValue());
    FeatureList_t features;
    auto& outer = camera.As<ISelector>("Outer");
    EXPECT_TRUE(outer.IsSelector());
    outer.GetSelectedFeatures(features);
    EXPECT_EQ((std::vector<std::string>{"Gain"}), names_of(features));
    camera.As<ISelector>("Gain").GetSelectingFeatures(features);
    EXPECT_EQ((std::vector<std::string>{"Outer", "SelReg"}), names_of(features));
    EXPECT_FALSE(camera.As<ISelector>("Gain").IsSelector());
}

TEST(AddressStrides, AreGivenOrTakenFromANodeOrFromTheLength) {
    const auto indexed = [](const char* name, const std::string& index) {
        return "<IntReg Name=\"" + std::string(name) + "\"><Address>100</Address>" + index +
               "<Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>";
    };
    DescribedCamera camera(
        indexed("Given", "<pIndex Offset=\"0x10\">I</pIndex>") + indexed("FromNode", "<pIndex pOffset=\"S\">I</pIndex>") +
        indexed("FromLength", "<pIndex>I</pIndex>") +
        indexed("Sum",
                "<Address>1000</Address><pAddress>I</pAddress><IntSwissKnife Name=\"Inner\"><pVariable Name=\"I\">I</pVariable>"
                "<Formula>I * 7</Formula></IntSwissKnife>") +
        R"(<Integer Name="I"><Value>3</Value></Integer><Integer Name="S"><Value>5</Value></Integer>)");
    EXPECT_EQ(148, camera.Register("Given").GetAddress());
    EXPECT_EQ(115, camera.Register("FromNode").GetAddress());
    EXPECT_EQ(106, camera.Register("FromLength").GetAddress());
    EXPECT_EQ(1124, camera.Register("Sum").GetAddress());
    EXPECT_EQ(21, camera.Integer("Inner").GetValue());
    camera.Integer("S").SetValue(50);
    EXPECT_EQ(250, camera.Register("FromNode").GetAddress());
}

TEST(Callbacks, TellOncePerOperationWhatMayHaveChanged) {
    DescribedCamera camera(
        R"(<Integer Name="Top"><pValue>Mid</pValue><pMax>Limit</pMax></Integer><Integer Name="Mid"><pValue>R</pValue></Integer>
        <IntSwissKnife Name="Limit"><pVariable Name="R">R</pVariable><Formula>R + 100</Formula></IntSwissKnife>)" +
        int_reg("R", 0) + int_reg("Apart", 8));
    std::vector<std::string> told;
    for (const auto* name : {"Top", "Mid", "R", "Limit", "Apart"})
        Register(&camera.Node(name), [&](INode* node) { told.push_back(node->GetName().str()); });
    camera.Integer("Top").SetValue(1);
    EXPECT_EQ((std::vector<std::string>{"R", "Mid", "Limit", "Top"}), told);
    told.clear();
    camera.Integer("Top").GetValue();
    EXPECT_TRUE(told.empty());
    EXPECT_THROW(camera.Integer("Top").SetValue(1000), GenICam::OutOfRangeException);
    EXPECT_TRUE(told.empty()) << "nothing was written";
    camera.Node("Mid").InvalidateNode();
    EXPECT_EQ((std::vector<std::string>{"Mid", "Top"}), told);
    told.clear();
    camera.Map().InvalidateNodes();
    EXPECT_EQ(5u, told.size());
    camera.Integer("Top").GetMax();
    told.clear();
    camera.memory.isBroken = true;
    EXPECT_THROW(camera.Integer("Top").SetValue(2), GenICam::RuntimeException);
    EXPECT_EQ(4u, told.size()) << "nobody knows what arrived";
}

TEST(Callbacks, RunInsideAndOutsideTheLock) {
    DescribedCamera camera(R"(<Integer Name="F"><Value>0</Value></Integer>)");
    const auto isFree = [&] {
        bool got = false;
        std::thread([&] {
            got = camera.Map().GetLock().TryLock();
            if (got) camera.Map().GetLock().Unlock();
        }).join();
        return got;
    };
    std::vector<std::string> order;
    Register(
        &camera.Node("F"), [&](INode*) { order.push_back(isFree() ? "outside free" : "outside held"); }, cbPostOutsideLock);
    Register(
        &camera.Node("F"), [&](INode*) { order.push_back(isFree() ? "inside free" : "inside held"); }, cbPostInsideLock);
    camera.Integer("F").SetValue(1);
    EXPECT_EQ((std::vector<std::string>{"inside held", "outside free"}), order);
}

TEST(Callbacks, MayChangeNodesAndRemoveThemselves) {
    DescribedCamera camera(R"(<Integer Name="A"><Value>0</Value></Integer><Integer Name="B"><Value>0</Value></Integer>)");
    CallbackHandleType own = 0;
    int toldB = 0;
    own = Register(&camera.Node("A"), [&](INode* node) {
        EXPECT_TRUE(node->DeregisterCallback(own));
        camera.Integer("B").SetValue(camera.Integer("A").GetValue() * 2);
    });
    const auto other = Register(&camera.Node("B"), [&](INode*) { ++toldB; });
    camera.Integer("A").SetValue(4);
    camera.Integer("A").SetValue(5);
    EXPECT_EQ(8, camera.Integer("B").GetValue());
    EXPECT_EQ(1, toldB);
    Deregister(other);
    camera.Integer("B").SetValue(1);
    EXPECT_EQ(1, toldB);
    EXPECT_FALSE(camera.Node("A").DeregisterCallback(own));
    EXPECT_FALSE(camera.Node("A").DeregisterCallback(other));
}

TEST(Callbacks, HandlesThatAreNoLongerGoodDoNothing) {
    CallbackHandleType ofADeadMap = 0;
    {
        DescribedCamera gone(R"(<Integer Name="A"><Value>0</Value></Integer>)");
        ofADeadMap = Register(&gone.Node("A"), [](INode*) {});
    }
    DescribedCamera camera(R"(<Integer Name="A"><Value>0</Value></Integer>)");
    int told = 0;
    const auto first = Register(&camera.Node("A"), [](INode*) {});
    Deregister(first);
    Register(&camera.Node("A"), [&](INode*) { ++told; });
    for (const auto handle : {ofADeadMap, first, CallbackHandleType{0}, CallbackHandleType{-1}}) Deregister(handle);
    camera.Integer("A").SetValue(1);
    EXPECT_EQ(1, told);
}

TEST(Callbacks, OfSeveralChangesThatAreOneOperationAreCalledOnce) {
    DescribedCamera camera(R"(<Integer Name="A"><Value>1</Value></Integer><Integer Name="B"><Value>1</Value></Integer>
        <IntSwissKnife Name="Sum"><pVariable Name="A">A</pVariable><pVariable Name="B">B</pVariable><Formula>A+B</Formula></IntSwissKnife>)");
    std::vector<int64_t> seen;
    Register(
        &camera.Node("Sum"), [&](INode*) { seen.push_back(camera.Integer("Sum").GetValue()); }, cbPostOutsideLock);
    camera.Map().RunTogether([&] {
        camera.Integer("A").SetValue(10);
        camera.Integer("B").SetValue(20);
        EXPECT_TRUE(seen.empty());
    });
    EXPECT_EQ((std::vector<int64_t>{30}), seen);
    EXPECT_THROW(camera.Map().RunTogether([&] {
        camera.Integer("A").SetValue(11);
        camera.Integer("Sum").SetValue(0);
    }),
                 GenICam::AccessException);
    EXPECT_EQ((std::vector<int64_t>{30, 31}), seen) << "what was changed before the failure";
}

TEST(Callbacks, AreNotCalledOnceTheyAreRemoved) {
    DescribedCamera camera(R"(<Integer Name="A"><Value>0</Value></Integer>)");
    CallbackHandleType second = 0, third = 0;
    int told = 0;
    Register(&camera.Node("A"), [&](INode*) { Deregister(std::exchange(second, 0)), Deregister(std::exchange(third, 0)); });
    second = Register(&camera.Node("A"), [&](INode*) { ++told; });
    third = Register(
        &camera.Node("A"), [&](INode*) { ++told; }, cbPostOutsideLock);
    camera.Integer("A").SetValue(1);
    EXPECT_EQ(0, told);
}

TEST(Callbacks, ThatKeepChangingEachOtherEnd) {
    DescribedCamera camera(R"(<Integer Name="A"><Value>0</Value></Integer>)");
    Register(&camera.Node("A"), [&](INode*) { camera.Integer("A").SetValue(camera.Integer("A").GetValue() + 1); });
    camera.Integer("A").SetValue(1);
    EXPECT_GT(camera.Integer("A").GetValue(), 100);
}

TEST(Callbacks, ThatThrowDoNotKeepTheOthersFromBeingCalled) {
    DescribedCamera camera(R"(<Integer Name="A"><Value>0</Value></Integer>)");
    int told = 0;
    Register(&camera.Node("A"), [](INode*) { throw GenICam::RuntimeException("mine"); });
    Register(&camera.Node("A"), [&](INode*) { ++told; });
    EXPECT_NODE_ERROR(RuntimeException, camera.Integer("A").SetValue(1), "A", "mine");
    EXPECT_EQ(1, told);
    EXPECT_EQ(1, camera.Integer("A").GetValue());
    EXPECT_TRUE(camera.Map().GetLock().TryLock());
    EXPECT_EQ(1u, camera.Map().GetLock().Depth()) << "the failed operation still holds the lock";
    camera.Map().GetLock().Unlock();
}

TEST(Lock, SerialisesThreads) {
    DescribedCamera camera(
        R"(<Integer Name="F"><pValue>R</pValue></Integer><IntSwissKnife Name="Twice"><pVariable Name="F">F</pVariable>
        <Formula>F * 2</Formula></IntSwissKnife>)" +
        int_reg("R", 0));
    std::atomic<int> told = 0;
    Register(
        &camera.Node("Twice"), [&](INode*) { ++told; }, cbPostOutsideLock);
    constexpr int rounds = 300;
    const auto work = [&] {
        for (int i = 0; i < rounds; ++i) {
            const AutoLock hold(camera.Map().GetLock());
            const auto value = camera.Integer("F").GetValue();
            camera.Integer("F").SetValue(value + 1);
            EXPECT_EQ(2 * (value + 1), camera.Integer("Twice").GetValue());
            camera.Node("F").GetVisibility();
        }
    };
    std::atomic<bool> isDone = false;
    const auto look = [&] {  // single operations need no lock of the caller's
        int64_t last = 0;
        while (!isDone) {
            const auto value = camera.Integer("F").GetValue();
            EXPECT_GE(value, last);
            last = value;
            camera.Node("Twice").GetAccessMode();
        }
    };
    std::thread other(work), looker(look);
    work();
    other.join();
    isDone = true;
    looker.join();
    EXPECT_EQ(2 * rounds, camera.Integer("F").GetValue());
    EXPECT_EQ(2 * rounds, told);
}
