/// What became of the buffers of one stream: counted on the stream thread, read from anywhere.
#pragma once

#include <kiv/image.h>

#include <atomic>

namespace ImageLib {

class StreamStatistics {
public:
    /// Only the stream thread counts.
    void Count(std::atomic<std::uint64_t> StreamStatistics::*what) { Add(this->*what, 1); }
    std::atomic<std::uint64_t> delivered{0}, incomplete{0}, skipped{0}, discarded{0}, requeue_failures{0}, missing_ids{0};
    std::atomic<std::uint64_t> lost{0};  // as the producer told last

    /// Takes note of the frame id of a buffer, or that it has none.
    void NoteFrame(bool has_id, std::uint64_t id) {
        if (!has_id) {
            ++without_id_;
            return;
        }
        // Devices count from anywhere, start anew, wrap at 16 bits (past 0), or do not count at all.
        constexpr std::uint64_t last_of_16_bits = 0xFFFF, longest_gap = std::uint64_t{1} << 32;
        if (id != 0 && last_id_ != 0) {
            std::uint64_t gap = id > last_id_ ? id - last_id_ - 1 : 0;
            if (id < last_id_ && last_id_ <= last_of_16_bits && last_id_ - id > last_of_16_bits / 2)
                gap = last_of_16_bits - last_id_ + id - 1;
            if (gap > without_id_ && gap < longest_gap) Add(missing_ids, gap - without_id_);
        }
        last_id_ = id;
        without_id_ = 0;
    }

    K_STREAM_STATISTICS Snapshot() const {
        return {delivered, incomplete, skipped, discarded, requeue_failures, lost, missing_ids};
    }

private:
    static void Add(std::atomic<std::uint64_t>& counter, std::uint64_t more) {
        counter.store(counter.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    std::uint64_t last_id_ = 0;     // of the stream thread, like the next one
    std::uint64_t without_id_ = 0;  // buffers since then whose ids could not be asked
};

}  // namespace ImageLib
