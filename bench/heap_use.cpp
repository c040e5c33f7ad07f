#include "heap_use.h"

#include <atomic>
#include <cstdlib>
#include <new>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

std::atomic<int64_t> made{0};

void* counted(size_t size) {
    made.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(size_t size) { return counted(size); }
void* operator new[](size_t size) { return counted(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }

namespace kiv::bench {

int64_t heap_in_use() {
#if defined(__GLIBC__)
    const auto info = mallinfo2();  // what parsers take past operator new, and large blocks with pages of their own, included
    return static_cast<int64_t>(info.uordblks + info.hblkhd);
#else
    return 0;
#endif
}

int64_t allocations() { return made.load(std::memory_order_relaxed); }

}  // namespace kiv::bench
