#include "event_queue.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "device_events.h"

namespace kivsim {
namespace {

/// The layout of an EVENT_ERROR entry is the producer's own; EventGetDataInfo takes it apart.
struct ErrorData {
    int32_t code;
    char text[252];
};

template <typename T>
std::string bytes_of(const T& value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename T>
T value_of(const void* data, size_t size) {
    if (size < sizeof(T)) fail(GenTL::GC_ERR_INVALID_PARAMETER, "The event data is shorter than its event type has it");
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

/// A consumer that does not fetch its events loses the newest ones. Buffers are not counted: there are only so many.
constexpr size_t longest_queue = 4096;

size_t data_size(GenTL::EVENT_TYPE type) {
    if (const size_t size = device_event_size(type)) return size;
    return type == GenTL::EVENT_NEW_BUFFER ? sizeof(GenTL::EVENT_NEW_BUFFER_DATA) : sizeof(ErrorData);
}

size_t largest_data_info(GenTL::EVENT_TYPE type) {
    if (const size_t size = device_event_size(type)) return std::max(size, sizeof "9001");
    return type == GenTL::EVENT_NEW_BUFFER ? sizeof(void*) : sizeof(ErrorData::text);
}

Info new_buffer_info(const GenTL::EVENT_NEW_BUFFER_DATA& data, GenTL::EVENT_DATA_INFO_CMD command) {
    switch (command) {
        case GenTL::EVENT_DATA_ID:
            return Info::Pointer(data.BufferHandle);
        case GenTL::EVENT_DATA_VALUE:
            return Info::Pointer(data.pUserPointer);
        case GenTL::EVENT_DATA_NUMID:
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "A new buffer has no number");
        default:
            fail_unknown_command("EventGetDataInfo", command);
    }
}

Info error_info(const ErrorData& data, GenTL::EVENT_DATA_INFO_CMD command) {
    switch (command) {
        case GenTL::EVENT_DATA_ID:
            return Info::Int32(data.code);
        case GenTL::EVENT_DATA_VALUE:
            return Info::Text({data.text, strnlen(data.text, sizeof data.text)});
        case GenTL::EVENT_DATA_NUMID:
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "Error codes are negative, event numbers are not");
        default:
            fail_unknown_command("EventGetDataInfo", command);
    }
}

}  // namespace

EventEntry new_buffer_entry(const std::shared_ptr<Buffer>& buffer) {
    return {bytes_of(GenTL::EVENT_NEW_BUFFER_DATA{buffer->Handle(), buffer->UserPointer()}), buffer};
}

EventEntry error_entry(GC_ERROR code, std::string_view text) {
    ErrorData data{code, {}};
    text.copy(data.text, sizeof data.text - 1);
    return {bytes_of(data), nullptr};
}

bool EventQueue::Push(EventEntry entry) {
    const std::scoped_lock guard(lock_);
    if (closed_ || (!entry.buffer && entries_.size() >= longest_queue)) return false;
    if (entry.buffer) entry.buffer->SetPlace(Buffer::Place::Output);
    entries_.push_back(std::move(entry));
    ++fired_;
    changed_.notify_one();
    return true;
}

bool EventQueue::WaitForEntry(std::unique_lock<std::mutex>& guard, uint64_t timeout_ms) {
    const auto something = [this] { return closed_ || kills_ > 0 || !entries_.empty() || disconnected_; };
    constexpr uint64_t longest_ms = 1000ULL * 3600 * 24 * 365;  // beyond it the clock's arithmetic could overflow
    if (timeout_ms >= longest_ms) {
        changed_.wait(guard, something);
        return true;
    }
    return changed_.wait_for(guard, std::chrono::milliseconds(timeout_ms), something);
}

void EventQueue::Get(void* buffer, size_t* size, uint64_t timeout_ms) {
    check_pointer(buffer, "pBuffer", true);
    size_t& capacity = mandatory(size, "piSize");
    std::unique_lock guard(lock_);
    if (!WaitForEntry(guard, timeout_ms)) fail(GenTL::GC_ERR_TIMEOUT, "No event within " + std::to_string(timeout_ms) + " ms");
    if (closed_) fail(GenTL::GC_ERR_ABORT, "The event was unregistered");
    if (kills_ > 0) {
        --kills_;
        fail(GenTL::GC_ERR_ABORT, "The wait was killed");
    }
    if (entries_.empty()) fail(GenTL::GC_ERR_IO, "The camera is no longer there");
    EventEntry& first = entries_.front();
    if (buffer && capacity < first.data.size()) {
        changed_.notify_one();  // the entry is still there, for whoever waits with a larger buffer
        fail(GenTL::GC_ERR_BUFFER_TOO_SMALL, "The event has " + std::to_string(first.data.size()) + " bytes");
    }
    if (buffer) std::memcpy(buffer, first.data.data(), first.data.size());
    capacity = buffer ? first.data.size() : 0;
    if (first.buffer) first.buffer->SetPlace(Buffer::Place::Nowhere);
    entries_.pop_front();
}

std::vector<std::shared_ptr<Buffer>> EventQueue::Flush() {
    const std::scoped_lock guard(lock_);
    std::vector<std::shared_ptr<Buffer>> buffers;
    for (EventEntry& entry : entries_) {
        if (!entry.buffer) continue;
        entry.buffer->SetPlace(Buffer::Place::Nowhere);
        buffers.push_back(std::move(entry.buffer));
    }
    entries_.clear();
    return buffers;
}

void EventQueue::Kill() {
    const std::scoped_lock guard(lock_);
    ++kills_;
    changed_.notify_one();
}

void EventQueue::Disconnect() {
    const std::scoped_lock guard(lock_);
    disconnected_ = true;
    changed_.notify_all();
}

void EventQueue::Close() {
    {
        const std::scoped_lock guard(lock_);
        closed_ = true;
        changed_.notify_all();
    }
    Flush();
}

size_t EventQueue::Count() const {
    const std::scoped_lock guard(lock_);
    return entries_.size();
}

Info EventQueue::GetInfo(GenTL::EVENT_INFO_CMD command) const {
    const std::scoped_lock guard(lock_);
    switch (command) {
        case GenTL::EVENT_EVENT_TYPE:
            return Info::Int32(type_);
        case GenTL::EVENT_NUM_IN_QUEUE:
            return Info::Size(entries_.size());
        case GenTL::EVENT_NUM_FIRED:
            return Info::Uint64(fired_);
        case GenTL::EVENT_SIZE_MAX:
            return Info::Size(std::max(data_size(type_), largest_.load()));
        case GenTL::EVENT_INFO_DATA_SIZE_MAX:
            return Info::Size(std::max(largest_data_info(type_), largest_.load()));
        default:
            fail_unknown_command("EventGetInfo", command);
    }
}

Info EventQueue::GetDataInfo(const void* data, size_t size, GenTL::EVENT_DATA_INFO_CMD command) const {
    check_pointer(data, "pInBuffer", false);
    if (device_event_size(type_) != 0) return device_event_info(type_, {static_cast<const char*>(data), size}, command);
    if (type_ == GenTL::EVENT_NEW_BUFFER) return new_buffer_info(value_of<GenTL::EVENT_NEW_BUFFER_DATA>(data, size), command);
    return error_info(value_of<ErrorData>(data, size), command);
}

}  // namespace kivsim
