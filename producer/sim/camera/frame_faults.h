/// What a camera was asked to do wrong with its frames, as the registers of the category SimulationControl say it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kivsim {

/// Numbers as in FaultSizeOf.
enum class SizeKind : uint32_t { All, Payload, Buffer, Filled, Image };

struct WrongSize {
    enum class How : uint32_t { Right, Zero, TooBig };  ///< as in FaultSize
    How how = How::Right;
    SizeKind of = SizeKind::All;

    size_t Of(SizeKind kind, size_t size) const {
        constexpr size_t much = 16;
        if (how == How::Right || (of != SizeKind::All && of != kind)) return size;
        return how == How::Zero ? 0 : size * much;
    }
};

struct FrameFaults {
    uint64_t next_frame = 0;  ///< the number that the next frame will have
    uint32_t drop_every = 0, repeat_every = 0, tear_every = 0, incomplete_every = 0;  ///< 0: never
    uint32_t incomplete_percent = 0;
    WrongSize size;
    uint32_t announce_limit = 0;   ///< 0: none
    uint32_t unplug_at_frame = 0;  ///< 0: never
    uint32_t return_after_ms = 0;  ///< 0: stays away

    bool NeedsLastFrame() const { return repeat_every != 0 || tear_every != 0; }
    static bool Hits(uint32_t every, uint64_t frame) { return every != 0 && frame % every == 0; }
};

}  // namespace kivsim
