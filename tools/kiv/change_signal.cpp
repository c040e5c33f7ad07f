#include "change_signal.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "error.h"

namespace {

struct Signal {
    std::mutex mutex;
    std::condition_variable raised;
    bool is_raised = false;
};

/// The callback of a node has no context: it reaches nothing but objects of static storage.
Signal& the_signal() {
    static Signal signal;
    return signal;
}

/// Runs inside the node map's lock, on any thread: reading the value here would keep other threads waiting for the camera.
void K_CALL on_change(void*) {
    Signal& signal = the_signal();
    {
        const std::lock_guard lock(signal.mutex);
        signal.is_raised = true;
    }
    signal.raised.notify_one();
}

}  // namespace

void notice_changes(const Node& node) {
    the_signal();  // made here, so that it is not made inside a callback
    check(K_Node_RegisterCallback(node.Handle(), on_change), "K_Node_RegisterCallback", node.Name());
}

bool wait_for_change(std::chrono::steady_clock::time_point deadline) {
    Signal& signal = the_signal();
    std::unique_lock lock(signal.mutex);
    signal.raised.wait_until(lock, deadline, [&signal] { return signal.is_raised; });
    return std::exchange(signal.is_raised, false);
}
