#include "support/debug_recorder.h"

#include <kiv/diagnostics.h>

#include <chrono>

namespace kiv_test {

DebugRecorder::DebugRecorder() {
    K_SetDebugOutput(
        [](void* context, const char* text) {
            auto& self = *static_cast<DebugRecorder*>(context);
            std::lock_guard guard(self.lock_);
            self.text_ += text;
            self.came_.notify_all();
        },
        this);
}

DebugRecorder::~DebugRecorder() { K_SetDebugOutput(nullptr, nullptr); }

std::string DebugRecorder::Text() const {
    std::lock_guard guard(lock_);
    return text_;
}

static std::size_t count_in(const std::string& all, const std::string& text) {
    std::size_t count = 0;
    for (auto at = all.find(text); at != all.npos; at = all.find(text, at + text.size())) ++count;
    return count;
}

bool DebugRecorder::WaitFor(const std::string& text, std::size_t times) const {
    std::unique_lock guard(lock_);
    return came_.wait_for(guard, std::chrono::seconds(10), [&] { return count_in(text_, text) >= times; });
}

std::size_t DebugRecorder::Count(const std::string& text) const { return count_in(Text(), text); }

}  // namespace kiv_test
