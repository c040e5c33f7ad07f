/// The objects that callers hold by handle. A handle that is not in the table is refused without being looked at.
#pragma once

#include <VL.h>

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

#include "core/error.h"

namespace kiv::vl {

template <class Handle, class Object>
class HandleTable {
public:
    /// what: "look-up table" and the like, for the texts of failures.
    explicit HandleTable(const char* what) : what_(what) {}

    /// Under a number that no other object of the table ever had.
    Handle Give(std::shared_ptr<Object> object) {
        const std::unique_lock hold(lock_);
        const auto handle = reinterpret_cast<Handle>(++given_);  // NOLINT: a number in the shape of a pointer
        objects_.emplace(handle, std::move(object));
        return handle;
    }
    void GiveAs(Handle handle, std::shared_ptr<Object> object) {
        const std::unique_lock hold(lock_);
        objects_.emplace(handle, std::move(object));
    }
    std::shared_ptr<Object> Of(Handle handle) const {
        const std::shared_lock hold(lock_);
        const auto found = objects_.find(handle);
        if (found == objects_.end()) throw Unknown(handle);
        return found->second;
    }
    std::shared_ptr<Object> Take(Handle handle) {
        const std::unique_lock hold(lock_);
        auto node = objects_.extract(handle);
        if (node.empty()) throw Unknown(handle);
        return std::move(node.mapped());
    }
    /// The same for a handle that may be gone already.
    void Drop(Handle handle) noexcept {
        std::shared_ptr<Object> last;  // destroyed outside of the lock
        const std::unique_lock hold(lock_);
        const auto found = objects_.find(handle);
        if (found == objects_.end()) return;
        last = std::move(found->second);
        objects_.erase(found);
    }

private:
    Error Unknown(Handle handle) const {
        const std::string what = what_;
        return {VL_ST_INVALID_HANDLE,
                handle == nullptr ? "the " + what + " handle is null" : "this is no " + what + ", or one that has been freed"};
    }

    const char* what_;
    mutable std::shared_mutex lock_;
    std::unordered_map<Handle, std::shared_ptr<Object>> objects_;
    std::uintptr_t given_ = 0;
};

/// The one table of a kind. Never destroyed: a program's own statics may still call while the process exits.
template <class Handle, class Object>
HandleTable<Handle, Object>& make_table(const char* what) {
    return *std::make_unique<HandleTable<Handle, Object>>(what).release();
}

}  // namespace kiv::vl
