#include "frame_queue.h"

#include <algorithm>
#include <utility>

FrameQueue::FrameQueue(std::size_t capacity) { statistics_.capacity = std::max<std::size_t>(1, capacity); }

bool FrameQueue::Push(Frame&& frame) {
    std::unique_lock lock(mutex_);
    const auto may_go_on = [this] { return closed_ || frames_.size() < statistics_.capacity; };
    if (!may_go_on()) {
        ++statistics_.times_full;
        const auto begin = std::chrono::steady_clock::now();
        not_full_.wait(lock, may_go_on);
        statistics_.waited += std::chrono::steady_clock::now() - begin;
    }
    if (closed_) return false;
    frames_.push_back(std::move(frame));
    statistics_.peak = std::max(statistics_.peak, frames_.size());
    not_empty_.notify_one();
    return true;
}

std::optional<Frame> FrameQueue::Pop() {
    std::unique_lock lock(mutex_);
    not_empty_.wait(lock, [this] { return closed_ || !frames_.empty(); });
    if (frames_.empty()) return std::nullopt;
    std::optional<Frame> frame(std::move(frames_.front()));
    frames_.pop_front();
    not_full_.notify_one();
    return frame;
}

void FrameQueue::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    not_full_.notify_all();
    not_empty_.notify_all();
}

void FrameQueue::Abandon() {
    const std::lock_guard lock(mutex_);
    frames_.clear();
    closed_ = true;
    not_full_.notify_all();
    not_empty_.notify_all();
}

std::vector<uint8_t> FrameQueue::TakeMemory() {
    const std::lock_guard lock(mutex_);
    if (memory_.empty()) return {};
    std::vector<uint8_t> memory = std::move(memory_.back());
    memory_.pop_back();
    return memory;
}

void FrameQueue::GiveBack(std::vector<uint8_t>&& memory) {
    const std::lock_guard lock(mutex_);
    memory_.push_back(std::move(memory));
}

std::size_t FrameQueue::Size() const {
    const std::lock_guard lock(mutex_);
    return frames_.size();
}

QueueStatistics FrameQueue::Statistics() const {
    const std::lock_guard lock(mutex_);
    return statistics_;
}
