#include "view_frames.h"

#include <VL.h>

#include <exception>
#include <utility>

namespace {
constexpr std::chrono::seconds kRatePeriod{2};
constexpr std::size_t kMostArrivals = 4096;
}  // namespace

void NewestFrame::OnImage(void* context, K_IMAGE_INFO* image) noexcept {
    // The caller is C code on the stream's thread: an exception must not reach it. Without memory an image is lost, no more.
    try {
        static_cast<NewestFrame*>(context)->Put(*image);
    } catch (const std::exception&) {
        static_cast<NewestFrame*>(context)->CountIncomplete();
    }
}

void NewestFrame::Put(const K_IMAGE_INFO& image) {
    uint64_t bytes = 0;
    const VL_STATUS size_known = vlGetRawSize(&image, &bytes);
    // A format that the imaging library does not know can still be saved as it is.
    if (size_known == VL_ST_NOT_IMPLEMENTED) bytes = image.image_size;
    const bool is_whole = size_known == VL_ST_SUCCESS || size_known == VL_ST_NOT_IMPLEMENTED;
    if (!is_whole || image.image_data == nullptr) return CountIncomplete();
    const auto* begin = static_cast<const uint8_t*>(image.image_data);
    filling_.data.assign(begin, begin + bytes);
    filling_.info = image;
    filling_.info.image_data = filling_.data.data();
    filling_.info.image_size = static_cast<uint32_t>(bytes);
    {
        const std::lock_guard lock(mutex_);
        filling_.number = ++received_;
        std::swap(filling_, ready_);
        has_ready_ = true;
        arrivals_.push_back(Clock::now());
        if (arrivals_.size() > kMostArrivals) arrivals_.pop_front();
    }
    bell_.Ring();
}

void NewestFrame::CountIncomplete() {
    const std::lock_guard lock(mutex_);
    ++incomplete_;
}

bool NewestFrame::Take(LiveFrame& frame) {
    const std::lock_guard lock(mutex_);
    if (!has_ready_) return false;
    std::swap(frame, ready_);
    has_ready_ = false;
    return true;
}

FrameCounts NewestFrame::Counts() const {
    const std::lock_guard lock(mutex_);
    FrameCounts counts{received_, incomplete_, 0};
    const auto since = Clock::now() - kRatePeriod;
    std::size_t first = 0;
    while (first < arrivals_.size() && arrivals_[first] < since) ++first;
    const std::size_t intervals = arrivals_.size() - first;
    if (intervals < 2) return counts;
    const std::chrono::duration<double> time = arrivals_.back() - arrivals_[first];
    if (time.count() > 0) counts.rate = static_cast<double>(intervals - 1) / time.count();
    return counts;
}
