// Event messages of GigE Vision on their way to the nodes.

#include <vector>

#include "unit/genapi_parts/map_fixture.h"

namespace kiv::test {
namespace {

using namespace GenApi;
using Bytes = std::vector<uint8_t>;

const char* const description = R"(
  <Port Name="Device"/>
  <Port Name="StartPort"><EventID>9001</EventID></Port>
  <Port Name="LinkPort"><EventID>0009</EventID></Port>
  <Integer Name="EventStart"><EventID>9001</EventID><Value>36865</Value></Integer>
  <IntReg Name="StartTime"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>StartPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="StartData"><Address>16</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>StartPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="StartDataExtended"><Address>24</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>StartPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <Integer Name="StartTimeView"><pValue>StartTime</pValue></Integer>
  <IntReg Name="LinkTime"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>LinkPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>)";

void put(Bytes& bytes, uint64_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) bytes.push_back(static_cast<uint8_t>(value >> shift));
}

Bytes item(uint16_t id, uint64_t time, Bytes data = {}, uint16_t size = 0) {
    Bytes bytes;
    for (uint64_t word : {uint64_t{size}, uint64_t{id}, uint64_t{0}, uint64_t{77}}) put(bytes, word, 2);
    put(bytes, time, 8);
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
}

Bytes extended_item(uint16_t id, Bytes data, uint16_t size) {
    Bytes bytes;
    for (uint64_t word : {uint64_t{size}, uint64_t{id}, uint64_t{0}, uint64_t{0}}) put(bytes, word, 2);
    put(bytes, 0x1122334455667788, 8);  // the block id stands where plain items have their time
    put(bytes, 5000, 8);
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
}

constexpr uint16_t eventCommand = 0xC0, eventDataCommand = 0xC2;
constexpr uint8_t plain = 0x00, extended = 0x11;

Bytes packet(uint16_t command, uint8_t flags, std::initializer_list<Bytes> items) {
    Bytes payload;
    for (const Bytes& one : items) payload.insert(payload.end(), one.begin(), one.end());
    Bytes bytes{0x42, flags};
    put(bytes, command, 2);
    put(bytes, payload.size(), 2);
    put(bytes, 1, 2);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

struct Events : testing::Test {
    std::unique_ptr<INodeMap> map = node_map(description);
    CEventAdapterGEV adapter{map.get()};

    // In memory of exactly its size, so that reading past the end is seen; gone before anything is read from the nodes.
    void Deliver(const Bytes& bytes) {
        auto exact = std::make_unique<uint8_t[]>(bytes.size());
        std::copy(bytes.begin(), bytes.end(), exact.get());
        adapter.DeliverMessage(exact.get(), static_cast<uint32_t>(bytes.size()));
    }
};

TEST_F(Events, AreNotAvailableBeforeTheFirstMessage) {
    EXPECT_EQ(NA, mode(*map, "StartTime"));
    EXPECT_THROW(integer(*map, "StartTime"), GenICam::AccessException);
    EXPECT_EQ(36865, integer(*map, "EventStart"));
}

TEST_F(Events, ItemsOfOnePacketReachTheirNodesOneByOne) {
    auto time = count_callbacks(*map, "StartTimeView");
    auto anchor = count_callbacks(*map, "EventStart");
    auto link = count_callbacks(*map, "LinkTime");
    std::vector<int64_t> seen;
    Register(map->GetNode("StartTime"), [&](INode*) { seen.push_back(integer(*map, "StartTimeView")); });
    Deliver(packet(eventCommand, plain, {item(0x9001, 100), item(9, 200), item(0x9001, 300), item(0x5555, 400)}));
    EXPECT_EQ((std::vector<int64_t>{100, 300}), seen);
    EXPECT_EQ(2, *time);
    EXPECT_EQ(2, *anchor);
    EXPECT_EQ(1, *link);
    EXPECT_EQ(RO, mode(*map, "StartTime"));
    EXPECT_EQ(300, integer(*map, "StartTimeView"));
    EXPECT_EQ(200, integer(*map, "LinkTime"));
}

TEST_F(Events, DataStandsBehindTheItem) {
    Deliver(packet(eventDataCommand, plain, {item(0x9001, 100, {0xAB, 0xCD})}));
    EXPECT_EQ(0xABCD, integer(*map, "StartData"));
    Deliver(packet(eventCommand, plain, {item(0x9001, 101)}));
    EXPECT_EQ(101, integer(*map, "StartTime"));
    EXPECT_THROW(integer(*map, "StartData"), GenICam::GenericException) << "the last message has no data";
}

TEST_F(Events, ExtendedItemsAreWalkedByTheirSize) {
    Deliver(packet(eventCommand, extended, {extended_item(0x9001, {}, 0), extended_item(9, {}, 0)}));
    EXPECT_EQ(0x1122334455667788, integer(*map, "StartTime"));
    EXPECT_EQ(0x1122334455667788, integer(*map, "LinkTime"));

    auto link = count_callbacks(*map, "LinkTime");
    Deliver(packet(eventDataCommand, extended, {extended_item(0x9001, {1, 2, 3, 4}, 28), extended_item(9, {}, 24)}));
    EXPECT_EQ(0x0102, integer(*map, "StartDataExtended"));
    EXPECT_EQ(1, *link);
    Deliver(packet(eventDataCommand, extended, {extended_item(0x9001, {5, 6}, 0)}));
    EXPECT_EQ(0x0506, integer(*map, "StartDataExtended")) << "no size: to the end of the packet";
    Deliver(packet(eventDataCommand, extended, {extended_item(0x9001, {7, 8}, 26), extended_item(9, {}, 99)}));
    EXPECT_EQ(0x0708, integer(*map, "StartDataExtended"));
    EXPECT_EQ(1, *link) << "an item that reaches past the end is none";
}

TEST_F(Events, FaultyPacketsDeliverNothing) {
    auto anchor = count_callbacks(*map, "EventStart");
    const Bytes good = packet(eventCommand, plain, {item(0x9001, 100)});
    for (size_t length = 0; length < good.size(); ++length)
        EXPECT_THROW(Deliver(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(length))),
                     GenICam::InvalidArgumentException)
            << length;
    Bytes wrongMagic = good, wrongCommand = good, shortLength = good;
    wrongMagic[0] = 0x43;
    wrongCommand[3] = 0x80;
    shortLength[5] = 15;
    for (const Bytes& bad : {wrongMagic, wrongCommand, shortLength, packet(eventCommand, extended, {item(0x9001, 100)}),
                             packet(eventDataCommand, extended, {extended_item(0x9001, {}, 25)}),
                             packet(eventDataCommand, extended, {extended_item(0x9001, {}, 5)}), packet(eventCommand, plain, {})})
        EXPECT_THROW(Deliver(bad), GenICam::InvalidArgumentException);
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 24), GenICam::InvalidArgumentException);
    EXPECT_EQ(0, *anchor);
    EXPECT_EQ(NA, mode(*map, "StartTime"));

    Bytes inABuffer = good;  // as it comes from a producer that fills fixed buffers
    inABuffer.resize(576, 0xEE);
    Deliver(inABuffer);
    EXPECT_EQ(1, *anchor);
}

TEST_F(Events, LeaveTheMapWithTheirAdapter) {
    Deliver(packet(eventCommand, plain, {item(0x9001, 100)}));
    CEventAdapterGEV copy(adapter);
    copy.DeliverEvent(nullptr, 0, 0x9001);
    EXPECT_EQ(100, integer(*map, "StartTime")) << "a copy has no node map";
    adapter.DetachNodeMap();
    EXPECT_EQ(NA, mode(*map, "StartTime"));
    Deliver(packet(eventCommand, plain, {item(0x9001, 200)}));
    adapter.AttachNodeMap(map.get());
    EXPECT_EQ(NA, mode(*map, "StartTime"));
    Deliver(packet(eventCommand, plain, {item(0x9001, 300)}));
    EXPECT_EQ(300, integer(*map, "StartTime"));
}

TEST_F(Events, APortOfItsOwnServesOneNode) {
    adapter.DetachNodeMap();
    CEventPort port(map->GetNode("StartPort"));
    EXPECT_EQ(2, port.GetEventIDLength());
    EXPECT_TRUE(port.CheckEventID(0x9001));
    EXPECT_FALSE(port.CheckEventID(0x9002));
    const uint8_t id[] = {0, 0x90, 1};
    EXPECT_TRUE(port.CheckEventID(id, 3));
    EXPECT_FALSE(port.CheckEventID(id, 2));
    EXPECT_FALSE(CEventPort().AttachNode(map->GetNode("StartTime")));
    EXPECT_FALSE(CEventPort().AttachNode(map->GetNode("Device"))) << "no event id";
    EXPECT_THROW(CEventPort().GetLock(), GenICam::LogicalErrorException);

    const Bytes message = item(0x9001, 42);
    port.AttachEvent(message.data(), static_cast<int64_t>(message.size()));
    EXPECT_EQ(42, integer(*map, "StartTime"));
    uint8_t out[16];
    EXPECT_THROW(port.Read(out, 8, 9), GenICam::OutOfRangeException);
    EXPECT_THROW(port.Read(out, -1, 1), GenICam::OutOfRangeException);
    EXPECT_THROW(port.Read(out, INT64_MAX, 2), GenICam::OutOfRangeException);
    EXPECT_THROW(port.Write(out, 0, 1), GenICam::AccessException);
    port.DetachEvent();
    EXPECT_EQ(NA, mode(*map, "StartTime"));
}

}  // namespace
}  // namespace kiv::test
