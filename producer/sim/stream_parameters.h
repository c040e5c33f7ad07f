/// The transport behind a GigE Vision stream: what DSGetStreamParam and DSSetStreamParam reach by number, and the packets that
/// the frames would have taken. Guarded by the lock of its stream.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "info.h"

namespace kivsim {

class StreamParameters {
public:
    enum Number : int32_t {
        PacketSize,
        PacketResend,      ///< 0 or 1
        PacketTimeout,     ///< milliseconds
        ResendLimit,       ///< requests for each frame
        InterPacketDelay,  ///< ticks
        Multicast,         ///< read only from here on
        PacketsReceived,
        PacketsMissing
    };

    explicit StreamParameters(uint32_t multicast);

    /// Throw NOT_IMPLEMENTED for a number that there is not, Set also ACCESS_DENIED and INVALID_VALUE.
    Info Get(int32_t parameter) const;
    void Set(int32_t parameter, uint32_t value);

    /// Counts the packets of a frame; answers how many of them did not come.
    uint32_t Arrived(size_t filled, size_t whole);

private:
    std::array<uint32_t, Multicast + 1> values_;
    uint64_t received_ = 0, missing_ = 0;
};

}  // namespace kivsim
