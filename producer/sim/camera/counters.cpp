#include "counters.h"

#include <algorithm>

namespace kivsim {
namespace {

constexpr uint64_t kTickNs = 100;
enum class CounterState : uint32_t { Idle = 0, Active = 2, Completed = 3 };

CounterState state_of(uint32_t index, const RegisterFile& registers) {
    if (registers.Uint(Reg::CounterEventSource, index) == 0) return CounterState::Idle;
    const auto duration = registers.Uint(Reg::CounterDuration, index);
    const bool complete = duration != 0 && registers.Uint(Reg::CounterValue, index) >= duration;
    return complete ? CounterState::Completed : CounterState::Active;
}

}  // namespace

void Counters::Happened(Event event, RegisterFile& registers, uint64_t now) {
    const auto number = static_cast<uint64_t>(event);
    for (uint32_t i = 0; i < 2; ++i) {
        if (registers.Uint(Reg::CounterResetSource, i) == number) ResetCounter(i, registers);
        if (registers.Uint(Reg::CounterEventSource, i) == number && state_of(i, registers) == CounterState::Active)
            registers.SetUint(Reg::CounterValue, registers.Uint(Reg::CounterValue, i) + 1, i);
        if (registers.Uint(Reg::TimerTriggerSource, i) == number) StartTimer(i, now);
    }
}

void Counters::ResetCounter(uint32_t index, RegisterFile& registers) {
    registers.SetUint(Reg::CounterValueAtReset, registers.Uint(Reg::CounterValue, index), index);
    registers.SetUint(Reg::CounterValue, 0, index);
}

Counters::TimerView Counters::ViewTimer(uint32_t index, const RegisterFile& registers, uint64_t now) const {
    const bool triggered = registers.Uint(Reg::TimerTriggerSource, index) != 0;
    if (!started_[index]) return {triggered ? TimerState::TriggerWait : TimerState::Idle, 0};
    const uint64_t elapsed = (now - std::min(now, *started_[index])) / kTickNs, delay = registers.Uint(Reg::TimerDelay, index);
    if (elapsed < delay) return {TimerState::Idle, 0};
    const uint64_t duration = registers.Uint(Reg::TimerDuration, index);
    if (elapsed - delay < duration) return {TimerState::Active, elapsed - delay};
    return {TimerState::Completed, duration};
}

bool Counters::TimerActive(uint32_t index, const RegisterFile& registers, uint64_t now) const {
    return ViewTimer(index, registers, now).state == TimerState::Active;
}

void Counters::Show(RegisterFile& registers, uint64_t now) const {
    for (uint32_t i = 0; i < 2; ++i) {
        const auto timer = ViewTimer(i, registers, now);
        registers.SetUint(Reg::TimerValue, timer.ticks, i);
        registers.SetUint(Reg::TimerStatus, static_cast<uint64_t>(timer.state), i);
        registers.SetUint(Reg::CounterStatus, static_cast<uint64_t>(state_of(i, registers)), i);
    }
}

}  // namespace kivsim
