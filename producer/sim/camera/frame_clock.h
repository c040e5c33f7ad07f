/// When the next frame is due: free running, in bursts, or triggered by software, by an action command or by the light barrier
/// at the belt. It knows no real time: every call is told the device time, in nanoseconds. Not thread safe.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "settings.h"

namespace kivsim {

enum class TriggerSource : uint32_t {
    Software = 0,
    Line0 = 1,
    Line1 = 2,
    SoftwareSignal0 = 8,
    SoftwareSignal1 = 9,
    Action0 = 16,
    Action1 = 17
};
enum class Trigger : uint32_t { Frame = 0, Burst = 1 };

class FrameClock {
public:
    void Start(uint64_t now, const Timing& timing);
    void Stop();
    bool Acquiring() const { return acquiring_; }

    /// A trigger that comes while nothing waits for it is kept while there is room, up to 16 of a kind. False: it was missed,
    /// because nothing is acquired, that trigger is off, listens to another source, or too many wait already.
    bool Fire(Trigger trigger, TriggerSource source, uint64_t now, const Timing& timing);

    /// End of the exposure of the next frame; nothing while a trigger must come first.
    std::optional<uint64_t> NextDue(const Timing& timing);

    struct Frame {
        uint64_t id, start_ns;
    };
    /// Takes the frame that is due. After the last one of the acquisition the clock stands. A frame that is fetched late moves
    /// the next ones: the simulation would rather be slow than lose frames because the machine is.
    Frame Take(uint64_t now, const Timing& timing);

    /// The number of the frame that was taken last.
    uint64_t LastId() const { return id_; }

    bool WaitsForTrigger(const Timing& timing) { return acquiring_ && !NextDue(timing); }

private:
    std::optional<uint64_t> NextStart(const Timing& timing);
    static std::optional<uint64_t> NextEdge(uint64_t earliest, const Timing& timing, uint32_t activation);

    bool acquiring_ = false;
    uint64_t id_ = 0;
    uint64_t frames_left_ = 0;
    uint64_t burst_left_ = 0;
    std::optional<uint64_t> last_start_;
    uint64_t earliest_ = 0;
    std::deque<uint64_t> waiting_[2];  ///< trigger times, by Trigger
};

}  // namespace kivsim
