/// The end of the stream: takes each image on the stream's thread, counts it, and queues a copy for the writers.
#pragma once

#include <kiv/image_info.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "frame_queue.h"
#include "frame_timing.h"
#include "grab_chunks.h"

using Clock = std::chrono::steady_clock;

/// What came so far.
struct Reception {
    uint64_t frames = 0;      ///< taken for writing
    uint64_t bytes = 0;       ///< image data of these
    uint64_t missing = 0;     ///< frame ids that were skipped between the first and the last of them
    uint64_t incomplete = 0;  ///< images of which a part did not come, or that their buffer does not hold
    std::optional<Clock::time_point> first, last;
    Clock::time_point last_image;    ///< when a whole one was last taken; now, while the queue holds the stream up
    std::string failure;             ///< why the reception ended early, if it did
    uint32_t width = 0, height = 0;  ///< of the last image
    uint64_t pixel_type = 0;
};

/// What becomes of the images.
struct ReceiverSettings {
    uint64_t wanted = 0;           ///< how many; 0: without end
    bool writes = true;            ///< false: they are only counted
    bool keep_incomplete = false;  ///< those of which a part did not come are taken as well
    bool keep_timings = false;
    double tick_ns = 0;                     ///< of the device's time stamps, as far as known
    const ChunkFeatures* chunks = nullptr;  ///< to be read for each image
};

class FrameReceiver {
public:
    /// The queue and the chunk features must outlive the receiver, the receiver the stream.
    FrameReceiver(FrameQueue& queue, const ReceiverSettings& settings);

    /// The stream, as soon as it is known.
    void Attach(THRD_HANDLE stream) { probe_.Attach(stream); }

    /// The callback of K_Image_OpenStream; the context is the receiver.
    static void OnImage(void* context, K_IMAGE_INFO* image) noexcept;

    /// Images from now on are expected: the wait for the first one begins.
    void Expect();
    /// Waits for the last image or a failure, but not longer than the given time. True when there is nothing more to wait for.
    bool WaitForEnd(std::chrono::milliseconds time) const;
    Reception State() const;
    /// Of every frame that came while more were wanted, incomplete ones included. To be called when the stream is closed.
    const std::vector<FrameTiming>& Timings() const { return timings_; }

private:
    void Take(const K_IMAGE_INFO& image);
    /// Counts the image. Nothing when it is not wanted or not whole; else its number and the bytes to copy.
    struct Ticket {
        uint64_t number;
        uint64_t bytes;
    };
    std::optional<Ticket> Enter(const K_IMAGE_INFO& image, const FrameTiming& timing);
    /// 0: the queue was closed and did not take the image.
    void Leave(uint64_t queued_bytes);
    void Fail(const std::string& reason);
    bool IsFinished() const;

    FrameQueue& queue_;
    const ReceiverSettings settings_;
    FrameProbe probe_;  // of the stream's thread, like the next one
    std::vector<FrameTiming> timings_;
    mutable std::mutex mutex_;
    mutable std::condition_variable ended_;
    Reception state_;
    uint64_t entered_ = 0;
    bool delivering_ = false;
};
