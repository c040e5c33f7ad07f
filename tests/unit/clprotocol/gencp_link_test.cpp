#include <gencp_link.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <thread>

using namespace CLProtocol;
using testing::ElementsAre;

namespace {

struct Heard {
    std::uint16_t command, request;
    bool resent;
    Bytes payload;
};

Bytes ack_packet(std::uint16_t status, std::uint16_t command, std::uint16_t request, const Bytes& payload) {
    Bytes covered;
    for (const std::uint64_t number :
         {std::uint64_t{0}, std::uint64_t{status}, std::uint64_t{command}, std::uint64_t{payload.size()}, std::uint64_t{request}})
        append(covered, number, 2);
    const std::uint16_t header = checksum(covered);
    covered.insert(covered.end(), payload.begin(), payload.end());
    Bytes packet{std::byte{1}, std::byte{0}};
    append(packet, header, 2);
    append(packet, checksum(covered), 2);
    packet.insert(packet.end(), covered.begin(), covered.end());
    return packet;
}

/// A line on which the camera's answer is there at once.
class ScriptedLine : public Serial {
public:
    std::size_t ReadSome(std::span<std::byte> bytes, std::chrono::milliseconds timeout) override {
        if (waiting.empty()) std::this_thread::sleep_for(std::min(timeout, std::chrono::milliseconds(1)));  // as a line does
        const std::size_t count = std::min(bytes.size(), waiting.size());
        std::copy_n(waiting.begin(), count, bytes.begin());
        waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(count));
        return count;
    }
    void Write(std::span<const std::byte> bytes, std::chrono::milliseconds) override {
        heard.push_back({static_cast<std::uint16_t>(number_at(bytes, 10, 2)),
                         static_cast<std::uint16_t>(number_at(bytes, 14, 2)),
                         (number_at(bytes, 8, 2) & 0x8000) != 0,
                         {bytes.begin() + 16, bytes.end()}});
        const Bytes reply = answer(heard.back());
        waiting.insert(waiting.end(), reply.begin(), reply.end());
    }
    void Discard() override { waiting.clear(); }
    std::uint32_t SupportedRates() override { return 1; }
    void SetRate(std::uint32_t) override {}

    std::vector<std::uint16_t> Requests() const {
        std::vector<std::uint16_t> requests;
        for (const Heard& one : heard) requests.push_back(one.request);
        return requests;
    }

    std::function<Bytes(const Heard&)> answer;
    std::vector<Heard> heard;
    std::deque<std::byte> waiting;
};

class Link : public testing::Test {
protected:
    Link() {
        link_.SetRate(921600);
        link_.SetResponseTime(std::chrono::milliseconds(0));
        line_.answer = [this](const Heard& heard) { return Proper(heard); };
    }
    static Bytes Number(std::uint64_t number, std::size_t size) {
        Bytes bytes;
        append(bytes, number, size);
        return bytes;
    }
    Bytes Proper(const Heard& heard) const {
        return ack_packet(
            0, static_cast<std::uint16_t>(heard.command | 1), heard.request,
            heard.command == 0x0800 ? Number(value_, static_cast<std::size_t>(number_at(heard.payload, 10, 2))) : Bytes{});
    }

    std::uint64_t value_ = 0x12345678;
    ScriptedLine line_;
    Checkpoint checkpoint_ = [] {};
    GenCpLink link_{line_, checkpoint_};
};

TEST_F(Link, RequestsCountFromZeroAndPassOverZeroWhenTheyWrap) {
    for (int i = 0; i < 0x10001; ++i) EXPECT_EQ(value_, link_.ReadNumber(0x100, 4));
    const auto requests = line_.Requests();
    EXPECT_EQ(0, requests[0]);
    EXPECT_EQ(0xFFFF, requests[0xFFFF]);
    EXPECT_EQ(1, requests[0x10000]);
    EXPECT_EQ(line_.heard[0].payload,
              (Bytes{Number(0x100, 8)[0], {}, {}, {}, {}, {}, std::byte{1}, {}, {}, {}, {}, std::byte{4}}));
}

TEST_F(Link, AWriteNeverHasRequestZero) {
    link_.Write(0x10004, Number(0x10, 4));
    ASSERT_THAT(line_.Requests(), ElementsAre(1));
    EXPECT_EQ(0x0802, line_.heard[0].command);
    EXPECT_EQ(line_.heard[0].payload.size(), 12u);
    EXPECT_EQ(0x10u, number_at(line_.heard[0].payload, 8, 4));
}

TEST_F(Link, WhatIsNotAnsweredIsSentAgainAsTheSameRequestThreeTimes) {
    line_.answer = [this](const Heard& heard) { return heard.resent && line_.heard.size() == 4 ? Proper(heard) : Bytes{}; };
    EXPECT_EQ(value_, link_.ReadNumber(0, 4));
    EXPECT_THAT(line_.Requests(), ElementsAre(0, 0, 0, 0));
    EXPECT_FALSE(line_.heard[0].resent);
    line_.answer = [](const Heard&) { return Bytes{}; };
    EXPECT_THROW(link_.ReadNumber(0, 4), GenICam::TimeoutException);
    EXPECT_THAT(line_.Requests(), ElementsAre(0, 0, 0, 0, 1, 1, 1, 1));
}

TEST_F(Link, AFaultOfTheMomentIsTriedAsANewRequestARefusalIsNot) {
    line_.answer = [this](const Heard& heard) {
        return heard.request < 2 ? ack_packet(0x8007, 0x0801, heard.request, {}) : Proper(heard);
    };
    EXPECT_EQ(value_, link_.ReadNumber(0, 4));
    EXPECT_THAT(line_.Requests(), ElementsAre(0, 1, 2));
    line_.answer = [](const Heard& heard) { return ack_packet(0x8003, 0x0801, heard.request, {}); };
    try {
        link_.ReadNumber(0x1D8, 8);
        FAIL();
    } catch (const RefusedException& error) {
        EXPECT_EQ(0x8003, error.Status());
        EXPECT_STREQ("the camera refuses reading at 0x1D8: status 0x8003 INVALID_ADDRESS", error.GetDescription());
    }
    EXPECT_THAT(line_.Requests(), ElementsAre(0, 1, 2, 3));
}

TEST_F(Link, AnAnswerOfAnotherLengthOrToAnotherRequestIsNotTaken) {
    line_.answer = [](const Heard& heard) {
        return ack_packet(0, 0x0801, static_cast<std::uint16_t>(heard.request + 5), Number(1, 4));
    };
    link_.SetTries(1);
    EXPECT_THROW(link_.ReadNumber(0, 4), GenICam::TimeoutException);
    line_.answer = [](const Heard& heard) { return ack_packet(0, 0x0801, heard.request, Number(1, 3)); };
    EXPECT_THROW(link_.ReadNumber(0, 4), GenICam::RuntimeException);
    line_.answer = [](const Heard& heard) { return ack_packet(0x1001, 0x0801, heard.request, Number(7, 4)); };
    EXPECT_EQ(7u, link_.ReadNumber(0, 4)) << "a warning is a success";
}

TEST_F(Link, PatienceIsGrantedButNotForEver) {
    line_.answer = [](const Heard& heard) { return ack_packet(0, 0x0805, heard.request, Number(0xFFFF, 4)); };
    checkpoint_ = [this, asked = 0]() mutable {
        if (++asked != 400) return;
        const Bytes late = Proper(line_.heard.back());
        line_.waiting.insert(line_.waiting.end(), late.begin(), late.end());
    };
    EXPECT_EQ(value_, link_.ReadNumber(0, 4)) << "long after the time of a normal answer";
    EXPECT_EQ(1u, line_.heard.size());
    EXPECT_THROW(link_.ReadNumber(0, 4), GenICam::TimeoutException);
}

TEST_F(Link, TheCheckpointEndsAnyWaitWithWhatItThrows) {
    struct Enough {};
    line_.answer = [](const Heard&) { return Bytes{}; };
    for (int steps : {1, 2, 3, 50}) {
        checkpoint_ = [&] {
            if (--steps == 0) throw Enough();
        };
        EXPECT_THROW(link_.ReadNumber(0, 4), Enough);
    }
}

TEST_F(Link, WhateverComesOverTheLineACommandEnds) {
    std::mt19937 random(1234);
    link_.SetTries(2);
    line_.answer = [&](const Heard& heard) {
        Bytes reply = Proper(heard);
        for (auto hits = random() % 3; hits > 0; --hits) reply[random() % reply.size()] = static_cast<std::byte>(random());
        for (auto extra = random() % 40; extra > 0; --extra) reply.insert(reply.begin(), static_cast<std::byte>(random()));
        return reply;
    };
    for (int round = 0; round < 20; ++round) try {
            EXPECT_EQ(value_, link_.ReadNumber(0, 4));
        } catch (const GenICam::GenericException&) {
        }
}

}  // namespace
