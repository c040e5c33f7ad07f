#include "frame_receiver.h"

#include <VL.h>

#include <algorithm>
#include <cstring>
#include <exception>

FrameReceiver::FrameReceiver(FrameQueue& queue, const ReceiverSettings& settings)
    : queue_(queue), settings_(settings), probe_(settings.tick_ns) {
    Expect();
}

void FrameReceiver::OnImage(void* context, K_IMAGE_INFO* image) noexcept {
    auto& self = *static_cast<FrameReceiver*>(context);
    // The caller is C code on the stream's thread: an exception must not reach it.
    try {
        self.Take(*image);
    } catch (const std::exception& failure) {
        self.Fail(failure.what());
    }
}

void FrameReceiver::Expect() {
    const std::lock_guard lock(mutex_);
    state_.last_image = Clock::now();
}

bool FrameReceiver::WaitForEnd(std::chrono::milliseconds time) const {
    std::unique_lock lock(mutex_);
    return ended_.wait_for(lock, time, [this] { return IsFinished(); });
}

Reception FrameReceiver::State() const {
    const std::lock_guard lock(mutex_);
    Reception state = state_;
    if (delivering_) state.last_image = Clock::now();
    return state;
}

void FrameReceiver::Take(const K_IMAGE_INFO& image) {
    FrameTiming timing = probe_.Measure(image);
    timing.unwritten = queue_.Size();
    const std::optional<Ticket> ticket = Enter(image, timing);
    if (!ticket) return;
    if (!settings_.writes) return Leave(ticket->bytes);
    Frame frame{ticket->number, image, queue_.TakeMemory(), timing.incomplete, nullptr};
    const auto* begin = static_cast<const uint8_t*>(image.image_data);
    frame.data.assign(begin, begin + ticket->bytes);
    frame.info.image_data = frame.data.data();
    frame.info.image_size = static_cast<uint32_t>(ticket->bytes);
    if (settings_.chunks != nullptr) frame.chunks = settings_.chunks->Read();
    const bool queued = queue_.Push(std::move(frame));
    Leave(queued ? ticket->bytes : 0);
}

std::optional<FrameReceiver::Ticket> FrameReceiver::Enter(const K_IMAGE_INFO& image, const FrameTiming& timing) {
    const std::lock_guard lock(mutex_);
    if (IsFinished() || (settings_.wanted != 0 && entered_ == settings_.wanted)) return std::nullopt;
    state_.missing += timing.missing;
    uint64_t bytes = 0;
    const VL_STATUS size_known = vlGetRawSize(&image, &bytes);
    // A format that the imaging library does not know is kept as it is: raw files can hold it.
    if (size_known == VL_ST_NOT_IMPLEMENTED) bytes = image.image_size;
    const bool fits = image.image_data != nullptr && (size_known == VL_ST_SUCCESS || size_known == VL_ST_NOT_IMPLEMENTED);
    const bool is_incomplete = timing.incomplete || !fits;
    if (settings_.keep_timings) {
        timings_.push_back(timing);
        timings_.back().incomplete = is_incomplete;
    }
    if (is_incomplete) ++state_.incomplete;
    if (!fits || (is_incomplete && !settings_.keep_incomplete)) return std::nullopt;
    const Clock::time_point now = Clock::now();
    if (!state_.first) state_.first = now;
    state_.last = now;
    state_.width = image.width;
    state_.height = image.height;
    state_.pixel_type = image.pixel_type;
    delivering_ = true;
    return Ticket{++entered_, bytes};
}

void FrameReceiver::Leave(uint64_t queued_bytes) {
    const std::lock_guard lock(mutex_);
    state_.frames += queued_bytes != 0 ? 1 : 0;
    state_.bytes += queued_bytes;
    state_.last_image = Clock::now();
    delivering_ = false;
    if (IsFinished()) ended_.notify_all();
}

void FrameReceiver::Fail(const std::string& reason) {
    const std::lock_guard lock(mutex_);
    state_.failure = reason;
    delivering_ = false;
    ended_.notify_all();
}

bool FrameReceiver::IsFinished() const {
    return !state_.failure.empty() || (settings_.wanted != 0 && state_.frames == settings_.wanted);
}
