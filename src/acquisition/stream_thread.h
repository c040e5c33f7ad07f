/// CStreamThread: opens a stream of a camera, fills a ring of buffers, and acquires on a thread of its own.
///
/// Open() -> the loop runs -> Close(). The callback runs on the loop's thread and holds up the next buffer; the producer
/// meanwhile goes on filling the ring.
///
/// Close() may come from several threads at once and from inside the callback. It waits for a callback that runs, without limit,
/// and for a call into the producer up to five seconds: a producer that never comes back costs a thread, the ring's memory, and
/// nothing else, because the loop shares all that it touches and leaves by the gate. From inside the callback everything is given
/// back at once, except the image's memory, and the loop ends when the callback returns.
#pragma once

#include <kiv/image.h>
#include <kiv/platform/event.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "acquisition/buffer_ring.h"
#include "acquisition/display_control.h"
#include "acquisition/producer_gate.h"
#include "acquisition/stream_statistics.h"
#include "camera/camera.h"

namespace ImageLib {

/// What the caller wants to be called; a bare function without a context is called without one.
struct ImageCallback {
    void* context = nullptr;
    void (*function)(void) = nullptr;

    void operator()(K_IMAGE_INFO& info) const noexcept;
};

class CStreamThread : public std::enable_shared_from_this<CStreamThread> {
public:
    CStreamThread(GenICam::Factory::CCameraClass& camera, std::shared_ptr<DisplayControl> display);
    ~CStreamThread();
    CStreamThread(const CStreamThread&) = delete;
    CStreamThread& operator=(const CStreamThread&) = delete;

    /// Opens the stream, starts the acquisition in the producer, and waits until the loop runs. False: nothing stays open.
    bool Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback);
    /// Stops, waits, and gives everything back. On return nobody uses the camera any more.
    void Close();

    /// Null while no stream is open.
    GenTL::DS_HANDLE Stream() const { return stream_; }
    K_STREAM_STATISTICS Statistics();
    /// GenTL's DSGetBufferInfo of the buffer that the callback is being given; only inside the callback.
    K_STATUS_CODES BufferInfo(GenTL::BUFFER_INFO_CMD command, void* result, std::size_t* size);
    /// When that buffer came, in nanoseconds of the steady clock; only inside the callback.
    K_STATUS_CODES EventTime(std::uint64_t& nanoseconds) const;

private:
    class Loop;

    bool OpenDataStream(std::uint32_t stream_index, std::uint32_t multicast);
    void CloseDataStream();
    bool StartLoop();
    bool StartInProducer();
    void StreamProcess();

    bool IsLoop() const { return loop_id_.load() == std::this_thread::get_id(); }
    void StopInProducer();
    void WaitForLoop();
    void Abandon();
    enum class By { gate, hand };
    void EndInProducer(By way);
    void GiveBack();
    void Join();
    void AskLost();

    GenICam::Factory::CCameraClass& camera_;
    GenICam::Factory::CTLWrapper& producer_;
    GenTL::DEV_HANDLE device_;
    std::shared_ptr<GenICam::Factory::CRemoteDeviceClass> remote_;  // until everything is given back
    std::shared_ptr<DisplayControl> display_;
    std::atomic<GenTL::DS_HANDLE> stream_ = nullptr;
    std::optional<BufferRing> ring_;
    ImageCallback callback_;
    bool is_gige_ = false;
    StreamStatistics statistics_;
    GenTL::BUFFER_HANDLE current_ = nullptr;            // of the image in the callback; the loop's own
    std::chrono::steady_clock::time_point event_time_;  // of that image, as well

    ProducerGate gate_;
    std::atomic<bool> running_ = false;
    std::atomic<bool> started_well_ = false;
    std::atomic<bool> abandoned_ = false;
    kiv::platform::Event started_{kiv::platform::ResetMode::automatic};
    kiv::platform::Event ended_{kiv::platform::ResetMode::manual};
    std::atomic<std::thread::id> loop_id_{};

    std::mutex event_lock_;  // between the loop that ends the event and a close that kills a wait on it
    GenTL::EVENT_HANDLE new_buffer_event_ = nullptr;
    std::once_flag stopped_;
    std::mutex close_lock_;  // held while giving back
    bool given_back_ = false;
    std::mutex join_lock_;
    std::thread thread_;
};

}  // namespace ImageLib
