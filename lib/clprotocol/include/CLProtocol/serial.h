/// One open serial port, whoever drives it: a frame grabber's library or the system.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace CLProtocol {

/// Called before every step that takes time, and again and again while one waits. To stop the work it throws; what it throws
/// passes through everything here unchanged.
using Checkpoint = std::function<void()>;

/// Failures of the port itself are exceptions. One thread at a time. A port starts at 9600 baud.
class Serial {
public:
    virtual ~Serial() = default;

    /// Waits until bytes are there, and takes at most so many of them; 0 when none came in time.
    virtual std::size_t ReadSome(std::span<std::byte> bytes, std::chrono::milliseconds timeout) = 0;
    virtual void Write(std::span<const std::byte> bytes, std::chrono::milliseconds timeout) = 0;
    /// Forgets what was received and not yet read.
    virtual void Discard() = 0;
    /// A mask of baud_rates.
    virtual std::uint32_t SupportedRates() = 0;
    /// One bit of the mask; throws when the port cannot do it.
    virtual void SetRate(std::uint32_t bit) = 0;
};

}  // namespace CLProtocol
