/// Wakes the loop of a view: images and the user's doings come on other threads.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

class Bell {
public:
    void Ring() {
        const std::lock_guard lock(mutex_);
        rung_ = true;
        changed_.notify_one();
    }
    /// Until it rings, or has rung since the last time, but not longer than the given time.
    void Wait(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, time, [this] { return rung_; });
        rung_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool rung_ = false;
};
