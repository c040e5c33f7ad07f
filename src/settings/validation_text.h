/// What the last validation of a camera's settings found, kept with the camera.
#pragma once

#include <mutex>
#include <string>

#include "camera/camera.h"

namespace kiv {

class ValidationText final : public GenICam::Factory::CCameraAttachment {
public:
    void Set(std::string text) {
        std::lock_guard guard(lock_);
        text_ = std::move(text);
    }
    std::string Get() const {
        std::lock_guard guard(lock_);
        return text_;
    }
    void CameraCloses() override {}

private:
    mutable std::mutex lock_;
    std::string text_;
};

}  // namespace kiv
