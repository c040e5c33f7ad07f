/// The event thread of a GigE Vision camera: the device's event messages become changes of its nodes.
///
/// It runs from the opening of a camera to its end, and the node callbacks of event nodes run on it. One of them may close the
/// camera: the node map lives, disconnected, until the callback has returned.
///
/// The thread shares all that it touches. A producer, or a callback, that does not come back within five seconds of the close
/// costs the thread and nothing else.
#pragma once

#include <GenApi/event_adapter.h>
#include <kiv/platform/event.h>

#include <array>
#include <memory>
#include <mutex>
#include <thread>

#include "acquisition/producer_gate.h"
#include "camera/camera.h"

namespace kiv {

class GigEEventThread final : public GenICam::Factory::CCameraAttachment, public std::enable_shared_from_this<GigEEventThread> {
public:
    /// The camera must have a node map.
    explicit GigEEventThread(GenICam::Factory::CCameraClass& camera);
    ~GigEEventThread() override;

    /// False: it is running already, or there is no thread to be had.
    bool Start();
    /// False: the thread did not end in time and is left to itself. From inside one of its callbacks it is not waited for.
    bool Stop() noexcept;

private:
    static constexpr std::size_t longest_message = 576;  // of the control channel: one packet

    void CameraCloses() override { Stop(); }
    void Run();
    void Loop();
    K_STATUS_CODES Read(GenTL::EVENT_HANDLE event, bool more_is_there, std::size_t& size);
    bool MoreIsThere(GenTL::EVENT_HANDLE event);
    void Deliver(std::size_t size);
    void Unregister(bool through_gate);
    bool IsThread() const { return thread_id_.load() == std::this_thread::get_id(); }

    std::shared_ptr<GenICam::Factory::CRemoteDeviceClass> remote_;  // before the adapter, which borrows its node map
    GenApi::CEventAdapterGEV adapter_;
    GenICam::Factory::CTLWrapper& producer_;
    GenTL::DEV_HANDLE device_;
    std::array<std::uint8_t, longest_message> message_{};
    std::size_t queue_count_size_ = 4;  // the form in which this producer tells its queue counts

    ImageLib::ProducerGate gate_;
    std::atomic<bool> running_ = false;
    platform::Event ended_{platform::ResetMode::manual};
    std::atomic<std::thread::id> thread_id_{};
    std::mutex event_lock_;  // between the thread that ends the event and a stop that kills a wait on it
    GenTL::EVENT_HANDLE event_ = nullptr;
    std::thread thread_;
};

/// Starts the thread for a camera of a GigE Vision producer; the camera keeps it. A camera without one works all the same.
void start_gige_events(GenICam::Factory::CCameraClass& camera) noexcept;

}  // namespace kiv
