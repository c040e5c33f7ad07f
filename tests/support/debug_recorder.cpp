#include "support/debug_recorder.h"

#include <kiv/diagnostics.h>

namespace kiv_test {

DebugRecorder::DebugRecorder() {
    K_SetDebugOutput(
        [](void* context, const char* text) {
            auto& self = *static_cast<DebugRecorder*>(context);
            std::lock_guard guard(self.lock_);
            self.text_ += text;
        },
        this);
}

DebugRecorder::~DebugRecorder() { K_SetDebugOutput(nullptr, nullptr); }

std::string DebugRecorder::Text() const {
    std::lock_guard guard(lock_);
    return text_;
}

}  // namespace kiv_test
