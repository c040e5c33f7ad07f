/// Handles that callers hold: numbers that are never given out twice, so that a closed one can never mean another object.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace kiv::registry {

/// One kind of handle and its live objects. Whoever is inside a call keeps the object; closing only ends the handle.
template <typename Handle, typename Object>
class HandleTable {
public:
    Handle Add(std::shared_ptr<const Object> object, std::uintptr_t number) {
        std::lock_guard guard(lock_);
        const auto handle = reinterpret_cast<Handle>(number);
        objects_.emplace(handle, std::move(object));
        return handle;
    }
    /// Null for a handle that is not live.
    std::shared_ptr<const Object> Find(Handle handle) const {
        std::lock_guard guard(lock_);
        const auto found = objects_.find(handle);
        return found == objects_.end() ? nullptr : found->second;
    }
    bool Remove(Handle handle) {
        std::lock_guard guard(lock_);
        return objects_.erase(handle) == 1;
    }

private:
    mutable std::mutex lock_;
    std::map<Handle, std::shared_ptr<const Object>> objects_;
};

}  // namespace kiv::registry
