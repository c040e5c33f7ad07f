/// The newest image of a stream. The stream's thread puts a copy of each image in; who shows them takes the newest one out, so
/// that a slow display costs images on the screen and never images of the stream.
#pragma once

#include <kiv/image_info.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "view_bell.h"

struct LiveFrame {
    K_IMAGE_INFO info{};  ///< image_data points to `data`
    std::vector<uint8_t> data;
    uint64_t number = 0;  ///< counted from 1; none that was received is left out
};

struct FrameCounts {
    uint64_t received = 0;    ///< whole images
    uint64_t incomplete = 0;  ///< those that did not fit their buffer; not shown
    double rate = 0;          ///< images per second, over the last two; 0 when none came
};

class NewestFrame {
public:
    /// The bell rings at each image; it must outlive this object, and this object the stream.
    explicit NewestFrame(Bell& bell) : bell_(bell) {}

    /// The callback of K_Image_OpenStream; the context is the NewestFrame.
    static void OnImage(void* context, K_IMAGE_INFO* image) noexcept;

    /// The newest image that was not taken yet goes into `frame`, whose memory is used again. False when there is none.
    bool Take(LiveFrame& frame);
    FrameCounts Counts() const;

private:
    using Clock = std::chrono::steady_clock;
    void Put(const K_IMAGE_INFO& image);
    void CountIncomplete();

    Bell& bell_;
    LiveFrame filling_;  // the stream's thread only
    mutable std::mutex mutex_;
    LiveFrame ready_;
    bool has_ready_ = false;
    uint64_t received_ = 0;
    uint64_t incomplete_ = 0;
    std::deque<Clock::time_point> arrivals_;
};
