/// The handles of the producer. A handle is a number that is never used twice in a session, so a closed one stays recognisable
/// for good: whatever a consumer hands in, the answer is an object of the asked kind or INVALID_HANDLE.
#pragma once

#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <unordered_map>

#include "failure.h"

namespace kivsim {

class EntryFaults;
class RemotePort;

/// Something that the consumer holds a handle of.
class Object {
public:
    virtual ~Object() = default;
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    void* Handle() const noexcept { return handle_; }
    /// What the functions of the producer were asked to do wrong with this object's camera; null when it belongs to none.
    virtual EntryFaults* Faults() { return nullptr; }
    /// This, when it is one: most calls of all are its reads and writes.
    virtual RemotePort* AsRemotePort() noexcept { return nullptr; }

private:
    friend class HandleTable;
    void* handle_ = nullptr;
};

class HandleTable {
public:
    void Add(const std::shared_ptr<Object>& object);
    void Remove(const Object& object) noexcept;

    /// Throws INVALID_HANDLE when the handle is unknown, closed, or its object no T.
    template <typename T>
    std::shared_ptr<T> Find(const void* handle) const {
        auto found = std::dynamic_pointer_cast<T>(FindAny(handle));
        if (!found) fail(GenTL::GC_ERR_INVALID_HANDLE, "The handle is not open, or of another kind");
        return found;
    }
    std::shared_ptr<Object> FindAny(const void* handle) const;

private:
    mutable std::shared_mutex lock_;
    std::unordered_map<const void*, std::shared_ptr<Object>> objects_;
};

}  // namespace kivsim
