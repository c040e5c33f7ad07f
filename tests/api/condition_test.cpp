// Conditions: what ends a wait and in which number, closing under a waiter, descriptors for poll loops.
#include <Kiv_Factory.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

#if __has_include(<poll.h>)
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#define KIV_HAS_POLL 1
#endif

#include "support/expect_status.h"

namespace kiv_test {
namespace {

constexpr std::uint32_t soon = 1, untouched = 77;

class Conditions : public ::testing::Test {
protected:
    void SetUp() override {
        for (auto& each : conditions) ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreateCondition(&each));
    }
    void TearDown() override {
        for (auto each : conditions) K_Event_CloseCondition(each);
    }
    static std::uint32_t Wait(EVT_CONDITION_HANDLE condition, std::uint32_t timeout = soon) {
        std::uint32_t result = untouched;
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_WaitForCondition(condition, timeout, &result));
        return result;
    }
    std::uint32_t WaitForAll(std::uint32_t count = 10, std::uint32_t timeout = soon) {
        std::uint32_t result = untouched;
        EXPECT_STATUS(K_ST_SUCCESS, K_Event_WaitForMultipleConditions(count, conditions.data(), timeout, &result));
        return result;
    }
    std::array<EVT_CONDITION_HANDLE, 10> conditions{};
    EVT_CONDITION_HANDLE& condition = conditions[0];
};

TEST_F(Conditions, FindFaultInTheirOrder) {
    std::uint32_t result = untouched;
    auto stale = conditions[9];
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_CloseCondition(stale));
    auto other = reinterpret_cast<EVT_CONDITION_HANDLE>(this);
    for (auto bad : {EVT_CONDITION_HANDLE(), stale, other}) {
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_SignalCondition(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_ExitCondition(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_ResetCondition(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_CloseCondition(bad));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetConditionFd(bad, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_GetConditionExitFd(bad, nullptr));
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_WaitForCondition(bad, soon, nullptr));
        EVT_CONDITION_HANDLE row[] = {condition, bad};
        EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_WaitForMultipleConditions(2, row, soon, &result));
    }
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_CreateCondition(nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_WaitForCondition(condition, soon, nullptr));
    for (std::uint32_t count : {0u, 11u, 0xFFFFFFFFu})
        EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_WaitForMultipleConditions(count, nullptr, soon, nullptr)) << count;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_Event_WaitForMultipleConditions(1, nullptr, soon, nullptr));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_WaitForMultipleConditions(1, &condition, soon, nullptr));
    EXPECT_EQ(untouched, result);
}

TEST_F(Conditions, TheSignalEndsOneWaitTheExitAll) {
    EXPECT_EQ(0u, Wait(condition));
    K_Event_SignalCondition(condition);
    K_Event_SignalCondition(condition);
    EXPECT_EQ(1u, Wait(condition));
    EXPECT_EQ(0u, Wait(condition)) << "two signals are one";
    K_Event_SignalCondition(condition);
    K_Event_ResetCondition(condition);
    EXPECT_EQ(0u, Wait(condition));
    K_Event_ExitCondition(condition);
    K_Event_SignalCondition(condition);
    EXPECT_EQ(1u, Wait(condition)) << "the signal comes first";
    EXPECT_EQ(2u, Wait(condition));
    K_Event_ResetCondition(condition);
    EXPECT_EQ(2u, Wait(condition)) << "the exit stays";
}

TEST_F(Conditions, NumberTheEventsOfARow) {
    EXPECT_EQ(0u, WaitForAll());
    for (std::uint32_t i = 0; i < 10; ++i) {
        K_Event_SignalCondition(conditions[i]);
        EXPECT_EQ(2 * i + 1, WaitForAll());
    }
    for (std::uint32_t i = 10; i-- > 0;) {
        K_Event_ExitCondition(conditions[i]);
        EXPECT_EQ(2 * i + 2, WaitForAll()) << "the lowest of those that are set";
    }
    K_Event_SignalCondition(conditions[2]);
    EXPECT_EQ(2u, WaitForAll(3));
    EXPECT_EQ(1u, Wait(conditions[2])) << "what did not end the wait is not used up";
}

TEST_F(Conditions, ATimeOutOfZeroWaitsWithoutLimit) {
    std::promise<void> begun;
    auto waited = std::async(std::launch::async, [&] {
        begun.set_value();
        auto alone = Wait(condition, 0);
        return std::pair(alone, WaitForAll(2, 0));
    });
    begun.get_future().wait();
    K_Event_SignalCondition(condition);
    K_Event_ExitCondition(conditions[1]);
    EXPECT_EQ(std::pair(1u, 4u), waited.get());
}

TEST_F(Conditions, ClosingLetsThoseWhoWaitGo) {
    for (int round = 0; round < 50; ++round) {
        EVT_CONDITION_HANDLE waited_for = nullptr;
        ASSERT_STATUS(K_ST_SUCCESS, K_Event_CreateCondition(&waited_for));
        std::array<K_STATUS_CODES, 2> waits, closes;
        std::vector<std::thread> threads;
        for (auto& each : waits)
            threads.emplace_back([&] {
                std::uint32_t result = 2;
                each = K_Event_WaitForCondition(waited_for, 0, &result);
                EXPECT_EQ(2u, result);
            });
        for (auto& each : closes) threads.emplace_back([&] { each = K_Event_CloseCondition(waited_for); });
        for (auto& each : threads) each.join();
        for (auto each : waits) EXPECT_TRUE(each == K_ST_SUCCESS || each == K_ST_INVALID_HANDLE) << each;
        EXPECT_EQ(K_ST_INVALID_HANDLE, closes[0] + closes[1]) << "one closes it, the other is refused";
    }
}

#ifdef KIV_HAS_POLL
bool readable(int descriptor) {
    pollfd look{descriptor, POLLIN, 0};
    return poll(&look, 1, 0) == 1;
}

TEST_F(Conditions, HaveDescriptorsForPoll) {
    std::int32_t signal = -1, exit = -1;
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_GetConditionFd(condition, &signal));
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_GetConditionExitFd(condition, &exit));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_Event_GetConditionFd(condition, nullptr));
    EXPECT_FALSE(readable(signal));
    std::thread other([&] { K_Event_SignalCondition(condition); });
    pollfd both[] = {{signal, POLLIN, 0}, {exit, POLLIN, 0}};
    EXPECT_EQ(1, poll(both, 2, 10000)) << "a loop is woken";
    other.join();
    EXPECT_EQ(POLLIN, both[0].revents);
    std::uint64_t taken = 0;
    EXPECT_EQ(8, read(signal, &taken, sizeof taken));
    EXPECT_EQ(0u, Wait(condition)) << "reading takes the signal, as a wait does";
    K_Event_ExitCondition(condition);
    EXPECT_TRUE(readable(exit));
    EXPECT_EQ(2u, Wait(condition));
    EXPECT_TRUE(readable(exit));
}

TEST_F(Conditions, AWaitThatFailsSaysSo) {
    std::int32_t descriptor = -1;
    ASSERT_STATUS(K_ST_SUCCESS, K_Event_GetConditionFd(condition, &descriptor));
    int spare = dup(descriptor);
    close(descriptor);
    EXPECT_EQ(0xFFFFFFFFu, Wait(condition, 0));
    EXPECT_EQ(0xFFFFFFFFu, WaitForAll());
    ASSERT_EQ(descriptor, dup2(spare, descriptor));
    close(spare);
    K_Event_SignalCondition(condition);
    EXPECT_EQ(1u, Wait(condition));
}
#endif

}  // namespace
}  // namespace kiv_test
