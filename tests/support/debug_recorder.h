/// Keeps what the library writes to the debugger output while it lives. One at a time: the output has one callback.
#pragma once

#include <condition_variable>
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
    /// Waits until the text has come so often; false when it did not within ten seconds.
    bool WaitFor(const std::string& text, std::size_t times = 1) const;
    std::size_t Count(const std::string& text) const;

private:
    mutable std::mutex lock_;
    mutable std::condition_variable came_;
    std::string text_;
};

}  // namespace kiv_test
