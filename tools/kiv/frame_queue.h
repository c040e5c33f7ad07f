/// The frames between the stream's thread and the writers.
///
/// Bounded: when the writers fall behind, Push waits, the stream's ring runs empty, and the loss becomes visible where it is
/// counted (the producer's underruns, gaps of the frame ids) instead of in a queue that drops silently.
#pragma once

#include <kiv/image_info.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

/// A copy of a delivered image. `info.image_data` points into `data`.
struct Frame {
    uint64_t number = 0;  ///< counted from 1 within the grab
    K_IMAGE_INFO info{};
    std::vector<uint8_t> data;
    bool incomplete = false;
    nlohmann::json chunks;  ///< values by feature name; null when they are not wanted
};

struct QueueStatistics {
    std::size_t capacity = 0;
    std::size_t peak = 0;
    uint64_t times_full = 0;
    std::chrono::duration<double> waited{0};
};

class FrameQueue {
public:
    explicit FrameQueue(std::size_t capacity);

    /// Waits while the queue is full. False when the queue was closed: the frame is not taken.
    bool Push(Frame&& frame);
    /// Waits for a frame. Nothing when the queue is closed and empty.
    std::optional<Frame> Pop();
    /// Refuses further frames and lets the writers finish those that are in it.
    void Close();
    /// Refuses further frames and throws away those that are in it.
    void Abandon();

    /// Memory of written frames goes round, so that a long grab allocates only in its first moments.
    std::vector<uint8_t> TakeMemory();
    void GiveBack(std::vector<uint8_t>&& memory);

    std::size_t Size() const;
    QueueStatistics Statistics() const;

private:
    mutable std::mutex mutex_;
    std::condition_variable not_full_;
    std::condition_variable not_empty_;
    std::deque<Frame> frames_;
    std::vector<std::vector<uint8_t>> memory_;
    QueueStatistics statistics_;
    bool closed_ = false;
};
