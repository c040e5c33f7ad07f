/// The two counters and the two timers: what they count, and what they show when they are read. Not thread safe.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "register_file.h"

namespace kivsim {

/// Numbers as in CounterEventSource, CounterResetSource and TimerTriggerSource.
enum class Event : uint32_t { AcquisitionStart = 1, AcquisitionEnd, FrameTrigger, FrameTriggerMissed, FrameStart };

class Counters {
public:
    void Happened(Event event, RegisterFile& registers, uint64_t now);
    void ResetCounter(uint32_t index, RegisterFile& registers);
    void StartTimer(uint32_t index, uint64_t now) { started_[index] = now; }
    void Clear() { started_ = {}; }

    /// Brings the registers that show states and the times of timers up to date.
    void Show(RegisterFile& registers, uint64_t now) const;
    bool TimerActive(uint32_t index, const RegisterFile& registers, uint64_t now) const;

private:
    enum class TimerState : uint32_t { Idle, TriggerWait, Active, Completed };
    struct TimerView {
        TimerState state;
        uint64_t ticks;
    };
    TimerView ViewTimer(uint32_t index, const RegisterFile& registers, uint64_t now) const;

    std::array<std::optional<uint64_t>, 2> started_;
};

}  // namespace kivsim
