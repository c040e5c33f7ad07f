#include "transport/live_handles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace kiv {
namespace {

struct alignas(16) Object {
    LiveHandle live{this, HandleKind::camera};
    char body[40] = {};
};

TEST(LiveHandles, OnlyLiveObjectsOfTheKindAreBelieved) {
    EXPECT_FALSE(is_live(nullptr, HandleKind::camera));
    auto object = std::make_unique<Object>();
    const void* handle = object.get();
    EXPECT_TRUE(is_live(handle, HandleKind::camera));
    EXPECT_FALSE(is_live(handle, HandleKind::stream));
    EXPECT_FALSE(is_live(static_cast<const char*>(handle) + 16, HandleKind::camera));
    EXPECT_FALSE(is_live(static_cast<const char*>(handle) + 1, HandleKind::camera))
        << "an odd address cannot borrow the kind's bits";
    object.reset();
    EXPECT_FALSE(is_live(handle, HandleKind::camera));
}

TEST(LiveHandles, AHandleIsRetiredOnce) {
    Object object;
    EXPECT_FALSE(retire_handle(&object, HandleKind::stream));
    EXPECT_TRUE(retire_handle(&object, HandleKind::camera));
    EXPECT_FALSE(retire_handle(&object, HandleKind::camera));
}

TEST(LiveHandles, ManyMoreObjectsThanOneTableHolds) {
    std::vector<std::unique_ptr<Object>> objects;
    for (int i = 0; i < 5000; ++i) objects.push_back(std::make_unique<Object>());
    for (auto& object : objects) EXPECT_TRUE(is_live(object.get(), HandleKind::camera));
    const void* former = objects[2500].get();
    objects.clear();
    EXPECT_FALSE(is_live(former, HandleKind::camera));
}

TEST(LiveHandles, ThreadsThatOpenAndCloseLeaveTheOthersHandlesAlone) {
    auto stays = std::make_unique<Object>();
    std::atomic<int> lost = 0, retired_twice = 0;
    std::vector<std::thread> threads;
    Object contested[64];
    std::atomic<int> retired[64] = {};
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int round = 0; round < 2000; ++round) {
                Object own;
                if (!is_live(&own, HandleKind::camera) || !is_live(stays.get(), HandleKind::camera)) ++lost;
                auto& shared = contested[round % 64];
                if (retire_handle(&shared, HandleKind::camera) && ++retired[round % 64] > 1) ++retired_twice;
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(retired_twice, 0);
    for (auto& count : retired) EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace kiv
