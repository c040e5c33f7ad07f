// Calls that ask the system for a favour, and how the system shows that it granted it.
#include "win32/windows_lean.h"

#include <gtest/gtest.h>
#include <kiv/platform/keep_awake.h>
#include <kiv/platform/thread.h>

#include <string>
#include <thread>

using namespace kiv::platform;

namespace {

TEST(Wishes, APriorityIsRaisedByOneStepForThisThreadOnly) {
    int raised = 0;
    std::thread([&] {
        EXPECT_TRUE(raise_thread_priority());
        raised = GetThreadPriority(GetCurrentThread());
    }).join();
    EXPECT_EQ(THREAD_PRIORITY_ABOVE_NORMAL, raised);
    EXPECT_EQ(THREAD_PRIORITY_NORMAL, GetThreadPriority(GetCurrentThread()));
}

TEST(Wishes, AThreadHasItsNameInDebuggers) {
    std::wstring name;
    std::thread([&] {
        set_thread_name("kiv stream \xC3\xA4");
        using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);
        const auto get = reinterpret_cast<GetDescription>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription")));
        PWSTR text = nullptr;
        if (!get || get(GetCurrentThread(), &text) < 0) return;
        name = text;
        LocalFree(text);
    }).join();
    EXPECT_EQ(L"kiv stream \u00E4", name);
}

TEST(Wishes, TheSystemStaysAwakeUntilItMaySleep) {
    keep_system_awake();
    EXPECT_EQ(ES_CONTINUOUS | ES_SYSTEM_REQUIRED, SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED));
    let_system_sleep();
    EXPECT_EQ(ES_CONTINUOUS, SetThreadExecutionState(ES_CONTINUOUS));
}

}  // namespace
