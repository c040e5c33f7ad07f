#include "camera_core.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "GenTL/GenTL.h"
#include "register_rules.h"

namespace kivsim {

namespace {

/// The element of a register that contains an address, and which of the bytes up to `end` belong to it.
struct Place {
    Reg reg;
    uint32_t index;
    uint64_t begin, end;
};

Place place_of(const RegisterRow& row, uint64_t address, uint64_t end) {
    const auto index = static_cast<uint32_t>((address - row.address) / row.bytes);
    const uint64_t begin = row.address + uint64_t{index} * row.bytes;
    return {reg_of(row), index, begin, std::min(begin + row.bytes, end)};
}

}  // namespace

/// What one write has changed so far: mostly one register.
class CameraCore::Changes {
public:
    struct Changed {
        Reg reg;
        uint32_t index;
        std::array<std::byte, kLargestElement> before;
        uint64_t value;
    };

    Changed& Add() { return ++count_ == 1 ? first_ : more_.emplace_back(); }
    size_t Count() const { return count_; }
    const Changed& operator[](size_t i) const { return i == 0 ? first_ : more_[i - 1]; }

private:
    Changed first_;
    std::vector<Changed> more_;
    size_t count_ = 0;
};

CameraCore::CameraCore(const CameraConfig& config) : registers_(config), power_cycles_(0) {
    // the file may have been damaged while nobody looked
    if (!all_values_valid(registers_)) registers_.Forget();
    power_cycles_ = registers_.Uint(Reg::PowerCycles);
}

int32_t CameraCore::Read(uint64_t address, std::byte* out, size_t size) {
    const uint64_t end = address + size;
    for (uint64_t at = address; at < end;) {
        const auto* row = register_at(at);
        if (!row) return GenTL::GC_ERR_INVALID_ADDRESS;
        if (row->access == Access::WO) return GenTL::GC_ERR_ACCESS_DENIED;
        at = row->End();
    }
    for (uint64_t at = address; at < end;) {
        const auto& row = *register_at(at);
        Refresh(row);
        const uint64_t stop = std::min(row.End(), end);
        std::memcpy(out + (at - address), registers_.Bytes(reg_of(row)).data() + (at - row.address), stop - at);
        at = stop;
    }
    return GenTL::GC_ERR_SUCCESS;
}

int32_t CameraCore::Put(uint64_t& address, const std::byte* in, uint64_t end, Changes& changes) {
    const auto* row = register_at(address);
    if (!row) return GenTL::GC_ERR_INVALID_ADDRESS;
    if (row->access == Access::RO || (row->Has(kFormat) && clock_.Acquiring())) return GenTL::GC_ERR_ACCESS_DENIED;
    const auto place = place_of(*row, address, end);
    const auto element = registers_.Element(place.reg, place.index);
    std::array<std::byte, kLargestElement> space;
    const auto wanted = std::span(space).first(element.size());
    std::memcpy(wanted.data(), element.data(), element.size());
    std::memcpy(wanted.data() + (address - place.begin), in, place.end - address);
    if (!takes_value(registers_, place.reg, place.index, wanted)) return GenTL::GC_ERR_INVALID_VALUE;
    auto& changed = changes.Add();
    changed.reg = place.reg;
    changed.index = place.index;
    std::memcpy(changed.before.data(), element.data(), element.size());
    std::memcpy(element.data(), wanted.data(), wanted.size());
    changed.value = row->bytes <= sizeof(uint64_t) ? registers_.Uint(place.reg, place.index) : 0;
    address = place.end;
    return GenTL::GC_ERR_SUCCESS;
}

// Registers are filled one after the other, each checked with those before it: a block that sets size and offset together is
// taken as a whole. When one refuses, all get their old content back.
int32_t CameraCore::Write(uint64_t address, const std::byte* in, size_t size) {
    const uint64_t end = address + size;
    Changes changes;
    int32_t status = GenTL::GC_ERR_SUCCESS;
    for (uint64_t at = address; at < end && status == GenTL::GC_ERR_SUCCESS;) status = Put(at, in + (at - address), end, changes);
    for (auto i = changes.Count(); i-- > 0;) {
        const auto& item = changes[i];
        const auto element = registers_.Element(item.reg, item.index);
        const bool keeps = status == GenTL::GC_ERR_SUCCESS && !row_of(item.reg).Has(kCommand);
        if (!keeps) std::memcpy(element.data(), item.before.data(), element.size());
    }
    if (status != GenTL::GC_ERR_SUCCESS) return status;
    for (size_t i = 0; i < changes.Count(); ++i) Effect(changes[i].reg, changes[i].index, changes[i].value);
    return status;
}

bool CameraCore::FaultDue(uint64_t address, size_t size) const {
    constexpr auto &first = row_of(Reg::FrameCache), &last = row_of(Reg::FaultEntryClear);
    if (registers_.Uint(Reg::FaultRegisterEnable) == 0) return false;
    if (address >= first.address && address < last.End()) return false;
    const uint64_t at = registers_.Uint(Reg::FaultRegisterAddress);
    return at >= address && at - address < size;
}

std::optional<uint64_t> CameraCore::NextDue() {
    NoticeForeignReset();
    return clock_.NextDue(read_timing(registers_));
}

FrameClock::Frame CameraCore::TakeFrame(bool lost) {
    const auto now = registers_.Now();
    const bool acquiring = clock_.Acquiring();
    const auto timing = read_timing(registers_);
    const auto frame = clock_.Take(now, timing);
    if (timing.frame.on && timing.frame.source == static_cast<uint32_t>(TriggerSource::Line0))
        Tell(EventKind::FrameTrigger, frame.start_ns - std::min(frame.start_ns, timing.frame.delay_ns), frame.id);
    if (exposure_told_ != frame.id) Tell(EventKind::ExposureStart, frame.start_ns, frame.id);
    exposure_told_ = frame.id;
    Tell(EventKind::ExposureEnd, frame.start_ns + timing.exposure_ns, frame.id);
    counters_.Happened(Event::FrameStart, registers_, frame.start_ns);
    if (acquiring && !clock_.Acquiring()) counters_.Happened(Event::AcquisitionEnd, registers_, now);
    ++(lost ? skipped_ : rendered_);
    return frame;
}

void CameraCore::Effect(Reg reg, uint32_t index, uint64_t value) {
    using Action = void (*)(CameraCore&, uint32_t index);
    struct Row {
        Reg reg;
        Action action;
    };
    static constexpr Row rows[] = {
        {Reg::AcquisitionStart, [](CameraCore& camera, uint32_t) { camera.StartAcquisition(); }},
        {Reg::AcquisitionStop, [](CameraCore& camera, uint32_t) { camera.StopAcquisition(); }},
        {Reg::AcquisitionAbort, [](CameraCore& camera, uint32_t) { camera.StopAcquisition(); }},
        {Reg::TriggerSoftware,
         [](CameraCore& camera, uint32_t i) { camera.Fire(static_cast<Trigger>(i), TriggerSource::Software, true); }},
        {Reg::SoftwareSignalPulse,
         [](CameraCore& camera, uint32_t i) {
             camera.Signal(i == 0 ? TriggerSource::SoftwareSignal0 : TriggerSource::SoftwareSignal1);
         }},
        {Reg::BootTimestampLatch, [](CameraCore& camera, uint32_t) { camera.LatchTime(Reg::BootTimestamp); }},
        {Reg::TimestampLatch, [](CameraCore& camera, uint32_t) { camera.LatchTime(Reg::TimestampLatchValue); }},
        {Reg::TimestampReset, [](CameraCore& camera, uint32_t) { camera.registers_.ResetClock(); }},
        {Reg::DeviceReset, [](CameraCore& camera, uint32_t) { camera.PowerCycle(); }},
        {Reg::CounterReset, [](CameraCore& camera, uint32_t i) { camera.counters_.ResetCounter(i, camera.registers_); }},
        {Reg::TimerReset, [](CameraCore& camera, uint32_t i) { camera.counters_.StartTimer(i, camera.registers_.Now()); }},
        {Reg::UserSetLoad, [](CameraCore& camera, uint32_t) { camera.LoadUserSet(); }},
        {Reg::UserSetSave, [](CameraCore& camera, uint32_t) { camera.registers_.SaveUserSet(camera.SelectedUserSet()); }},
        {Reg::EventNotification, [](CameraCore& camera, uint32_t) { camera.edges_told_ = camera.registers_.Now(); }},
        {Reg::EventTestGenerate,
         [](CameraCore& camera, uint32_t) { camera.Tell(EventKind::Test, camera.registers_.Now(), camera.clock_.LastId()); }},
        {Reg::BinningHorizontal, [](CameraCore& camera, uint32_t) { fit_region(camera.registers_); }},
        {Reg::BinningVertical, [](CameraCore& camera, uint32_t) { fit_region(camera.registers_); }},
    };
    const auto* row = std::ranges::find(rows, reg, &Row::reg);
    if (row == std::end(rows) || (row_of(reg).Has(kCommand) && value == 0)) return;
    row->action(*this, index);
}

void CameraCore::StartAcquisition() {
    missed_ = 0;
    exposure_told_ = 0;
    clock_.Start(registers_.Now(), read_timing(registers_));
    counters_.Happened(Event::AcquisitionStart, registers_, registers_.Now());
}

void CameraCore::StopAcquisition() {
    if (clock_.Acquiring()) counters_.Happened(Event::AcquisitionEnd, registers_, registers_.Now());
    clock_.Stop();
}

void CameraCore::Fire(Trigger trigger, TriggerSource source, bool counts_as_missed) {
    const auto now = registers_.Now();
    const bool taken = clock_.Fire(trigger, source, now, read_timing(registers_));
    if (!taken && !counts_as_missed) return;
    if (!taken) ++missed_;
    counters_.Happened(taken ? Event::FrameTrigger : Event::FrameTriggerMissed, registers_, now);
    Tell(taken ? EventKind::FrameTrigger : EventKind::FrameTriggerMissed, now, clock_.LastId() + 1);
}

void CameraCore::Signal(TriggerSource source) {
    for (uint32_t i = 0; i < 2; ++i) {
        const bool listens =
            registers_.Uint(Reg::TriggerMode, i) != 0 && registers_.Uint(Reg::TriggerSource, i) == static_cast<uint64_t>(source);
        Fire(static_cast<Trigger>(i), source, listens);
    }
}

// a saved set may have been damaged like everything else in a file
void CameraCore::LoadUserSet() {
    registers_.LoadUserSet(SelectedUserSet());
    if (!all_values_valid(registers_)) registers_.LoadUserSet(0);
}

bool CameraCore::Exposing(uint64_t now, const Timing& timing) {
    const auto due = clock_.NextDue(timing);
    return due && now < *due && now + timing.exposure_ns >= *due;
}

uint64_t CameraCore::Lines() {
    const auto now = registers_.Now();
    const auto timing = read_timing(registers_);
    const auto outputs = registers_.Uint(Reg::UserOutputs);
    // by LineSource
    const bool sources[] = {false,
                            Exposing(now, timing),
                            clock_.Acquiring(),
                            clock_.WaitsForTrigger(timing),
                            (outputs & 1) != 0,
                            (outputs & 2) != 0,
                            counters_.TimerActive(0, registers_, now),
                            counters_.TimerActive(1, registers_, now)};
    uint64_t lines = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const bool barrier = i == 0 && timing.part_ns != 0 && now % timing.part_ns < timing.part_ns / 2;
        const bool high = i < 2 ? barrier : sources[registers_.Uint(Reg::LineSource, i) % std::size(sources)];
        lines |= uint64_t{high != (registers_.Uint(Reg::LineInverter, i) != 0)} << i;
    }
    return lines;
}

ChunkValues CameraCore::Chunks(const ImageSettings& settings, const FrameClock::Frame& frame) {
    ChunkValues values;
    values.offset_x = settings.offset_x;
    values.offset_y = settings.offset_y;
    values.width = settings.width;
    values.height = settings.height;
    values.pixel_format = settings.format->code;
    values.line_pitch = static_cast<uint32_t>(settings.format->LinePitch(settings.width));
    values.timestamp_ns = registers_.DeviceTime(frame.start_ns);
    values.frame_id = frame.id;
    values.exposure_us = settings.exposure_us;
    values.gain_db = static_cast<double>(registers_.Uint(Reg::Gain, 0)) / 100;
    values.black_level = settings.black_level;
    if (settings.chunks.Has(ChunkKind::LineStatusAll)) values.lines = static_cast<uint32_t>(Lines());
    for (uint32_t i = 0; i < values.counters.size(); ++i)
        values.counters[i] = static_cast<uint32_t>(registers_.Uint(Reg::CounterValue, i));
    return values;
}

// warms up within some minutes, and by another few degrees while it works
void CameraCore::RefreshTemperatures() {
    const auto minutes = static_cast<double>(registers_.Now()) / 60e9;
    const double warm = minutes / (minutes + 4) * 14 + (clock_.Acquiring() ? 3.5 : 0);
    const double places[] = {31.0 + warm, 27.5 + 0.7 * warm, 29.0 + 0.8 * warm};
    for (uint32_t i = 0; i < 3; ++i) registers_.SetUint(Reg::DeviceTemperature, static_cast<uint64_t>(places[i] * 10), i);
}

void CameraCore::RefreshStatus() {
    const auto timing = read_timing(registers_);
    const uint64_t active = clock_.Acquiring() ? 1 : 0, waits = clock_.WaitsForTrigger(timing) ? 2 : 0;
    registers_.SetUint(Reg::AcquisitionStatus, active | waits | (Exposing(registers_.Now(), timing) ? 4 : 0));
}

// the values that are worked out when somebody asks
void CameraCore::Refresh(const RegisterRow& row) {
    using Source = void (*)(CameraCore&);
    struct Row {
        Reg reg;
        Source source;
    };
    static constexpr Row rows[] = {
        {Reg::DeviceTemperature, [](CameraCore& camera) { camera.RefreshTemperatures(); }},
        {Reg::Timestamp, [](CameraCore& camera) { camera.LatchTime(Reg::Timestamp); }},
        {Reg::UptimeSeconds,
         [](CameraCore& camera) { camera.registers_.SetUint(Reg::UptimeSeconds, camera.registers_.Now() / 1'000'000'000); }},
        {Reg::PayloadSize,
         [](CameraCore& camera) {
             camera.registers_.SetUint(Reg::PayloadSize, read_image_settings(camera.registers_).PayloadSize());
         }},
        {Reg::LinePitch,
         [](CameraCore& camera) {
             const auto settings = read_image_settings(camera.registers_);
             camera.registers_.SetUint(Reg::LinePitch, settings.format->LinePitch(settings.width));
         }},
        {Reg::ResultingFrameRate,
         [](CameraCore& camera) {
             const auto period = static_cast<double>(read_timing(camera.registers_).period_ns);
             camera.registers_.SetFloat(Reg::ResultingFrameRate, static_cast<float>(1e9 / period));
         }},
        {Reg::AcquisitionStatus, [](CameraCore& camera) { camera.RefreshStatus(); }},
        {Reg::TriggersMissed, [](CameraCore& camera) { camera.registers_.SetUint(Reg::TriggersMissed, camera.missed_); }},
        {Reg::LineStatusAll, [](CameraCore& camera) { camera.registers_.SetUint(Reg::LineStatusAll, camera.Lines()); }},
        {Reg::CounterStatus, [](CameraCore& camera) { camera.counters_.Show(camera.registers_, camera.registers_.Now()); }},
        {Reg::TimerValue, [](CameraCore& camera) { camera.counters_.Show(camera.registers_, camera.registers_.Now()); }},
        {Reg::TimerStatus, [](CameraCore& camera) { camera.counters_.Show(camera.registers_, camera.registers_.Now()); }},
        {Reg::FramesRendered, [](CameraCore& camera) { camera.registers_.SetUint(Reg::FramesRendered, camera.rendered_); }},
        {Reg::FramesSkipped, [](CameraCore& camera) { camera.registers_.SetUint(Reg::FramesSkipped, camera.skipped_); }},
    };
    if (!row.Has(kComputed)) return;
    const auto* found = std::ranges::find(rows, reg_of(row), &Row::reg);
    if (found != std::end(rows)) found->source(*this);
}

void CameraCore::PowerCycle() {
    clock_.Stop();
    counters_.Clear();
    missed_ = rendered_ = skipped_ = 0;
    registers_.PowerCycle();
    if (!all_values_valid(registers_)) registers_.LoadUserSet(0);
    power_cycles_ = registers_.Uint(Reg::PowerCycles);
}

// another process may have switched the camera off and on: what ran here has ended with it
void CameraCore::NoticeForeignReset() {
    if (registers_.Uint(Reg::PowerCycles) == power_cycles_) return;
    power_cycles_ = registers_.Uint(Reg::PowerCycles);
    clock_.Stop();
    counters_.Clear();
}

}  // namespace kivsim
