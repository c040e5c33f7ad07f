/// A recursive lock with the operations of a system critical section.
#pragma once

#include <mutex>

namespace kiv::platform {

/// Enter as often as leave. Owned by a thread; only that thread may leave it.
class CriticalSection {
public:
    void Lock() { mutex_.lock(); }
    void Unlock() { mutex_.unlock(); }
    /// False when another thread is inside.
    bool TryLock() { return mutex_.try_lock(); }

private:
    std::recursive_mutex mutex_;
};

}  // namespace kiv::platform
