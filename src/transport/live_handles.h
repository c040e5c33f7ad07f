/// The table of the handles that are alive, and of what kind each is.
///
/// Every object that a caller holds by handle carries a LiveHandle member; the shell asks the table before it believes a pointer
/// that a caller hands in. A handle that is null, stale or of another kind is thus refused without ever being dereferenced.
/// Looking up takes no lock and touches one cache line.
///
/// The table says that a handle was alive when asked. Whoever closes it at that moment on another thread breaks the rule of
/// kiv/types.h; two threads that close the same handle at once are safe: retire_handle lets exactly one of them through.
#pragma once

#include <cstdint>

namespace kiv {

enum class HandleKind : std::uint8_t {
    factory = 1,
    camera,
    stream,
    event,
    condition,
    thread,
    view,
    transport_layer,
    interface,
    plain_event,
    cancel_event
};

bool is_live(const void* handle, HandleKind kind) noexcept;

/// Whether any handle of that kind is alive.
bool any_live(HandleKind kind) noexcept;

/// Takes the handle out of the table; false when it was not there (any more). The winner goes on to destroy the object.
bool retire_handle(const void* handle, HandleKind kind) noexcept;

/// The membership of one object. `object` must be the address that the handle shows.
class LiveHandle {
public:
    LiveHandle(void* object, HandleKind kind);
    ~LiveHandle();
    LiveHandle(const LiveHandle&) = delete;
    LiveHandle& operator=(const LiveHandle&) = delete;

private:
    const void* object_;
    HandleKind kind_;
};

}  // namespace kiv
