#include "handles.h"

#include <atomic>
#include <mutex>

namespace kivsim {
namespace {

// Counts on over sessions: a handle of the last one must not open anything in the next.
void* next_handle() {
    static std::atomic<uintptr_t> next{0x51A0000};
    return reinterpret_cast<void*>(next.fetch_add(16));
}

}  // namespace

void HandleTable::Add(const std::shared_ptr<Object>& object) {
    const std::unique_lock guard(lock_);
    object->handle_ = next_handle();
    objects_.emplace(object->handle_, object);
}

void HandleTable::Remove(const Object& object) noexcept {
    std::shared_ptr<Object> last;  // dies after the lock is released
    const std::unique_lock guard(lock_);
    const auto found = objects_.find(object.handle_);
    if (found == objects_.end()) return;
    last = std::move(found->second);
    objects_.erase(found);
}

std::shared_ptr<Object> HandleTable::FindAny(const void* handle) const {
    const std::shared_lock guard(lock_);
    const auto found = objects_.find(handle);
    return found == objects_.end() ? nullptr : found->second;
}

}  // namespace kivsim
