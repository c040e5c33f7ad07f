#include "acquisition/buffer_ring.h"

#include <cstdint>
#include <new>

namespace ImageLib {

void BufferRing::FreeAligned::operator()(std::byte* memory) const { ::operator delete(memory, alignment); }

BufferRing::Memory BufferRing::allocate(std::size_t size) {
    return Memory(static_cast<std::byte*>(::operator new(size, alignment, std::nothrow)));
}

BufferRing::BufferRing(const GenICam::Factory::CTLWrapper& producer, std::size_t buffer_size)
    : producer_(producer), buffer_size_(buffer_size) {}

std::size_t BufferRing::Fill(GenTL::DS_HANDLE stream) {
    while (count_ < most_buffers) {
        Announced next{allocate(buffer_size_), nullptr};
        if (!next.memory) break;
        if (producer_.DSAnnounceBuffer(stream, next.memory.get(), buffer_size_, nullptr, &next.handle) != GenTL::GC_ERR_SUCCESS)
            break;
        if (producer_.DSQueueBuffer(stream, next.handle) != GenTL::GC_ERR_SUCCESS) {
            left_announced_ = std::move(next);
            break;
        }
        buffers_[count_++] = std::move(next);
    }
    return count_;
}

void BufferRing::Revoke(GenTL::DS_HANDLE stream) {
    for (std::size_t i = 0; i < count_; ++i) {
        void* memory = nullptr;
        void* context = nullptr;
        kiv::answer_of([&] { return producer_.DSRevokeBuffer(stream, buffers_[i].handle, &memory, &context); });
    }
}

bool BufferRing::Holds(const void* base, std::size_t size) const {
    auto first = reinterpret_cast<std::uintptr_t>(base);
    for (std::size_t i = 0; i < count_; ++i) {
        // Buffers may lie side by side: the end of one is the start of the next, and only the size tells which is meant.
        auto start = reinterpret_cast<std::uintptr_t>(buffers_[i].memory.get());
        if (first >= start && size <= buffer_size_ && first - start <= buffer_size_ - size) return true;
    }
    return false;
}

}  // namespace ImageLib
