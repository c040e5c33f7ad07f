// Chunks of a buffer as features.

#include <limits>
#include <vector>

#include "unit/genapi_parts/map_fixture.h"

namespace kiv::test {
namespace {

using namespace GenApi;

const char* const description = R"(
  <Port Name="Device"/>
  <Port Name="WidthPort"><ChunkID>0000a001</ChunkID></Port>
  <Port Name="GainPort"><ChunkID>B002</ChunkID></Port>
  <Port Name="KeptPort"><ChunkID>C003</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>
  <Port Name="MovingPort"><pChunkID>MovingID</pChunkID></Port>
  <Integer Name="MovingID"><Value>53252</Value></Integer>
  <IntReg Name="ChunkWidth"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>WidthPort</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="ChunkWidthView"><pValue>ChunkWidth</pValue></Integer>
  <IntReg Name="ChunkLastByte"><Address>-1</Address><Length>1</Length><AccessMode>RO</AccessMode><pPort>WidthPort</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="ChunkBehind"><Address>5</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>WidthPort</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="ChunkGain"><Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>GainPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="ChunkKept"><Address>0</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>KeptPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntSwissKnife Name="ChunkSum"><pVariable Name="W">ChunkWidth</pVariable><pVariable Name="G">ChunkGain</pVariable>
    <Formula>W + G</Formula></IntSwissKnife>
  <IntReg Name="ChunkMoving"><Address>0</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>MovingPort</pPort>
    <Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>)";

struct Chunks : testing::Test {
    std::unique_ptr<INodeMap> map = node_map(description);
    CChunkAdapterGeneric adapter{map.get(), -1};
    std::vector<uint8_t> buffer{0x80, 2, 0, 0, 7, 9, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC};
    const std::vector<SingleChunkData_t> list{{0xA001, 0, 6}, {0xB002, 6, 2}, {0xC003, 8, 2}, {0xD004, 10, 2}, {0xEEEE, 0, 12}};

    AttachStatistics_t Attach(const std::vector<SingleChunkData_t>& chunks) {
        AttachStatistics_t statistics{-1, -1, -1};
        adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()), chunks.data(),
                             static_cast<int64_t>(chunks.size()), &statistics);
        return statistics;
    }
};

TEST_F(Chunks, AreReadWhereTheListSays) {
    EXPECT_EQ(NA, mode(*map, "ChunkWidth"));
    auto width = count_callbacks(*map, "ChunkWidthView");
    const AttachStatistics_t statistics = Attach(list);
    EXPECT_EQ(4, statistics.NumChunkPorts);
    EXPECT_EQ(5, statistics.NumChunks);
    EXPECT_EQ(4, statistics.NumAttachedChunks);
    EXPECT_EQ(1, *width);
    EXPECT_EQ(640, integer(*map, "ChunkWidthView"));
    EXPECT_EQ(9, integer(*map, "ChunkLastByte")) << "negative addresses count from the end";
    EXPECT_EQ(0x1234, integer(*map, "ChunkGain"));
    EXPECT_EQ(RO, mode(*map, "ChunkGain"));
    EXPECT_EQ(0x9ABC, integer(*map, "ChunkMoving"));
    EXPECT_THROW(integer(*map, "ChunkBehind"), GenICam::GenericException) << "what lies behind the chunk is not its";
}

TEST_F(Chunks, WithoutAChunkThereIsNoFeature) {
    Attach(list);
    EXPECT_EQ(0x5678, integer(*map, "ChunkKept"));
    EXPECT_EQ(1, Attach({{0xB002, 0, 2}}).NumAttachedChunks);
    EXPECT_EQ(0x8002, integer(*map, "ChunkGain"));
    EXPECT_EQ(NA, mode(*map, "ChunkWidthView"));
    EXPECT_EQ(NA, mode(*map, "ChunkKept")) << "the copy is that of another buffer";
    EXPECT_EQ(0, Attach({}).NumAttachedChunks);
    EXPECT_EQ(NA, mode(*map, "ChunkGain"));
    EXPECT_EQ(1, Attach({{0xB002, 6, 2}, {0xB002, 0, 2}}).NumAttachedChunks);
    EXPECT_EQ(0x1234, integer(*map, "ChunkGain")) << "the first of two with one id";
}

TEST_F(Chunks, OfOneBufferAreOneChange) {
    std::vector<int64_t> seen;
    const auto handle = Register(map->GetNode("ChunkSum"),
                                 [&](INode* node) { seen.push_back(IsReadable(node) ? integer(*map, "ChunkSum") : -1); });
    Attach(list);
    buffer[0] = 0x81;
    adapter.UpdateBuffer(buffer.data());
    adapter.DetachBuffer();
    adapter.DetachNodeMap();
    adapter.AttachNodeMap(map.get());
    Deregister(handle);
    EXPECT_EQ((std::vector<int64_t>{640 + 0x1234, 641 + 0x1234, -1, -1, -1}), seen);
}

TEST_F(Chunks, AnIdFromANodeIsAskedAtEachAttach) {
    get<IInteger>(*map, "MovingID").SetValue(0xB002);
    Attach(list);
    EXPECT_EQ(0x1234, integer(*map, "ChunkMoving"));
}

TEST_F(Chunks, FollowTheBuffer) {
    Attach(list);
    EXPECT_EQ(640, integer(*map, "ChunkWidthView"));
    auto width = count_callbacks(*map, "ChunkWidthView");
    std::vector<uint8_t> next = buffer;
    next[0] = 0x81;
    next[6] = 0x99;
    next[8] = 0x77;
    adapter.UpdateBuffer(next.data());
    EXPECT_EQ(1, *width);
    EXPECT_EQ(641, integer(*map, "ChunkWidthView"));
    EXPECT_EQ(0x9934, integer(*map, "ChunkGain"));
    EXPECT_EQ(0x7778, integer(*map, "ChunkKept"));
    EXPECT_THROW(adapter.UpdateBuffer(nullptr), GenICam::InvalidArgumentException);
    EXPECT_EQ(641, integer(*map, "ChunkWidthView"));
}

TEST_F(Chunks, OnlyKeptOnesSurviveTheBuffer) {
    Attach(list);
    adapter.DetachBuffer();
    buffer.assign(buffer.size(), 0);
    EXPECT_EQ(NA, mode(*map, "ChunkWidthView"));
    EXPECT_THROW(integer(*map, "ChunkWidth"), GenICam::AccessException);
    EXPECT_EQ(0x5678, integer(*map, "ChunkKept"));
    adapter.UpdateBuffer(buffer.data());
    EXPECT_EQ(NA, mode(*map, "ChunkWidthView")) << "there is no layout to move";
    adapter.ClearCaches();
    EXPECT_EQ(NA, mode(*map, "ChunkKept"));
    adapter.ClearCaches();

    CChunkAdapterGeneric small(map.get(), 1);
    small.AttachBuffer(buffer.data(), list.data(), static_cast<int64_t>(list.size()));
    EXPECT_EQ(RO, mode(*map, "ChunkKept"));
    small.DetachBuffer();
    EXPECT_EQ(NA, mode(*map, "ChunkKept")) << "larger than what is copied";
}

TEST_F(Chunks, ListsThatCannotBeTrueAttachNothing) {
    constexpr int64_t far = std::numeric_limits<int64_t>::max();
    constexpr uint64_t huge = std::numeric_limits<uint64_t>::max();
    const SingleChunkData_t wrong[] = {{0xA001, 0, 13},   {0xA001, 13, 0},         {0xA001, 11, 2},
                                       {0xA001, -1, 2},   {0xA001, far, 2},        {0xA001, far, 0},
                                       {0xA001, 0, huge}, {0xA001, 1, 1ull << 63}, {0xEEEE, 0, 13}};
    for (const SingleChunkData_t& chunk : wrong) {
        Attach(list);
        EXPECT_THROW(Attach({list[0], chunk}), GenICam::InvalidArgumentException)
            << chunk.ChunkOffset << "+" << chunk.ChunkLength;
        EXPECT_EQ(NA, mode(*map, "ChunkWidth")) << "neither the old buffer nor half of the new one";
    }
    EXPECT_NO_THROW(Attach({{0xA001, 12, 0}}));
    EXPECT_THROW(integer(*map, "ChunkWidth"), GenICam::GenericException) << "an empty chunk";

    const SingleChunkData_t impossible{0xA001, far, 1};
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), &impossible, 1), GenICam::InvalidArgumentException)
        << "whatever the buffer's length";
    EXPECT_THROW(adapter.AttachBuffer(nullptr, list.data(), 5), GenICam::InvalidArgumentException);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), nullptr, 5), GenICam::InvalidArgumentException);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), list.data(), -1), GenICam::InvalidArgumentException);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), 12), GenICam::LogicalErrorException) << "it knows no layout of its own";
}

TEST_F(Chunks, ThePortAnswersForItself) {
    adapter.DetachNodeMap();
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), list.data(), 5), GenICam::LogicalErrorException);
    CChunkPort port(map->GetNode("WidthPort"));
    EXPECT_EQ(4, port.GetChunkIDLength());
    const uint8_t id[] = {0, 0, 0xA0, 1};
    EXPECT_TRUE(port.CheckChunkID(id, 4));
    EXPECT_FALSE(port.CheckChunkID(id + 2, 2));
    EXPECT_TRUE(port.CheckChunkID(0xA001));
    EXPECT_FALSE(port.CheckChunkID(0x1A001));
    EXPECT_FALSE(CChunkPort().AttachPort(map->GetNode("Device"))) << "no chunk id";
    EXPECT_FALSE(CChunkPort().AttachPort(map->GetNode("ChunkWidth")));

    port.AttachChunk(buffer.data(), 6, 4, false);
    int64_t number = 0;
    port.Read(&number, std::numeric_limits<int64_t>::max(), 8);
    EXPECT_EQ(reinterpret_cast<intptr_t>(buffer.data() + 6), number);
    port.Read(&number, std::numeric_limits<int64_t>::max() - 15, 8);
    EXPECT_EQ(4, number);
    uint8_t out[4];
    EXPECT_THROW(port.Read(out, std::numeric_limits<int64_t>::max(), 4), GenICam::OutOfRangeException);
    for (auto [address, length] : {std::pair{int64_t{0}, int64_t{5}}, {1, 4}, {-5, 1}, {-1, 2}, {4, 1}, {0, -1}, {INT64_MIN, 1}})
        EXPECT_THROW(port.Read(out, address, length), GenICam::OutOfRangeException) << address << " " << length;
    port.Read(out, -4, 4);
    EXPECT_EQ(0x12, out[0]);
    EXPECT_THROW(port.Write(out, 0, 4), GenICam::AccessException);
    CChunkPort copy(port);
    port.DetachPort();
    EXPECT_EQ(NA, mode(*map, "ChunkWidth"));
    copy.Read(out, 0, 1);
    EXPECT_EQ(0x12, out[0]);
}

}  // namespace
}  // namespace kiv::test
