#include <gencp_packet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>

using namespace CLProtocol;

namespace {

Bytes hex(std::string text) {
    Bytes bytes;
    std::erase_if(text, [](unsigned char c) { return std::isspace(c); });
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<std::byte>(std::stoul(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

Bytes read_payload(std::uint64_t address, std::uint64_t length) {
    Bytes payload;
    append(payload, address, 8);
    append(payload, length, 4);
    return payload;
}

// Worked by hand from the protocol.
const Bytes abc = hex("0100F7F373B10000 0000080100030008 414243");
const Bytes last_two_sum_to_zero = hex("0100F7FB00000000 0000080100020001 F7FB");

std::vector<Ack> acks_in(const Bytes& line, std::size_t piece) {
    AckReader reader;
    std::vector<Ack> acks;
    for (std::size_t from = 0; from < line.size(); from += piece) {
        reader.Add(std::span(line).subspan(from, std::min(piece, line.size() - from)));
        while (auto ack = reader.Next()) acks.push_back(*ack);
    }
    return acks;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(GenCpPacket, CommandsAreTheBytesOfTheProtocol) {
    EXPECT_EQ(hex("0100B7F2B76E0000 40000800000C0001 0000000000000044 00000040"),
              command_packet(Command::read_memory, 1, read_payload(0x44, 64), false));
    EXPECT_EQ(hex("010037F0376C0000 C0000800000C0003 0000000000000044 00000040"),
              command_packet(Command::read_memory, 3, read_payload(0x44, 64), true));
    EXPECT_EQ(hex("0100B7EBB7D60000 40000802000C0006 0000000000010004 00000010"),
              command_packet(Command::write_memory, 6, hex("0000000000010004 00000010"), false));
}

TEST(GenCpPacket, AnswersAreFoundHoweverTheyArriveAndWhateverIsBetweenThem) {
    const Bytes noise = hex("FF010101020D0A0100");
    Bytes wrong_header = abc, wrong_payload = abc, other_channel = hex("0100F7F273B00001 0000080100030008 414243");
    wrong_header[13] ^= std::byte{1};
    wrong_payload[17] ^= std::byte{1};
    const Bytes line = noise + abc + wrong_header + wrong_payload + abc + other_channel + last_two_sum_to_zero + noise;
    for (const std::size_t piece : {line.size(), std::size_t{1}, std::size_t{7}}) {
        const auto acks = acks_in(line, piece);
        ASSERT_EQ(3u, acks.size()) << piece;
        EXPECT_EQ(hex("414243"), acks[1].payload);
        EXPECT_EQ(8, acks[1].request);
        EXPECT_EQ(0x0801, acks[1].command);
        EXPECT_EQ(0, acks[1].status);
        EXPECT_EQ(hex("F7FB"), acks[2].payload) << "a checksum of zero";
    }
    EXPECT_EQ(0x8003, acks_in(hex("010077F677F60000 8003080100000005"), 16).at(0).status);
}

TEST(GenCpPacket, ALengthThatNoPacketHasIsNoise) {
    Bytes covered = hex("0000 0000 0801 FFFF 0001");
    Bytes packet = hex("0100");
    append(packet, checksum(covered), 2);
    append(packet, 0, 2);
    EXPECT_EQ(1u, acks_in(packet + covered + abc, 64).size());
}

TEST(GenCpPacket, RandomBytesAndBrokenPacketsYieldOnlyWhatWasSent) {
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        Bytes line;
        for (int part = 0; part < 8; ++part) {
            Bytes piece = random() % 2 != 0 ? abc : last_two_sum_to_zero;
            for (auto hits = random() % 4; hits > 0; --hits) piece[random() % piece.size()] = static_cast<std::byte>(random());
            for (auto extra = random() % 30; extra > 0; --extra) piece.push_back(static_cast<std::byte>(random() % 3));
            if (random() % 3 == 0) piece.resize(random() % piece.size());
            line = line + piece;
        }
        for (const Ack& ack : acks_in(line, 1 + random() % 40))
            EXPECT_TRUE(ack.payload == hex("414243") || ack.payload == hex("F7FB")) << "round " << round;
    }
}

}  // namespace
