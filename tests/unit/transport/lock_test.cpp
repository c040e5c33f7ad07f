#include "transport/lock.h"

#include <gtest/gtest.h>

#include <thread>

namespace GEV {

TEST(CriticalSection, IsRecursiveAndKeepsOthersOut) {
    CCriticalSection section;
    int inside = 0, worst = 0;
    auto work = [&] {
        for (int i = 0; i < 1000; ++i) {
            CAutoLock outer(section);
            CAutoLock inner(section);
            worst = std::max(worst, ++inside);
            --inside;
        }
    };
    std::thread first(work), second(work);
    first.join();
    second.join();
    EXPECT_EQ(worst, 1);
}

TEST(CriticalSection, TryLockAlwaysSaysTrue) {
    CCriticalSection section;
    CAutoLock held(section);
    bool answer = false;
    std::thread([&] { answer = section.TryLock(); }).join();
    EXPECT_TRUE(answer);
}

}  // namespace GEV
