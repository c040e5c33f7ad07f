#include "acquisition/event_registration.h"

#include <GenICam/exceptions.h>

#include <algorithm>
#include <cstring>

namespace kiv {

namespace {

constexpr std::uint64_t direct_timeout_ms = 10;
constexpr std::uint32_t record_size = 556, value_size = sizeof(std::uint32_t);
constexpr std::uint32_t new_buffer_size = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);

/// What is asked of the producer for one event of a served kind.
std::size_t served_size(std::uint32_t kind) {
    if (kind == event_kind::device_value) return value_size;
    return kind == event_kind::device_record ? EventMailbox::capacity : new_buffer_size;
}

void collect(EventMailbox& mailbox, void* buffer, std::size_t size) { mailbox.Collect({static_cast<std::byte*>(buffer), size}); }

}  // namespace

K_STATUS_CODES EventRegistration::GetData(void* buffer, std::uint32_t& size) {
    auto& module = *module_;
    if (module.ended_) return K_ST_INVALID_HANDLE;
    if (kind_ == event_kind::new_buffer || kind_ == event_kind::device_record || kind_ == event_kind::device_value)
        return Collect(buffer, size);
    if (!module.producer_.EventGetData) return K_ST_NOT_IMPLEMENTED;
    std::size_t wide = size;
    auto status = module.producer_.EventGetData(event_, buffer, &wide, direct_timeout_ms);
    size = static_cast<std::uint32_t>(wide);
    return status;
}

K_STATUS_CODES EventRegistration::Collect(void* buffer, std::uint32_t& size) {
    // A kind is only served where it belongs: new buffers on streams, the device's own on cameras.
    bool wants_stream = kind_ == event_kind::new_buffer;
    if (wants_stream != module_->IsStream() || !mailbox_) return K_ST_INVALID_PARAMETER;
    if (kind_ != event_kind::device_record) {
        if (!mailbox_->IsServed()) return K_ST_INVALID_PARAMETER;
        if (!wants_stream && size < value_size) return K_ST_INVALID_PARAMETER;
        collect(*mailbox_, buffer, wants_stream ? new_buffer_size : value_size);
        return K_ST_SUCCESS;
    }
    if (size < record_size) return K_ST_INVALID_PARAMETER;
    auto length = std::max<std::size_t>(mailbox_->Size(), record_size);
    if (length > size) throw GenICam::InvalidArgumentException("Invalid Buffer Size", "EventRegistration", __LINE__);
    collect(*mailbox_, buffer, length);
    return K_ST_SUCCESS;
}

K_STATUS_CODES EventRegistration::GetInfo(std::int32_t command, void* buffer, std::uint32_t& size) {
    auto& module = *module_;
    if (module.ended_) return K_ST_INVALID_HANDLE;
    auto ask = module.producer_.EventGetInfo;
    if (!ask) return K_ST_NOT_IMPLEMENTED;
    GenTL::INFO_DATATYPE type = 0;
    std::size_t wide = size;
    // The count is a 64-bit number in the standard and callers of old bring 32 bits: it goes through a number of ours, which a
    // producer may fill whatever size it was told, and one that keeps to the standard's size is asked for that.
    std::uint64_t count = 0;
    bool narrow = command == GenTL::EVENT_NUM_IN_QUEUE && size >= sizeof(std::uint32_t) && size < sizeof count;
    auto status = ask(event_, command, &type, narrow ? &count : buffer, &wide);
    if (narrow) {
        if (status == GenTL::GC_ERR_BUFFER_TOO_SMALL || status == GenTL::GC_ERR_INVALID_BUFFER) {
            wide = sizeof count;
            status = ask(event_, command, &type, &count, &wide);
        }
        if (status == K_ST_SUCCESS) {
            auto shown = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, 0xFFFFFFFF));
            std::memcpy(buffer, &shown, sizeof shown);
            wide = sizeof shown;
        }
    }
    size = static_cast<std::uint32_t>(wide);
    return status;
}

K_STATUS_CODES EventRegistration::Flush() {
    if (module_->ended_) return K_ST_INVALID_HANDLE;
    auto flush = module_->producer_.EventFlush;
    return flush ? flush(event_) : K_ST_NOT_IMPLEMENTED;
}

K_STATUS_CODES ModuleEvents::Register(std::uint32_t kind, const EventTarget& target,
                                      std::shared_ptr<EventRegistration>& registered) {
    std::lock_guard lock(lock_);
    if (ended_) return K_ST_INVALID_HANDLE;
    std::shared_ptr<EventRegistration> registration = std::make_unique<EventRegistration>(shared_from_this(), kind);
    if (!producer_.GCRegisterEvent) return K_ST_NOT_IMPLEMENTED;
    auto status = producer_.GCRegisterEvent(module_, static_cast<GenTL::EVENT_TYPE>(kind), &registration->event_);
    if (status != K_ST_SUCCESS) return status;
    if (IsStream() || kind == event_kind::device_record || kind == event_kind::device_value) Serve(*registration, target);
    registered = std::move(registration);
    return status;
}

void ModuleEvents::Serve(EventRegistration& registration, const EventTarget& target) {
    EndThread(registration.kind_);
    auto thread = std::make_unique<EventThread>(
        EventThread::Job{producer_, registration.event_, target, served_size(registration.kind_), IsStream()});
    registration.mailbox_ = thread->Mailbox();
    thread->Start();
    threads_[registration.kind_] = std::move(thread);
}

void ModuleEvents::EndThread(std::uint32_t kind) noexcept {
    auto found = threads_.find(kind);
    if (found == threads_.end()) return;
    found->second->End();
    threads_.erase(found);
}

K_STATUS_CODES ModuleEvents::TellProducer(std::uint32_t kind) {
    if (!producer_.GCUnregisterEvent) return K_ST_NOT_IMPLEMENTED;
    return producer_.GCUnregisterEvent(module_, static_cast<GenTL::EVENT_TYPE>(kind));
}

K_STATUS_CODES ModuleEvents::Unregister(std::uint32_t kind) {
    std::lock_guard lock(lock_);
    if (ended_) return K_ST_INVALID_HANDLE;
    // Whatever the producer does, what it throws included, a thread that was to end has ended.
    if (IsStream()) EndThread(kind);
    struct EndAfter {
        ModuleEvents& events;
        std::uint32_t kind;
        ~EndAfter() { events.EndThread(kind); }
    } end_after{*this, kind};
    return TellProducer(kind);
}

void ModuleEvents::AskToEnd() noexcept {
    std::lock_guard lock(lock_);
    ended_ = true;
    for (auto& [kind, thread] : threads_) thread->AskToEnd();
}

void ModuleEvents::End() noexcept {
    AskToEnd();
    std::lock_guard lock(lock_);
    threads_.clear();
}

std::shared_ptr<ModuleEvents> camera_events(GenICam::Factory::CCameraClass& camera) {
    auto events = camera.AttachmentOf<ModuleEvents>(
        [&] { return std::make_shared<ModuleEvents>(camera.Producer(), camera.DeviceHandle(), ModuleEvents::Source::camera); });
    if (!events) fail(K_ST_INVALID_HANDLE);
    return events;
}

}  // namespace kiv
