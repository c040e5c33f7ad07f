/// The stream thread's buffers: memory of ours, announced to the producer and queued.
///
/// A ring holds what the producer accepted, up to ten; nothing is allocated after it is filled.
#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "transport/tl_wrapper.h"

namespace ImageLib {

class BufferRing {
public:
    static constexpr std::size_t most_buffers = 10;

    BufferRing(const GenICam::Factory::CTLWrapper& producer, std::size_t buffer_size);

    /// Allocates, announces and queues up to ten buffers; the first refusal ends it. Answers how many are queued.
    std::size_t Fill(GenTL::DS_HANDLE stream);
    /// Takes the announced buffers back from the producer. The acquisition must be stopped. The memory stays until the ring goes:
    /// a producer that refuses to give a buffer back may write into it until the stream is closed.
    void Revoke(GenTL::DS_HANDLE stream);

    std::size_t Count() const { return count_; }
    std::size_t BufferSize() const { return buffer_size_; }
    /// Whether the bytes [base, base + size) lie within one of the buffers.
    bool Holds(const void* base, std::size_t size) const;

private:
    // Image code likes whole cache lines; the promise to callers is 16 bytes.
    static constexpr std::align_val_t alignment{64};
    struct FreeAligned {
        void operator()(std::byte* memory) const;
    };
    using Memory = std::unique_ptr<std::byte, FreeAligned>;

    static Memory allocate(std::size_t size);

    const GenICam::Factory::CTLWrapper& producer_;
    std::size_t buffer_size_;
    std::size_t count_ = 0;
    struct Announced {
        Memory memory;
        GenTL::BUFFER_HANDLE handle = nullptr;
    };
    std::array<Announced, most_buffers> buffers_;
    Announced left_announced_;  // announced, but refused by the queue: it stays the producer's until the stream closes
};

}  // namespace ImageLib
