// Which bits of which bytes a number in a register is made of.
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

struct BitCase {
    const char* name;
    std::string bits;  ///< the elements that say where the field is; "" for a whole register
    bool bigEndian;
    std::vector<int> bytes;
    int64_t value;
};

std::string register_of(const BitCase& c) {
    const std::string element = c.bits.empty() || c.bits == "<Sign>Signed</Sign>" ? "IntReg" : "MaskedIntReg";
    return "<" + element + " Name=\"Field\"><Address>64</Address><Length>" + std::to_string(c.bytes.size()) +
           "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + c.bits + "<Endianess>" +
           (c.bigEndian ? "BigEndian" : "LittleEndian") + "</Endianess></" + element + ">";
}

class RegisterBits : public ::testing::TestWithParam<BitCase> {};

}  // namespace

TEST_P(RegisterBits, AreReadAndWrittenWithoutTouchingTheirNeighbours) {
    const auto& c = GetParam();
    DescribedCamera camera(register_of(c));
    const auto put = [&](const std::vector<int>& bytes) {
        for (size_t i = 0; i < bytes.size(); ++i) camera.memory.bytes[64 + i] = static_cast<uint8_t>(bytes[i]);
        camera.Map().InvalidateNodes();
    };
    put(c.bytes);
    auto& field = camera.Integer("Field");
    EXPECT_EQ(c.value, field.GetValue());

    // Written into zeros and into ones, the value appears at the same place, and only there.
    std::vector<int> zeros(c.bytes.size(), 0), ones(c.bytes.size(), 0xFF), mask(c.bytes.size());
    if (c.value < 0 && field.GetMin() == 0) return;  // a 64-bit pattern that no unsigned value can be written as
    put(zeros);
    field.SetValue(c.value);
    const auto intoZeros = camera.memory.At(64, c.bytes.size());
    put(ones);
    field.SetValue(c.value);
    const auto intoOnes = camera.memory.At(64, c.bytes.size());
    for (size_t i = 0; i < mask.size(); ++i) mask[i] = intoZeros[i] ^ intoOnes[i] ^ 0xFF;
    for (size_t i = 0; i < mask.size(); ++i) {
        EXPECT_EQ(intoZeros[i], intoOnes[i] & mask[i]) << "byte " << i;
        EXPECT_EQ(intoZeros[i], c.bytes[i] & mask[i]) << "byte " << i;
    }
    camera.Map().InvalidateNodes();
    EXPECT_EQ(c.value, field.GetValue());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegisterBits,
    ::testing::Values(BitCase{"LittleMiddle", "<LSB>8</LSB><MSB>15</MSB>", false, {0x78, 0x56, 0x34, 0x12}, 0x56},
                      BitCase{"LittleWrongWayRound", "<LSB>15</LSB><MSB>8</MSB>", false, {0x78, 0x56, 0x34, 0x12}, 0x56},
                      BitCase{"BigMiddle", "<LSB>23</LSB><MSB>16</MSB>", true, {0x12, 0x34, 0x56, 0x78}, 0x56},
                      BitCase{"BigLastBit", "<Bit>31</Bit>", true, {0, 0, 0, 1}, 1},
                      BitCase{"BigFirstBit", "<Bit>0</Bit>", true, {0x80, 0, 0, 0}, 1},
                      BitCase{"LittleFirstBit", "<Bit>0</Bit>", false, {1, 0, 0, 0}, 1},
                      BitCase{"BigTwelveBits", "<LSB>11</LSB><MSB>0</MSB>", true, {0xAB, 0xCD}, 0xABC},
                      BitCase{"BigTwelveBitsTurned", "<LSB>0</LSB><MSB>11</MSB>", true, {0xAB, 0xCD}, 0xABC},
                      BitCase{"BigShortLastBit", "<Bit>15</Bit>", true, {0xAB, 0xCD}, 1},
                      BitCase{"SignedNibble", "<LSB>4</LSB><MSB>7</MSB><Sign>Signed</Sign>", false, {0xA5, 0}, -6},
                      BitCase{"BigOneByte", "<Bit>7</Bit>", true, {1}, 1},
                      BitCase{"WholeSigned", "<Sign>Signed</Sign>", false, {0xFE, 0xFF}, -2},
                      BitCase{"WholeThreeBytes", "", true, {1, 2, 3}, 0x010203},
                      BitCase{"WholeSevenBytes", "", false, {1, 2, 3, 4, 5, 6, 7}, 0x07060504030201},
                      BitCase{"WholeSignedEight", "<Sign>Signed</Sign>", true, {0x80, 0, 0, 0, 0, 0, 0, 0}, INT64_MIN},
                      BitCase{"WholeUnsignedEight", "", true, std::vector<int>(8, 0xFF), -1}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(RegisterLimits, FollowFromTheWidthAndTheSign) {
    DescribedCamera camera(int_reg("U16", 0, "", 2) + int_reg("S16", 0, "<Sign>Signed</Sign>", 2) + int_reg("U64", 0, "", 8) +
                           int_reg("S64", 0, "<Sign>Signed</Sign>", 8) +
                           R"(<MaskedIntReg Name="Nibble"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>
                              <pPort>Device</pPort><LSB>4</LSB><MSB>7</MSB><Endianess>LittleEndian</Endianess></MaskedIntReg>)");
    const auto limits = [&](const char* name) { return std::pair(camera.Integer(name).GetMin(), camera.Integer(name).GetMax()); };
    using Limits = std::pair<int64_t, int64_t>;
    EXPECT_EQ(Limits(0, 65535), limits("U16"));
    EXPECT_EQ(Limits(-32768, 32767), limits("S16"));
    EXPECT_EQ(Limits(0, INT64_MAX), limits("U64"));
    EXPECT_EQ(Limits(INT64_MIN, INT64_MAX), limits("S64"));
    EXPECT_EQ(Limits(0, 15), limits("Nibble"));
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("Nibble").SetValue(16, false), "Nibble", "Max = 15");
    EXPECT_NODE_ERROR(OutOfRangeException, camera.Integer("U64").SetValue(-1, false), "U64", "Min = 0");
    EXPECT_EQ(0, camera.memory.writes);
}

TEST(StructuredRegister, GivesItsEntriesWhatItSaysItself) {
    DescribedCamera camera(
        R"(<StructReg Comment="c"><ToolTip>shared</ToolTip><Address>8</Address><pAddress>Base</pAddress><Length>4</Length>
        <AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess>
        <StructEntry Name="Low"><LSB>0</LSB><MSB>7</MSB></StructEntry>
        <StructEntry Name="Flag"><ToolTip>own</ToolTip><AccessMode>RO</AccessMode><Cachable>WriteThrough</Cachable><Bit>31</Bit></StructEntry>
        </StructReg><Integer Name="Base"><Value>4</Value></Integer>)");
    camera.memory.Put(12, {0x2A, 0, 0, 0x80});
    EXPECT_EQ(0x2A, camera.Integer("Low").GetValue());
    EXPECT_EQ(1, camera.Integer("Flag").GetValue());
    EXPECT_EQ("shared", camera.Node("Low").GetToolTip());
    EXPECT_EQ("own", camera.Node("Flag").GetToolTip());
    EXPECT_EQ(RW, camera.Mode("Low"));
    EXPECT_EQ(RO, camera.Mode("Flag"));
    EXPECT_EQ(NoCache, camera.Node("Low").GetCachingMode());
    EXPECT_EQ(WriteThrough, camera.Node("Flag").GetCachingMode());
    gcstring kind, attribute;
    EXPECT_TRUE(camera.Node("Low").GetProperty("NodeType", kind, attribute));
    EXPECT_EQ("MaskedIntReg", kind);
    EXPECT_EQ(12, camera.Register("Flag").GetAddress());
}

TEST(RawRegister, MovesBytesAsTheyStand) {
    DescribedCamera camera(
        R"(<Register Name="Lut"><Address>16</Address><Length>6</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>)" +
        int_reg("Number", 32));
    auto& lut = camera.Register("Lut");
    const uint8_t few[] = {1, 2, 3, 4};
    camera.memory.Put(16, {9, 9, 9, 9, 9, 9});
    lut.Set(few, 4);
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 0, 0}), camera.memory.At(16, 6));
    uint8_t all[8] = {};
    lut.Get(all, 8);
    EXPECT_EQ(4, all[3]);
    EXPECT_EQ("0x010203040000", lut.ToString());
    lut.FromString("0xFFee00112233");
    EXPECT_EQ((std::vector<int>{0xFF, 0xEE, 0, 0x11, 0x22, 0x33}), camera.memory.At(16, 6));
    EXPECT_NODE_ERROR(OutOfRangeException, lut.Get(all, 5), "Lut", "6");
    EXPECT_NODE_ERROR(OutOfRangeException, lut.Set(all, 7), "Lut", "7");
    EXPECT_NODE_ERROR(InvalidArgumentException, lut.Set(nullptr, 1), "Lut", "null");
    EXPECT_NODE_ERROR(InvalidArgumentException, lut.Get(all, -1), "Lut", "negative");
    EXPECT_NODE_ERROR(InvalidArgumentException, lut.FromString("0x123"), "Lut", "0x123");

    const uint8_t number[] = {1, 0, 0, 0};
    camera.Integer("Number").GetValue();
    camera.Register("Number").Set(number, 4);
    EXPECT_EQ(1, camera.Integer("Number").GetValue());
}

TEST(Port, SwapsQuadletsWhenItsDescriptionSaysSo) {
    DescribedCamera camera(R"(<Port Name="Swapped"><SwapEndianess>Yes</SwapEndianess></Port>
        <IntReg Name="Reg"><Address>5</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Swapped</pPort>
          <Endianess>LittleEndian</Endianess></IntReg>)");
    camera.Map().Connect(&camera.memory, "Swapped");
    camera.memory.Put(4, {0xA3, 0xA2, 0xA1, 0xA0});
    EXPECT_EQ(0xA2A1, camera.Integer("Reg").GetValue());
    camera.Integer("Reg").SetValue(0x1122);
    EXPECT_EQ((std::vector<int>{0xA3, 0x11, 0x22, 0xA0}), camera.memory.At(4, 4));
}
