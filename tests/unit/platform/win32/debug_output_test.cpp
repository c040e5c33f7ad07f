// Texts for the debugger, as a program that watches them receives them from another process.
#include <gtest/gtest.h>

#include "../child_process.h"
#include "win32/windows_lean.h"

namespace {

/// What watchers of debug texts share with those who write them.
struct Buffer {
    DWORD process;
    char text[4096 - sizeof(DWORD)];
};

class Watcher {
public:
    Watcher()
        : free_(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY")),
          filled_(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")),
          mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Buffer), L"DBWIN_BUFFER")),
          buffer_(static_cast<Buffer*>(MapViewOfFile(mapping_.get(), FILE_MAP_READ, 0, 0, 0))) {}
    ~Watcher() { UnmapViewOfFile(buffer_); }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    std::string Next() const {
        SetEvent(free_.get());
        return WaitForSingleObject(filled_.get(), 20'000) == WAIT_OBJECT_0 ? buffer_->text : "nothing came";
    }

private:
    kiv::platform::OwnedHandle free_, filled_, mapping_;
    Buffer* buffer_;
};

TEST(SystemDebugOutput, GoesToWhoeverWatchesIt) {
    const Watcher watcher;
    kiv::test::ChildProcess child({"print", "text"});
    EXPECT_EQ("text\n", watcher.Next());
    EXPECT_EQ("wide \xE4\n", watcher.Next()) << "in the user's code page";
    EXPECT_EQ(0, child.Finish());
}

}  // namespace
