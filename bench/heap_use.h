// How much memory the program has taken from the heap, whichever way.
#pragma once

#include <cstdint>

namespace kiv::bench {

/// Bytes in use; 0 where the C library does not tell.
int64_t heap_in_use();

/// Calls of operator new since the program began.
int64_t allocations();

}  // namespace kiv::bench
