/// What the caller sets and the stream thread heeds while it runs: display gains, and the wish for a white balance.
#pragma once

#include <atomic>

#include "imaging/image_display.h"

namespace ImageLib {

/// From any thread. Three gains that are set while an image is shown may be used from the next image on, one by one.
class DisplayControl {
public:
    kiv::DisplayGains Gains() const { return {gainRed, gainGreen, gainBlue}; }
    void SetGains(const kiv::DisplayGains& gains) {
        gainRed = gains.red;
        gainGreen = gains.green;
        gainBlue = gains.blue;
    }
    /// Of the next image that is delivered.
    void RequestWhiteBalance() { whiteBalanceRequest = true; }
    bool TakeWhiteBalanceRequest() { return whiteBalanceRequest && whiteBalanceRequest.exchange(false); }

private:
    std::atomic<std::uint32_t> gainRed{kiv::DisplayGains::unit};
    std::atomic<std::uint32_t> gainGreen{kiv::DisplayGains::unit};
    std::atomic<std::uint32_t> gainBlue{kiv::DisplayGains::unit};
    std::atomic<bool> whiteBalanceRequest{false};
};

}  // namespace ImageLib
