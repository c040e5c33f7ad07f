#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

#include "GenICam/export.h"

namespace GenApi {

/// A lock that its owner may take again. Every node operation takes it, so it is built to cost little when it is free or held
/// already: an owner and a count over a plain mutex.
class KIV_GENICAM_API CLock {
public:
    CLock() = default;
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    void Lock() {
        const auto self = std::this_thread::get_id();
        if (owner_.load(std::memory_order_relaxed) != self) {  // only this thread itself ever stores its own mark
            mutex_.lock();
            owner_.store(self, std::memory_order_relaxed);
        }
        ++depth_;
    }

    bool TryLock() {
        const auto self = std::this_thread::get_id();
        if (owner_.load(std::memory_order_relaxed) != self) {
            if (!mutex_.try_lock()) return false;
            owner_.store(self, std::memory_order_relaxed);
        }
        ++depth_;
        return true;
    }

    void Unlock() {
        if (--depth_ > 0) return;
        owner_.store({}, std::memory_order_relaxed);
        mutex_.unlock();
    }

    /// How often the calling thread holds it; only meaningful while it does.
    unsigned Depth() const { return depth_; }

private:
    std::mutex mutex_;
    std::atomic<std::thread::id> owner_{};
    unsigned depth_ = 0;  // guarded by mutex_
};

/// A lock that can be copied; all copies are the same lock.
class KIV_GENICAM_API CLockEx {
public:
    CLockEx() : lock_(std::make_shared<CLock>()) {}
    void Lock() const { lock_->Lock(); }
    bool TryLock() const { return lock_->TryLock(); }
    void Unlock() const { lock_->Unlock(); }

private:
    std::shared_ptr<CLock> lock_;
};

/// Holds a lock for the length of a scope.
class AutoLock {
public:
    explicit AutoLock(CLock& lock) : lock_(lock) { lock_.Lock(); }
    ~AutoLock() { lock_.Unlock(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    CLock& lock_;
};

}  // namespace GenApi
