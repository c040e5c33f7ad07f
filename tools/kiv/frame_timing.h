/// What can be known of a frame's time on its way: taken in the callback, on the stream's thread.
#pragma once

#include <Kiv_Factory.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "session.h"

/// Times are nanoseconds: the host's of the steady clock, the device's of whatever clock it has.
struct FrameTiming {
    uint64_t frame_id = 0;
    uint64_t missing = 0;   ///< ids that were skipped before this one
    bool repeated = false;  ///< the id of the frame before
    bool incomplete = false;
    uint64_t ticks = 0;  ///< the device's time stamp as it came
    std::optional<int64_t> device_ns;
    std::optional<int64_t> event_ns;  ///< when the producer handed the frame over
    int64_t callback_ns = 0;          ///< when the callback began
    uint32_t waiting = 0;             ///< filled buffers behind this one
    uint32_t free = 0;                ///< buffers that the producer may fill
    std::size_t unwritten = 0;        ///< frames that wait to be written to files
};

/// How many ids lie between two frames that came one after the other. Ids that run backwards began anew, and tell nothing, but
/// for those of 16 bits, which go on with 1 after 65535.
uint64_t missing_between(uint64_t last_id, uint64_t id);

int64_t steady_ns();

class FrameProbe {
public:
    /// `tick_ns`: nanoseconds of a tick of the device's time stamps, or 0; it is needed only where the producer does not know the
    /// time stamp in nanoseconds.
    explicit FrameProbe(double tick_ns) : tick_ns_(tick_ns) {}

    /// Before that, a frame has no more than its record tells.
    void Attach(THRD_HANDLE stream) { stream_ = stream; }
    /// For the stream's thread, in the callback.
    FrameTiming Measure(const K_IMAGE_INFO& image);

private:
    template <class Value>
    std::optional<Value> Ask(int32_t command) const;

    const double tick_ns_;
    std::atomic<THRD_HANDLE> stream_ = nullptr;
    std::optional<uint64_t> last_id_;
};

/// Nanoseconds of a tick of the camera's time stamps; 0 when neither the camera nor its producer tells.
double nanoseconds_per_tick(const Camera& camera);
