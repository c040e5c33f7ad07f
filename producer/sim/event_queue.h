/// One registered event: the entries that were fired and not yet fetched, and the threads that wait for them.
///
/// A stream's output queue is the EventQueue of its EVENT_NEW_BUFFER: an entry holds the filled buffer, and whoever takes the
/// entry out takes the buffer out of the output queue in the same step.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "buffer.h"
#include "handles.h"
#include "info.h"

namespace kivsim {

struct EventEntry {
    std::string data;                ///< what EventGetData writes
    std::shared_ptr<Buffer> buffer;  ///< EVENT_NEW_BUFFER only
};

EventEntry new_buffer_entry(const std::shared_ptr<Buffer>& buffer);
EventEntry error_entry(GC_ERROR code, std::string_view text);

class EventQueue : public Object {
public:
    explicit EventQueue(GenTL::EVENT_TYPE type, EntryFaults* faults = nullptr) : type_(type), faults_(faults) {}

    EntryFaults* Faults() override { return faults_; }
    /// Most bytes that an entry has, where it is more than the type says. Before the handle is known to anybody.
    void SetLargest(size_t size) noexcept { largest_ = size; }

    GenTL::EVENT_TYPE Type() const noexcept { return type_; }

    /// Appends an entry and wakes a waiter. False, and nothing done, when the event is no longer registered.
    bool Push(EventEntry entry);
    /// Waits for an entry and writes it; a null buffer drops it. Throws TIMEOUT, ABORT (killed or unregistered),
    /// BUFFER_TOO_SMALL, IO (the camera is gone); the queue is unchanged then.
    void Get(void* buffer, size_t* size, uint64_t timeout_ms);
    /// Takes all entries out. The buffers in them are in no queue any more.
    std::vector<std::shared_ptr<Buffer>> Flush();
    /// One Get, under way or to come, ends with ABORT.
    void Kill();
    /// From now on an empty queue fails with IO instead of waiting.
    void Disconnect();
    /// The registration ends: waits end with ABORT, entries are dropped.
    void Close();

    size_t Count() const;
    Info GetInfo(GenTL::EVENT_INFO_CMD command) const;
    /// Takes apart what Get wrote.
    Info GetDataInfo(const void* data, size_t size, GenTL::EVENT_DATA_INFO_CMD command) const;

private:
    bool WaitForEntry(std::unique_lock<std::mutex>& guard, uint64_t timeout_ms);

    const GenTL::EVENT_TYPE type_;
    EntryFaults* const faults_;
    std::atomic<size_t> largest_{0};
    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::deque<EventEntry> entries_;
    uint64_t fired_ = 0;
    uint64_t kills_ = 0;  ///< asked for and not yet spent
    bool disconnected_ = false;
    bool closed_ = false;
};

}  // namespace kivsim
