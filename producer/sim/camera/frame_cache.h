/// Frames that were rendered once and are shown again: the way to frame rates that no renderer reaches. Off until Keep is told a
/// number; then so many frames follow each other in turn, until a setting changes.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "renderer.h"
#include "settings.h"

namespace kivsim {

class FrameCache {
public:
    /// From any thread; 0: every frame is rendered.
    void Keep(uint64_t frames) { keep_ = frames; }

    /// Fills the buffer with the frame, which `render(span)` makes when it is not there. One thread at a time.
    template <typename Render>
    Brightness Get(const ImageSettings& settings, uint64_t frame, std::span<std::byte> buffer, Render render) {
        const uint64_t keep = keep_;
        if (keep == 0) {
            frames_.clear();
            return render(buffer);
        }
        if (frames_.size() != keep || !(settings_ == settings)) {
            frames_.assign(keep, {});
            settings_ = settings;
        }
        auto& cached = frames_[frame % keep];
        if (!cached.empty()) {
            std::memcpy(buffer.data(), cached.data(), buffer.size());
            return {};
        }
        const Brightness seen = render(buffer);
        if (buffer.size() == settings.ImageSize()) cached.assign(buffer.begin(), buffer.end());
        return seen;
    }

private:
    std::atomic<uint64_t> keep_{0};
    ImageSettings settings_;
    std::vector<std::vector<std::byte>> frames_;
};

}  // namespace kivsim
