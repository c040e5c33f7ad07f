// The engine of a data stream: frames of the camera into queued buffers.

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include "camera_state.h"
#include "kiv/platform/thread.h"
#include "stream.h"

namespace kivsim {

using namespace std::chrono_literals;

void Stream::RunEngine() {
    kiv::platform::set_thread_name("KivSim stream");
    Camera& camera = device_->Hardware();
    for (;;) {
        {
            Guard guard(lock_);
            if (closing_) return;
        }
        if (device_->Vanished()) break;
        // The limit is how long it may take until an unplugged camera is noticed.
        if (camera.WaitForFrame(100ms) == Camera::Wait::Frame) TakeFrame();
    }
    Events().FireError(GenTL::GC_ERR_IO, "The camera is no longer there");
    Events().Disconnect();
    Guard guard(lock_);
    grabbing_ = false;
    changed_.wait(guard, [this] { return closing_; });
}

void Stream::TakeFrame() {
    const FrameFaults faults = device_->Hardware().Faults();
    const bool dropped = FrameFaults::Hits(faults.drop_every, faults.next_frame);
    std::shared_ptr<Buffer> buffer;
    {
        const Guard guard(lock_);
        if (grabbing_ && (dropped || input_.empty())) ++lost_;
        if (grabbing_ && !dropped && !input_.empty()) {
            buffer = std::move(input_.front());
            input_.pop_front();
            buffer->SetPlace(Buffer::Place::Filling);
            filling_ = buffer;
            interrupt_ = Interrupt::None;
            ++fills_;
        }
    }
    if (!buffer) {
        device_->Hardware().NextFrame({});
        return UnplugAfter(faults);
    }
    Buffer::Content content;
    try {
        content = FillWrongly(*buffer, faults);
    } catch (const std::exception& error) {
        content.incomplete = true;
        Events().FireError(GenTL::GC_ERR_ERROR, error.what());
    }
    EndFill(buffer, content);
    UnplugAfter(faults);
}

void Stream::UnplugAfter(const FrameFaults& faults) {
    CameraState& state = *device_->Entry().state;
    if (faults.unplug_at_frame == 0 || faults.next_frame < faults.unplug_at_frame || !state.TakeUnplugging()) return;
    state.Unplug(faults.return_after_ms != 0 ? std::optional(std::chrono::milliseconds(faults.return_after_ms)) : std::nullopt);
    device_->Vanished();  // fires the error now, not when somebody looks
}

void Stream::RememberFrame(Buffer& buffer, const Buffer::Content& content) {
    const auto bytes = buffer.Bytes().first(content.filled);
    last_frame_.assign(bytes.begin(), bytes.end());
    last_info_ = content.frame;
}

Buffer::Content Stream::FillWrongly(Buffer& buffer, const FrameFaults& faults) {
    const bool has_last = faults.NeedsLastFrame() && !last_frame_.empty();
    Buffer::Content content;
    if (has_last && FrameFaults::Hits(faults.repeat_every, faults.next_frame)) {
        device_->Hardware().NextFrame({});
        content.frame = last_info_;
        content.filled = std::min(last_frame_.size(), buffer.Bytes().size());
        content.new_data = true;
        std::copy_n(last_frame_.begin(), content.filled, buffer.Bytes().begin());
    } else {
        content = Fill(buffer, faults);
        const size_t end = std::min({content.filled, content.frame.image_size, last_info_.image_size, last_frame_.size()});
        const size_t half = std::min(content.frame.image_size / 2, end);
        if (has_last && FrameFaults::Hits(faults.tear_every, faults.next_frame))
            std::copy_n(last_frame_.begin() + static_cast<ptrdiff_t>(half), end - half, buffer.Bytes().begin() + half);
        else if (faults.NeedsLastFrame())
            RememberFrame(buffer, content);
    }
    content.wrong_size = faults.size;
    return content;
}

Buffer::Content Stream::Fill(Buffer& buffer, const FrameFaults& faults) {
    Camera& camera = device_->Hardware();
    Buffer::Content content;
    auto bytes = buffer.Bytes();
    if (FrameFaults::Hits(faults.incomplete_every, faults.next_frame)) {
        const size_t arrives = camera.PayloadSize() * faults.incomplete_percent / 100;
        bytes = bytes.first(std::clamp<size_t>(arrives, 1, bytes.size()));
    }
    if (device_->Entry().megabytes_per_second == 0) {
        content.frame = camera.NextFrame(bytes);
        content.filled = std::min(content.frame.size, bytes.size());
    } else {
        line_buffer_.resize(camera.PayloadSize());
        content.frame = camera.NextFrame(line_buffer_);
        line_buffer_.resize(std::min(content.frame.size, line_buffer_.size()));
        content.filled = Transfer(line_buffer_, bytes);
    }
    content.new_data = true;
    content.incomplete = content.filled < content.frame.size;
    content.too_large = content.frame.size > buffer.Bytes().size();
    return content;
}

size_t Stream::Transfer(std::span<const std::byte> frame, std::span<std::byte> buffer) {
    using Clock = std::chrono::steady_clock;
    const double bytes_per_second = device_->Entry().megabytes_per_second * 1e6;
    const size_t fits = std::min(frame.size(), buffer.size());
    const size_t piece = std::max<size_t>(frame.size() / 256, 256);
    const Clock::time_point begin = Clock::now();
    for (size_t done = 0; done < frame.size(); done += piece) {
        const auto due = begin + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                                     static_cast<double>(std::min(done + piece, frame.size())) / bytes_per_second));
        Guard guard(lock_);
        if (changed_.wait_until(guard, due, [this] { return interrupt_ != Interrupt::None || closing_; }))
            return std::min(done, fits);
        guard.unlock();
        if (done < fits) std::memcpy(buffer.data() + done, frame.data() + done, std::min(piece, fits - done));
    }
    return fits;
}

void Stream::EndFill(const std::shared_ptr<Buffer>& buffer, const Buffer::Content& content) {
    const Guard guard(lock_);
    const Interrupt interrupt = std::exchange(interrupt_, Interrupt::None);
    filling_.reset();
    buffer->SetPlace(Buffer::Place::Nowhere);
    if (interrupt == Interrupt::ToInput) ToInput(buffer);
    if (interrupt == Interrupt::None || interrupt == Interrupt::Deliver) Deliver(buffer, content);
    changed_.notify_all();
}

void Stream::Deliver(const std::shared_ptr<Buffer>& buffer, const Buffer::Content& arrived) {
    Buffer::Content content = arrived;
    content.missing_packets = parameters_.Arrived(content.filled, content.frame.size);
    buffer->SetContent(content);
    if (content.too_large)
        Events().FireError(GenTL::GC_ERR_BUFFER_TOO_SMALL, "A frame of " + std::to_string(content.frame.size) +
                                                               " bytes came for a buffer of " +
                                                               std::to_string(buffer->Bytes().size()));
    // Nobody listens: there is no output queue that the buffer could stand in.
    const auto output = OutputQueue();
    if (!output || !output->Push(new_buffer_entry(buffer))) return;
    ++delivered_;
    if (wanted_ != GENTL_INFINITE && delivered_ >= wanted_) grabbing_ = false;
}

}  // namespace kivsim
