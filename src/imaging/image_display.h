/// What the stream thread wants of whoever can show images. It knows no more of windows than this.
#pragma once

#include <kiv/image_info.h>

#include <atomic>
#include <cstdint>

namespace kiv {

/// Factors by which colour channels are shown, in units of 1/4096.
struct DisplayGains {
    static constexpr std::uint32_t unit = 4096;
    std::uint32_t red = unit;
    std::uint32_t green = unit;
    std::uint32_t blue = unit;
};

/// Called on the stream threads, several at a time, while the image's buffer is theirs.
class ImageDisplay {
public:
    virtual ~ImageDisplay() = default;

    /// Whether a window has ever been opened: where images of streams without a callback go.
    virtual bool HasWindow() const noexcept = 0;
    virtual void Show(const K_IMAGE_INFO& image, const DisplayGains& gains) = 0;
    /// The gains with which this image is white in its middle; leaves them as they are when that cannot be told.
    virtual void BalanceWhite(const K_IMAGE_INFO& image, DisplayGains& gains) = 0;
};

/// The one display of the process; null until somebody provides one, which then lives as long as streams run.
inline std::atomic<ImageDisplay*> image_display{nullptr};

}  // namespace kiv
