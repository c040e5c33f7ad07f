#include "acquisition/stream_loop.h"

#include <kiv/platform/debug_output.h>

#include <algorithm>

namespace ImageLib {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t event_timeout_ms = 1000;
// The display shows what it can: an image is left out while this many wait behind it.
constexpr std::uint32_t too_many_waiting = 2;

}  // namespace

CStreamThread::Loop::Loop(CStreamThread& thread, GenICam::Factory::CRemoteDeviceClass& remote)
    : thread_(thread),
      stream_(thread.stream_),
      new_buffer_event_(thread.new_buffer_event_),
      describer_(thread.camera_, remote.GetNodeMap(), *thread.ring_, thread.is_gige_),
      chunks_(remote.Chunks()) {}

void CStreamThread::Loop::Run() {
    while (thread_.running_) {
        info_.pass_state = 1;
        GenTL::EVENT_NEW_BUFFER_DATA filled{};
        std::size_t size = sizeof filled;
        const auto asked = Clock::now();
        auto status = thread_.gate_.Through(
            [&] { return thread_.producer_.EventGetData(new_buffer_event_, &filled, &size, event_timeout_ms); });
        if (status == GenTL::GC_ERR_SUCCESS) thread_.event_time_ = Clock::now();
        if (left_over_count_ > 0 && (status == GenTL::GC_ERR_SUCCESS || status == GenTL::GC_ERR_TIMEOUT)) QueueLeftOver();
        if (status == GenTL::GC_ERR_SUCCESS) {
            OneBuffer(filled.BufferHandle);
        } else if (Clock::now() - asked < 1ms && thread_.running_) {
            // A producer whose device is gone may fail at once, for ever: without a pause that would take a whole core.
            std::this_thread::sleep_for(1ms);
        }
    }
}

void CStreamThread::Loop::OneBuffer(GenTL::BUFFER_HANDLE buffer) {
    auto& statistics = thread_.statistics_;
    if (!buffer) return statistics.Count(&StreamStatistics::skipped);
    BufferQuestion question(thread_.producer_, thread_.gate_, stream_, buffer);
    bool described = Describe(question);
    statistics.NoteFrame(described && describer_.HasFrameId(), info_.frame_id);
    if (!described) {
        statistics.Count(&StreamStatistics::skipped);
        return Queue(buffer);
    }
    info_.pass_state = 2;
    chunks_.Follow(question, info_);
    describer_.Complete(question, info_);
    std::uint8_t incomplete = 0;
    question.Ask(GenTL::BUFFER_INFO_IS_INCOMPLETE, incomplete);
    // Closing: the buffer is revoked, not queued again.
    if (!thread_.running_) return statistics.Count(&StreamStatistics::discarded);
    statistics.Count(&StreamStatistics::delivered);
    if (incomplete) statistics.Count(&StreamStatistics::incomplete);
    thread_.current_ = buffer;
    Deliver();
    thread_.current_ = nullptr;
    Queue(buffer);
}

bool CStreamThread::Loop::Describe(BufferQuestion& question) {
    bool described = describer_.Describe(question, info_);
    if (described) describer_.DescribeQueues(thread_.gate_, stream_, info_);
    if (question.TakeException()) kiv::platform::debug_print(std::wstring_view(thrown_text));
    return described;
}

void CStreamThread::Loop::Deliver() {
    const auto& callback = thread_.callback_;
    if (callback.context && callback.function) return callback(info_);
    auto* display = kiv::image_display.load();
    if (callback.function) {
        BalanceWhite(display);
        return callback(info_);
    }
    if (!display || !display->HasWindow()) return;
    BalanceWhite(display);
    if (info_.await_delivery < too_many_waiting) display->Show(info_, thread_.display_->Gains());
}

void CStreamThread::Loop::BalanceWhite(kiv::ImageDisplay* display) {
    if (!thread_.display_->TakeWhiteBalanceRequest() || !display) return;
    auto gains = thread_.display_->Gains();
    display->BalanceWhite(info_, gains);
    thread_.display_->SetGains(gains);
}

void CStreamThread::Loop::Queue(GenTL::BUFFER_HANDLE buffer) {
    auto status = TryToQueue(buffer);
    if (status == GenTL::GC_ERR_SUCCESS) return;
    thread_.statistics_.Count(&StreamStatistics::requeue_failures);
    // A handle that the producer does not know, or has queued already, is not offered again.
    bool lasting = status == GenTL::GC_ERR_INVALID_HANDLE || status == GenTL::GC_ERR_RESOURCE_IN_USE;
    if (!lasting && left_over_count_ < left_over_.size()) left_over_[left_over_count_++] = buffer;
}

K_STATUS_CODES CStreamThread::Loop::TryToQueue(GenTL::BUFFER_HANDLE buffer) {
    return thread_.gate_.Through([&] { return thread_.producer_.DSQueueBuffer(stream_, buffer); });
}

void CStreamThread::Loop::QueueLeftOver() {
    // A ring that loses a buffer with each passing fault would run dry.
    auto end = left_over_.begin() + static_cast<std::ptrdiff_t>(left_over_count_);
    auto stays =
        std::remove_if(left_over_.begin(), end, [&](auto buffer) { return TryToQueue(buffer) == GenTL::GC_ERR_SUCCESS; });
    left_over_count_ = static_cast<std::size_t>(stays - left_over_.begin());
}

}  // namespace ImageLib
