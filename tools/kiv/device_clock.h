/// A camera's clock beside that of this machine: when, by the host's clock, a time stamp of the camera was made.
///
/// A camera that can latch its clock is asked for it before and after the grab; the answer of a question that took t is known to
/// t / 2. Without that, the frame that was fastest on its way is taken to have been on it for no time at all: what comes out is
/// by how much each frame was slower.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame_timing.h"

/// The camera's clock, read once. Nanoseconds.
struct ClockReading {
    int64_t device_ns = 0;
    int64_t host_ns = 0;
    int64_t uncertainty_ns = 0;  ///< of host_ns, to either side
};

/// The best of some readings; nothing when the camera's clock cannot be read. Executes the camera's latch command.
std::optional<ClockReading> read_device_clock(const Camera& camera);

class DeviceClock {
public:
    enum class Kind {
        kNone,      ///< time stamps are missing, or their unit is not known
        kRead,      ///< the camera's clock was read: latencies are absolute
        kSmallest,  ///< by the fastest frames: latencies are relative
    };

    /// From readings before and after, where there are any that the frames do not contradict, else from the frames.
    DeviceClock(const std::vector<ClockReading>& readings, const std::vector<FrameTiming>& frames);

    Kind GetKind() const { return kind_; }
    /// "read", "smallest", "none"
    const char* Name() const;
    /// The host's time of a time stamp.
    double HostNs(int64_t device_ns) const;
    /// By how much the camera's clock is slow; 0 where that could not be found out.
    double DriftPpm() const { return slope_ * 1e6; }
    double UncertaintyNs() const { return uncertainty_ns_; }

private:
    void FromReadings(const std::vector<ClockReading>& readings);
    void FromFrames(const std::vector<FrameTiming>& frames);
    bool IsCredible(const std::vector<FrameTiming>& frames) const;

    Kind kind_ = Kind::kNone;
    // host - host_base = (device - device_base) * (1 + slope) + offset: only differences keep their last digits in a double.
    int64_t device_base_ = 0, host_base_ = 0;
    double slope_ = 0, offset_ = 0, uncertainty_ns_ = 0;
};
