#include "camera_state.h"

#include "kiv/platform/paths.h"

namespace kivsim {

bool CameraState::Unplugged() {
    if (!unplug_file_.empty() && kiv::platform::path_exists(unplug_file_)) return true;
    if (!pulled_) return false;
    const std::scoped_lock guard(lock_);
    if (back_at_ && Clock::now() >= *back_at_) pulled_ = false;
    return pulled_;
}

void CameraState::Unplug(std::optional<std::chrono::milliseconds> comes_back) {
    const std::scoped_lock guard(lock_);
    back_at_ = comes_back ? std::optional(Clock::now() + *comes_back) : std::nullopt;
    pulled_ = true;
}

void CameraState::PlugIn() {
    const std::scoped_lock guard(lock_);
    pulled_ = false;
}

}  // namespace kivsim
