/// Keeps what the library writes to the debugger output while it lives. One at a time: the output has one callback.
#pragma once

#include <mutex>
#include <string>

namespace kiv_test {

class DebugRecorder {
public:
    DebugRecorder();
    ~DebugRecorder();
    DebugRecorder(const DebugRecorder&) = delete;
    DebugRecorder& operator=(const DebugRecorder&) = delete;

    /// Everything so far, in the order in which it came.
    std::string Text() const;

private:
    mutable std::mutex lock_;
    std::string text_;
};

}  // namespace kiv_test
