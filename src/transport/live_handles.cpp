#include "transport/live_handles.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

namespace kiv {

namespace {

// A word holds an address and, in the four low bits that alignment leaves free, the kind. A handle hashes to a line of eight
// words; when its line is full it goes to the next segment. Segments are never freed while the library lives, so readers need no
// lock.
constexpr std::uintptr_t kind_bits = 15;
constexpr std::size_t words_per_line = 8;
constexpr std::size_t lines = 128;

struct alignas(64) Line {
    std::array<std::atomic<std::uintptr_t>, words_per_line> words{};
};

struct Segment {
    std::array<Line, lines> table;
    std::atomic<Segment*> next{nullptr};
    std::unique_ptr<Segment> owned_next;
};

Segment first_segment;
std::array<std::atomic<std::uint32_t>, kind_bits + 1> alive{};  // of each kind
std::mutex insert_lock;

std::size_t line_of(std::uintptr_t address) noexcept {
    // Fibonacci hashing: the addresses of one kind of object differ in few bits.
    return static_cast<std::size_t>(((address >> 4) * 0x9E3779B97F4A7C15ull) >> 57) % lines;
}

std::uintptr_t word_of(const void* handle, HandleKind kind) noexcept {
    auto address = reinterpret_cast<std::uintptr_t>(handle);
    if (address == 0 || (address & kind_bits) != 0) return 0;
    return address | static_cast<std::uintptr_t>(kind);
}

std::atomic<std::uintptr_t>* find(std::uintptr_t word) noexcept {
    if (word == 0) return nullptr;
    auto line = line_of(word & ~kind_bits);
    for (Segment* segment = &first_segment; segment; segment = segment->next.load(std::memory_order_acquire))
        for (auto& slot : segment->table[line].words)
            if (slot.load(std::memory_order_acquire) == word) return &slot;
    return nullptr;
}

}  // namespace

bool is_live(const void* handle, HandleKind kind) noexcept { return find(word_of(handle, kind)) != nullptr; }

bool retire_handle(const void* handle, HandleKind kind) noexcept {
    auto word = word_of(handle, kind);
    auto* slot = find(word);
    if (!slot || !slot->compare_exchange_strong(word, 0)) return false;
    --alive[static_cast<std::size_t>(kind)];
    return true;
}

bool any_live(HandleKind kind) noexcept { return alive[static_cast<std::size_t>(kind)] != 0; }

LiveHandle::LiveHandle(void* object, HandleKind kind) : object_(object), kind_(kind) {
    auto word = word_of(object, kind);
    auto line = line_of(word & ~kind_bits);
    std::lock_guard guard(insert_lock);
    for (Segment* segment = &first_segment;; segment = segment->next.load(std::memory_order_relaxed)) {
        for (auto& slot : segment->table[line].words) {
            if (slot.load(std::memory_order_relaxed) != 0) continue;
            ++alive[static_cast<std::size_t>(kind)];
            slot.store(word, std::memory_order_release);
            return;
        }
        if (!segment->owned_next) {
            segment->owned_next = std::make_unique<Segment>();
            segment->next.store(segment->owned_next.get(), std::memory_order_release);
        }
    }
}

LiveHandle::~LiveHandle() { retire_handle(object_, kind_); }

}  // namespace kiv
