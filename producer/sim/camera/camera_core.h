/// The camera behind its registers: what reading finds out, what writing does, and which frame comes next. Not thread safe, and
/// without images: those are the Camera's.
#pragma once

#include <optional>
#include <vector>

#include "camera_events.h"
#include "counters.h"
#include "frame_clock.h"
#include "register_file.h"

namespace kivsim {

class CameraCore {
public:
    explicit CameraCore(const CameraConfig& config);

    RegisterFile& Registers() { return registers_; }
    const RegisterFile& Registers() const { return registers_; }

    /// GC_ERRORs, as those of Camera; the description is not part of the registers.
    int32_t Read(uint64_t address, std::byte* out, size_t size);
    int32_t Write(uint64_t address, const std::byte* in, size_t size);
    /// Whether a register in the range was asked to fail or to be late. Never those that ask for faults: the way out stays open.
    bool FaultDue(uint64_t address, size_t size) const;

    /// End of the exposure of the next frame, in the time of RegisterFile::Now; nothing while none is to come.
    std::optional<uint64_t> NextDue();
    /// The frame that is due, or one that begins now. `lost`: nobody has a buffer for it.
    FrameClock::Frame TakeFrame(bool lost);

    /// The number of the frame that was taken last.
    uint64_t LastFrame() const { return clock_.LastId(); }
    /// What the chunks of a frame say.
    ChunkValues Chunks(const ImageSettings& settings, const FrameClock::Frame& frame);

    void SetEventSink(EventSink sink) { sink_ = std::move(sink); }
    /// Tells of what began or passed up to now without anybody's doing: exposures, edges of the light barrier.
    void TellWhatHappened(uint64_t now);
    /// When there will be something of that kind to tell; nothing when nobody wants to know.
    std::optional<uint64_t> NextEvent(uint64_t now);
    /// Whether any event is switched on that needs frames to happen.
    bool TellsOfFrames() const;

    /// A pulse of a signal or an action: fires every trigger that listens to it.
    void Signal(TriggerSource source);
    void PowerCycle();

private:
    class Changes;
    bool Tells(EventKind kind) const;
    void Tell(EventKind kind, uint64_t when, uint64_t frame);
    std::optional<uint64_t> NextExposure();
    std::optional<uint64_t> NextEdge(uint64_t after) const;
    /// Writes one register; `address` goes on to what stands behind it.
    int32_t Put(uint64_t& address, const std::byte* in, uint64_t end, Changes& changes);
    void Refresh(const RegisterRow& row);
    void RefreshStatus();
    void RefreshTemperatures();
    void Effect(Reg reg, uint32_t index, uint64_t value);
    void LatchTime(Reg into) { registers_.SetUint(into, registers_.DeviceTime(registers_.Now())); }
    void StartAcquisition();
    void StopAcquisition();
    void Fire(Trigger trigger, TriggerSource source, bool counts_as_missed);
    bool Exposing(uint64_t now, const Timing& timing);
    uint64_t Lines();
    void LoadUserSet();
    uint32_t SelectedUserSet() const { return static_cast<uint32_t>(registers_.Uint(Reg::UserSetSelector)); }
    void NoticeForeignReset();

    RegisterFile registers_;
    FrameClock clock_;
    Counters counters_;
    uint64_t missed_ = 0, rendered_ = 0, skipped_ = 0;
    uint64_t power_cycles_;  ///< when this object looked last
    EventSink sink_;
    uint64_t exposure_told_ = 0;  ///< frame of the last EventKind::ExposureStart
    uint64_t edges_told_ = 0;     ///< edges up to here are told, or were not wanted
};

}  // namespace kivsim
