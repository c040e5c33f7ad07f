// Calls that ask the system for a favour: they must neither fail nor hang where it is not granted.
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/event.h>
#include <kiv/platform/keep_awake.h>
#include <kiv/platform/thread.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <thread>

#include "../temporary_folder.h"
#include "posix/file_descriptor.h"

using namespace kiv::platform;

namespace {

TEST(Wishes, APriorityIsRaisedByOneStepForThisThreadOnly) {
    const int process_nice = getpriority(PRIO_PROCESS, 0);
    int thread_nice = 0;
    bool granted = false;
    std::thread([&] {
        granted = raise_thread_priority();
        thread_nice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    }).join();
    EXPECT_EQ(granted ? process_nice - 1 : process_nice, thread_nice);
    EXPECT_EQ(process_nice, getpriority(PRIO_PROCESS, 0));
}

TEST(Wishes, ALongThreadNameIsCut) {
    char name[32] = {};
    std::thread([&] {
        set_thread_name("kiv stream of camera 17");
        pthread_getname_np(pthread_self(), name, sizeof name);
    }).join();
    EXPECT_STREQ("kiv stream of c", name);
}

void ask_and_release(const std::string& bus_address) {
    set_environment("DBUS_SYSTEM_BUS_ADDRESS", bus_address);
    keep_system_awake();
    let_system_sleep();
    let_system_sleep();
    unset_environment("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST(Wishes, KeepingAwakeDoesWithoutABus) { ask_and_release("unix:path=/nonexistent/kiv-no-bus"); }

TEST(Wishes, KeepingAwakeDoesNotWaitForAMuteBus) {
    const kiv::test::TemporaryFolder folder;
    const std::string path = folder / "bus";
    const FileDescriptor bus(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(0, bind(bus.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address));
    ASSERT_EQ(0, listen(bus.Get(), 4));

    Event done(ResetMode::manual);
    std::thread asking([&] {
        ask_and_release("unix:path=" + path);
        done.Set();
    });
    EXPECT_TRUE(done.Wait(Milliseconds(10'000))) << "the bus library's own patience is longer";
    asking.join();
}

}  // namespace
