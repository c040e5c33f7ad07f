// A feature bag between two states of a device; the selectors that it walks through.

#include <gmock/gmock.h>

#include <utility>
#include <vector>

#include "unit/genapi_parts/map_fixture.h"

namespace kiv::test {
namespace {

using namespace GenApi;
using testing::ElementsAre;
using testing::HasSubstr;
using Entries = std::vector<std::pair<std::string, std::string>>;

std::string reg(const std::string& name, int address, const std::string& more = "") {
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) + "</Address>" + more +
           "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

// LutValue stands at 256 + 64 * bank + 4 * index.
const std::string description = R"(
  <Port Name="Device"/>
  <Integer Name="Width"><Streamable>Yes</Streamable><pValue>WidthReg</pValue><Min>8</Min><Max>4096</Max><Inc>8</Inc></Integer>
  <Integer Name="NotStreamable"><Value>5</Value></Integer>
  <Integer Name="Locked"><pIsLocked>One</pIsLocked><Streamable>Yes</Streamable><Value>5</Value></Integer>
  <Integer Name="One"><Value>1</Value></Integer>
  <Integer Name="Zero"><Value>0</Value></Integer>
  <Enumeration Name="Bank"><Streamable>Yes</Streamable>
    <EnumEntry Name="Low"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Gone"><pIsAvailable>Zero</pIsAvailable><Value>3</Value></EnumEntry>
    <EnumEntry Name="High"><Value>1</Value></EnumEntry>
    <Value>1</Value><pSelected>Index</pSelected><pSelected>LutValue</pSelected></Enumeration>
  <Integer Name="BankNumber"><pValue>Bank</pValue></Integer>
  <Integer Name="LutValue"><Streamable>Yes</Streamable><pValue>LutReg</pValue></Integer>
  <Integer Name="Index"><Value>1</Value><Min>0</Min><Max>2</Max><pSelected>LutValue</pSelected></Integer>
  <Boolean Name="Flag"><Streamable>Yes</Streamable><Value>true</Value></Boolean>
  <Command Name="Go"><Streamable>Yes</Streamable><pValue>GoReg</pValue><CommandValue>1</CommandValue></Command>
  <String Name="Title"><Streamable>Yes</Streamable><Value>old title</Value></String>
  <Integer Name="Huge"><Value>7</Value><pSelected>UnderHuge</pSelected></Integer>
  <Integer Name="UnderHuge"><Streamable>Yes</Streamable><Value>9</Value></Integer>)" +
                                reg("WidthReg", 0) + reg("GoReg", 4) +
                                reg("LutReg", 256, R"(<pIndex Offset="64">BankNumber</pIndex><pIndex Offset="4">Index</pIndex>)");

const std::string streaming = R"(
  <Command Name="DeviceRegistersStreamingStart"><pValue>BeginReg</pValue><CommandValue>1</CommandValue></Command>
  <Command Name="DeviceRegistersStreamingEnd"><pValue>EndReg</pValue><CommandValue>1</CommandValue></Command>
  <Command Name="DeviceFeaturePersistenceStart"><pValue>BeginReg</pValue><CommandValue>2</CommandValue></Command>
  <Command Name="DeviceFeaturePersistenceEnd"><pValue>EndReg</pValue><CommandValue>2</CommandValue></Command>)" +
                              reg("BeginReg", 8) + reg("EndReg", 12);

struct Bag : testing::Test {
    MemoryPort device;
    std::unique_ptr<INodeMap> map;
    CFeatureBag bag;
    gcstring_vector errors;

    explicit Bag(const std::string& nodes = description) : map(node_map(nodes)) {
        device.bytes[0] = 64;
        for (int bank = 0; bank < 2; ++bank)
            for (int index = 0; index < 3; ++index) Lut(bank, index) = static_cast<uint8_t>(10 * bank + index);
        map->Connect(&device);
    }
    uint8_t& Lut(int bank, int index) { return device.bytes[static_cast<size_t>(256 + 64 * bank + 4 * index)]; }
    Entries Stored() const {
        Entries list;
        for (size_t i = 0; i < bag.GetNames().size(); ++i) list.emplace_back(bag.GetNames()[i].str(), bag.GetValues()[i].str());
        return list;
    }
    void Fill(const Entries& entries) {
        std::stringstream text;
        text << "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";
        for (auto& [name, value] : entries) text << name << '\t' << value << '\n';
        text >> bag;
    }
    std::vector<std::string> Errors() const {
        std::vector<std::string> list;
        for (const gcstring& error : errors) list.push_back(error.str());
        return list;
    }
};

struct StreamingBag : Bag {
    StreamingBag() : Bag(description + streaming) {}
};

TEST_F(Bag, StoresSelectedFeaturesUnderEveryCombination) {
    const Entries expected = {
        {"Width", "64"},    {"Bank", "Low"},   {"Index", "0"},     {"LutValue", "0"}, {"Index", "1"},         {"LutValue", "1"},
        {"Index", "2"},     {"LutValue", "2"}, {"Bank", "High"},   {"Index", "0"},    {"LutValue", "10"},     {"Index", "1"},
        {"LutValue", "11"}, {"Index", "2"},    {"LutValue", "12"}, {"Flag", "1"},     {"Title", "old title"}, {"Huge", "7"},
        {"UnderHuge", "9"}, {"Bank", "High"},  {"Index", "1"},     {"Huge", "7"}};
    EXPECT_EQ(static_cast<int64_t>(expected.size()), bag.StoreToBag(map.get()));
    EXPECT_EQ(expected, Stored());
    EXPECT_EQ(1, integer(*map, "Index")) << "selectors stand as before";
    EXPECT_STREQ("High", get<IEnumeration>(*map, "Bank").ToString().c_str());

    EXPECT_EQ(5, bag.StoreToBag(map.get(), 5)) << "storing again replaces";
    EXPECT_EQ(Entries(expected.begin(), expected.begin() + 5), Stored());
    EXPECT_EQ(1, integer(*map, "Index"));
}

TEST_F(Bag, LoadsBackWhatWasStored) {
    bag.StoreToBag(map.get());
    const auto before = device.bytes;
    const CFeatureBag stored = bag;
    get<IInteger>(*map, "Width").SetValue(640);
    for (int index = 0; index < 3; ++index) Lut(0, index) = Lut(1, index) = 99;
    map->InvalidateNodes();
    get<IInteger>(*map, "Index").SetValue(2);
    get<IBoolean>(*map, "Flag").SetValue(false);
    get<IString>(*map, "Title").SetValue("new");
    EXPECT_TRUE(bag.LoadFromBag(map.get(), true, &errors)) << testing::PrintToString(Errors());
    EXPECT_EQ(before, device.bytes);
    bag.StoreToBag(map.get());
    EXPECT_TRUE(stored == bag);
}

TEST_F(Bag, GoesOnAfterAnEntryThatFails) {
    Fill({{"Missing", "1"},
          {"Width", "5000"},
          {"Title", "new"},
          {"Bank", "Upper"},
          {"Device", "1"},
          {"Locked", "6"},
          {"Flag", "0"}});
    EXPECT_FALSE(bag.LoadFromBag(map.get(), true, &errors));
    EXPECT_THAT(Errors(),
                ElementsAre(HasSubstr("Error while writing node 'Missing': Node not existing"),
                            HasSubstr("Error while writing node 'Width': "), HasSubstr("Error while writing node 'Bank': "),
                            HasSubstr("Error while writing node 'Device': "), HasSubstr("Error while writing node 'Locked': ")));
    EXPECT_STREQ("new", get<IString>(*map, "Title").GetValue().c_str());
    EXPECT_FALSE(get<IBoolean>(*map, "Flag").GetValue());
    EXPECT_EQ(64, integer(*map, "Width"));
    try {
        bag.LoadFromBag(map.get());
        ADD_FAILURE() << "without a list the failures are thrown";
    } catch (const GenICam::RuntimeException& e) {
        EXPECT_THAT(e.GetDescription(), HasSubstr("'Locked'"));
    }
}

TEST_F(Bag, VerificationFindsWhatTheDeviceMadeOfAValue) {
    device.onWrite = [this](int64_t address) {
        if (address == 0) device.bytes[0] = 8;
    };
    Fill({{"Width", "128"}});
    EXPECT_FALSE(bag.LoadFromBag(map.get(), true, &errors));
    EXPECT_THAT(Errors(), ElementsAre("Error while verifying node 'Width'. Expected '128', but found '8'."));
    errors.clear();
    EXPECT_TRUE(bag.LoadFromBag(map.get(), false, &errors));
}

TEST_F(StreamingBag, TellsTheDeviceWhenItBeginsAndEnds) {
    std::vector<std::pair<int64_t, int>> writes;
    device.onWrite = [&](int64_t address) { writes.emplace_back(address, device.bytes[static_cast<size_t>(address)]); };
    Fill({{"Width", "5000"}, {"Width", "12"}});
    bag.LoadFromBag(map.get(), true, &errors);
    using Write = std::pair<int64_t, int>;
    EXPECT_THAT(writes, ElementsAre(Write{8, 1}, Write{0, 5000 & 0xFF}, Write{0, 12}, Write{12, 1}))
        << "the device checks ranges itself";
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("Expected '5000', but found '12'")));

    writes.clear();
    bag.StoreToBag(map.get());
    EXPECT_THAT(writes, ElementsAre(Write{8, 2}, Write{12, 2}));
    get<IInteger>(*map, "WidthReg").SetValue(0);
    map->Connect(nullptr);
    EXPECT_NO_THROW(EXPECT_GT(bag.StoreToBag(map.get()), 0)) << "without a device what the map itself holds is left";
}

TEST_F(Bag, PersistsSingleFeaturesAndRefusesNoMap) {
    bag.PersistFeature(get<IValue>(*map, "Width"));
    bag.PersistFeature(get<IValue>(*map, "NotStreamable"));
    EXPECT_EQ((Entries{{"Width", "64"}, {"NotStreamable", "5"}}), Stored());
    EXPECT_THROW(bag.StoreToBag(nullptr), GenICam::InvalidArgumentException);
    EXPECT_THROW(bag.LoadFromBag(nullptr), GenICam::InvalidArgumentException);
    EXPECT_EQ(2u, Stored().size());
}

TEST_F(Bag, SelectorSetCountsThroughItsDigits) {
    CSelectorSet set(map->GetNode("LutValue"));
    EXPECT_FALSE(set.IsEmpty());
    std::vector<std::string> seen;
    for (bool more = set.SetFirst(); more; more = set.SetNext()) seen.push_back(set.ToString().str());
    EXPECT_THAT(seen, ElementsAre("Bank=Low,Index=0", "Bank=Low,Index=1", "Bank=Low,Index=2", "Bank=High,Index=0",
                                  "Bank=High,Index=1", "Bank=High,Index=2"));
    set.Restore();
    EXPECT_STREQ("Bank=High,Index=1", set.ToString().c_str());

    CSelectorSet none(map->GetNode("Width"));
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_TRUE(none.SetFirst());
    EXPECT_FALSE(none.SetNext());
    EXPECT_THROW(CSelectorSet(nullptr), GenICam::InvalidArgumentException);
}

TEST(SelectorSet, SelectorsThatSelectEachOtherEndTheWalk) {
    auto map = node_map(R"(
      <Integer Name="A"><Value>0</Value><Min>0</Min><Max>1</Max><pSelected>B</pSelected><pSelected>F</pSelected></Integer>
      <Integer Name="B"><Value>0</Value><Min>0</Min><Max>1</Max><pSelected>A</pSelected><pSelected>B</pSelected></Integer>
      <Integer Name="F"><Value>0</Value></Integer>)");
    CSelectorSet set(map->GetNode("F"));
    int combinations = 0;
    for (bool more = set.SetFirst(); more && combinations < 100; more = set.SetNext()) ++combinations;
    EXPECT_EQ(4, combinations);
}

}  // namespace
}  // namespace kiv::test
