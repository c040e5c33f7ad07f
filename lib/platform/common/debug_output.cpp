#include "kiv/platform/debug_output.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "common/system_habits.h"
#include "kiv/platform/text.h"

namespace kiv::platform {
namespace {

/// A callback and how many threads are inside it.
struct Sink {
    DebugSink function;
    void* context;
    int inside = 0;
};

struct SinkState {
    std::atomic<bool> present{false};  // what `current` is, for those who only want to know whether
    std::mutex lock;
    std::condition_variable left;
    std::shared_ptr<Sink> current;
};

SinkState& state() {
    // Never destroyed: threads that the process does not wait for may still print while it exits.
    static SinkState& only = *std::make_unique<SinkState>().release();
    return only;
}

thread_local int inside_on_this_thread = 0;

void call_sink(const std::string& text) {
    SinkState& sinks = state();
    std::unique_lock lock(sinks.lock);
    const std::shared_ptr<Sink> sink = sinks.current;
    if (!sink) return;
    ++sink->inside;
    lock.unlock();

    ++inside_on_this_thread;
    try {
        sink->function(text.c_str(), sink->context);
    } catch (...) {  // a callback in C++ may throw; a diagnostic must not
    }
    --inside_on_this_thread;

    lock.lock();
    --sink->inside;
    sinks.left.notify_all();
}

}  // namespace

bool debug_output_is_heard() noexcept {
    return state().present.load(std::memory_order_relaxed) || system_debug_output_is_heard();
}

void debug_print(std::string_view text) noexcept try {
    if (!debug_output_is_heard()) return;
    write_system_debug_output(text);
    call_sink(std::string(text));
} catch (...) {  // no memory: the diagnostic is lost
}

void debug_print(std::wstring_view text) noexcept try {
    if (debug_output_is_heard()) debug_print(std::string_view(utf8_from_wide(text)));
} catch (...) {  // no memory: the diagnostic is lost
}

void set_debug_sink(DebugSink sink, void* context) noexcept {
    auto next = sink ? std::make_shared<Sink>(Sink{sink, context}) : nullptr;
    SinkState& sinks = state();
    std::unique_lock lock(sinks.lock);
    const std::shared_ptr<Sink> former = std::exchange(sinks.current, std::move(next));
    sinks.present = sinks.current != nullptr;
    // Two callbacks that replace the sink at once would wait for each other.
    if (former && inside_on_this_thread == 0) sinks.left.wait(lock, [&] { return former->inside == 0; });
}

}  // namespace kiv::platform
