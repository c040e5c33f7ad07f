/// Events of a camera's device or of a stream: registering them in the producer, serving those that need a thread, getting at
/// their data.
///
/// ModuleEvents are all events of one module: a stream has its own, a camera's are kept by the camera and found by
/// camera_events(). EventRegistration is one of them, as the caller holds it. A registration outlives its module: once the module
/// is closed every call on it answers K_ST_INVALID_HANDLE, and the producer is not asked.
#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "acquisition/event_thread.h"
#include "camera/camera.h"

namespace kiv {

class ModuleEvents;

/// The kinds that are more than a producer's event to this library.
namespace event_kind {
inline constexpr std::uint32_t new_buffer = 1;        ///< of streams: 16 bytes
inline constexpr std::uint32_t messages = 1000;       ///< of devices: the camera's event messages, for whoever asks
inline constexpr std::uint32_t device_record = 1001;  ///< of devices, served by a thread: at least 556 bytes
inline constexpr std::uint32_t device_value = 1004;   ///< of devices, served by a thread: 4 bytes
inline constexpr std::uint32_t none = 1005;           ///< this and above are no kinds
}  // namespace event_kind

class EventRegistration {
public:
    explicit EventRegistration(std::shared_ptr<ModuleEvents> module, std::uint32_t kind)
        : module_(std::move(module)), kind_(kind) {}

    /// Served kinds: what the thread stored last, which also lets the thread go on; `size` is then not changed, and a new
    /// buffer's 16 bytes are written whatever it is. Other kinds: asks the producer and waits for up to 10 ms; `size` is the
    /// producer's.
    K_STATUS_CODES GetData(void* buffer, std::uint32_t& size);
    /// EVENT_INFO_CMD; `size` is written whatever the answer.
    K_STATUS_CODES GetInfo(std::int32_t command, void* buffer, std::uint32_t& size);
    K_STATUS_CODES Flush();

private:
    friend class ModuleEvents;
    K_STATUS_CODES Collect(void* buffer, std::uint32_t& size);

    std::shared_ptr<ModuleEvents> module_;
    std::uint32_t kind_;
    GenTL::EVENT_HANDLE event_ = nullptr;
    std::shared_ptr<EventMailbox> mailbox_;  // of a kind that a thread serves
};

class ModuleEvents final : public GenICam::Factory::CCameraAttachment, public std::enable_shared_from_this<ModuleEvents> {
public:
    enum class Source { camera, stream };

    ModuleEvents(GenICam::Factory::CTLWrapper& producer, GenTL::EVENTSRC_HANDLE module, Source source)
        : producer_(producer), module_(module), source_(source) {}
    ~ModuleEvents() { End(); }

    /// Registers the event and starts its thread, where it gets one: on streams every kind, on cameras the kinds 1001 and 1004.
    /// The answer is the producer's; how the thread's start went is not part of it.
    K_STATUS_CODES Register(std::uint32_t kind, const EventTarget& target, std::shared_ptr<EventRegistration>& registered);
    /// Answers what the producer says. A stream's thread ends before the producer is told, a camera's after.
    K_STATUS_CODES Unregister(std::uint32_t kind);

    /// The module is about to be closed: from now on nothing calls the producer for it, except a thread that is inside a call.
    void AskToEnd() noexcept;
    /// Waits for the threads, each for up to five seconds.
    void End() noexcept;

private:
    friend class EventRegistration;
    void CameraCloses() override { End(); }
    void Serve(EventRegistration& registration, const EventTarget& target);
    void EndThread(std::uint32_t kind) noexcept;
    K_STATUS_CODES TellProducer(std::uint32_t kind);
    bool IsStream() const { return source_ == Source::stream; }

    GenICam::Factory::CTLWrapper& producer_;
    GenTL::EVENTSRC_HANDLE module_;
    Source source_;
    std::atomic<bool> ended_ = false;
    std::mutex lock_;  // held while registering and unregistering: one at a time on a module
    std::map<std::uint32_t, std::unique_ptr<EventThread>> threads_;
};

/// The events of a camera's device. Throws StatusError K_ST_INVALID_HANDLE for a camera that is closing.
std::shared_ptr<ModuleEvents> camera_events(GenICam::Factory::CCameraClass& camera);

}  // namespace kiv
