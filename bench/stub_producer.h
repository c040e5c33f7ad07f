// The side door of the stub producer: a GenTL producer that does nothing and costs nothing, so that what a consumer costs can be
// seen. One camera, one stream; frames come as fast as they are taken, or one for each call of `post`.
#pragma once

#include <GenTL/GenTL.h>

#include <atomic>
#include <cstdint>

namespace kiv::bench {

/// What the producer says about one frame. A script may change everything; as it stands it is a good one.
struct StubFrame {
    GenTL::GC_ERROR event = GenTL::GC_ERR_SUCCESS;  // of EventGetData; a failure delivers nothing
    bool without_buffer = false;                    // the event names none, and none is taken
    std::uint64_t refused = 0;                      // buffer info commands, one bit each
    std::uint64_t id = 0;
    std::uint64_t layout = 7;
    std::ptrdiff_t base_offset = 0;
    std::size_t size_surplus = 0;
    std::ptrdiff_t chunk_offset = 0;
    std::size_t chunk_length = 20;
    GenTL::GC_ERROR chunks = GenTL::GC_ERR_SUCCESS;
    GenTL::GC_ERROR queue = GenTL::GC_ERR_SUCCESS;  // of the first attempt to give the buffer back
    bool incomplete = false;
};

struct StubControl {
    std::atomic<std::uint64_t> frames{0};               // how many more come by themselves
    std::atomic<void (*)(StubFrame&)> script{nullptr};  // called for each event, on the consumer's thread
    /// Makes one frame ready and wakes whoever waits for it.
    void (*post)() = nullptr;
    /// Wakes a consumer that waits, after `frames` was raised.
    void (*wake)() = nullptr;
    std::atomic<std::uint64_t> delivered{0};  // buffers handed to the consumer
    /// Nodes that the camera's description has besides its own, from the next opening on. Their registers may lie in the memory
    /// from `register_base` on.
    void (*describe)(const char* nodes) = nullptr;
    static constexpr std::uint64_t register_base = 0x1000'0000, register_bytes = 1 << 20;
};

}  // namespace kiv::bench
