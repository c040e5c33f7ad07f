/// What becomes of a simulated camera while the producer is loaded, apart from its registers: whether it is plugged in, and which
/// address it has. Outlives the device that is opened on it. Every function may be called from any thread.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "entry_faults.h"

namespace kivsim {

class CameraState {
public:
    /// `unplug_file`: while it exists the camera is gone; empty: there is none. `ip`: 0 without a network.
    CameraState(std::string unplug_file, uint32_t ip) : unplug_file_(std::move(unplug_file)), ip_(ip) {}

    /// Looks, and plugs a camera in again whose time has come.
    bool Unplugged();
    /// Without a time it stays away until PlugIn.
    void Unplug(std::optional<std::chrono::milliseconds> comes_back);
    void PlugIn();
    /// The frame has come at which the camera was asked to vanish: true once, until it is asked again.
    bool TakeUnplugging() noexcept { return unplugs_at_frame_.exchange(false); }
    void ArmUnplugging() noexcept { unplugs_at_frame_ = true; }

    EntryFaults& Faults() noexcept { return faults_; }

    uint32_t Ip() const noexcept { return ip_; }
    void SetIp(uint32_t address) noexcept { ip_ = address; }

private:
    using Clock = std::chrono::steady_clock;

    const std::string unplug_file_;
    std::atomic<uint32_t> ip_;
    std::atomic<bool> pulled_{false};
    std::atomic<bool> unplugs_at_frame_{true};
    EntryFaults faults_;
    std::mutex lock_;
    std::optional<Clock::time_point> back_at_;  ///< under the lock
};

}  // namespace kivsim
