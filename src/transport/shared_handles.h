/// Handles whose objects several threads use and any of them may close.
///
/// A stream, a registered event, a condition: one thread waits on it or is inside a call while another one closes it. The table
/// shares ownership of such an object with every call that is inside, so that it goes when the last of them has left. The handle
/// is the object's address and stands in the table of live handles as long as it is open. A look-up takes a lock that only
/// handles of the same stripe share, for the length of one look.
#pragma once

#include <memory>

#include "transport/live_handles.h"

namespace kiv {

/// Opens a handle to the object and answers it: the object's address, which must be aligned to 16 (as `new` does).
void* share_handle(std::shared_ptr<void> object, HandleKind kind);

/// The object behind an open handle of that kind; null for anything else, which is never dereferenced.
std::shared_ptr<void> shared_object(const void* handle, HandleKind kind) noexcept;

/// Closes the handle: answers the object to the one caller that closed it, null to all others.
std::shared_ptr<void> close_shared_handle(const void* handle, HandleKind kind) noexcept;

}  // namespace kiv
