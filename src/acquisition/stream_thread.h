/// CStreamThread: opens a stream of a camera, fills a ring of buffers, and acquires on a thread of its own.
///
/// Open() -> the loop runs -> Close(). The callback runs on the loop's thread and holds up the next buffer; the producer
/// meanwhile goes on filling the ring. Close() waits for a callback that runs; from inside the callback it returns at once and
/// the loop ends when the callback returns. The loop shares the object, so that a producer that never comes back costs a thread
/// and nothing else.
#pragma once

#include <kiv/image_info.h>
#include <kiv/platform/event.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "acquisition/buffer_ring.h"
#include "camera/camera.h"

namespace ImageLib {

/// What the caller wants to be called; a bare function without a context is called without one.
struct ImageCallback {
    void* context = nullptr;
    void (*function)(void) = nullptr;

    void operator()(K_IMAGE_INFO& info) const;
};

class CStreamThread : public std::enable_shared_from_this<CStreamThread> {
public:
    explicit CStreamThread(GenICam::Factory::CCameraClass& camera);
    ~CStreamThread();
    CStreamThread(const CStreamThread&) = delete;
    CStreamThread& operator=(const CStreamThread&) = delete;

    /// Opens the stream, starts the acquisition in the producer, and waits until the loop runs. False: nothing stays open.
    bool Open(std::uint32_t stream_index, std::uint32_t buffer_size, std::uint32_t multicast, ImageCallback callback);
    /// Stops, joins, and gives everything back. A second call does nothing.
    void Close();

    /// Null while no stream is open.
    GenTL::DS_HANDLE Stream() const { return stream_; }

private:
    bool OpenDataStream(std::uint32_t stream_index, std::uint32_t multicast);
    void CloseDataStream();
    void KillWait();
    void EndEvents();
    void GiveBack();
    bool StartInProducer();
    void StreamProcess();
    void OneImage(const GenTL::EVENT_NEW_BUFFER_DATA& filled, K_IMAGE_INFO& info);

    GenICam::Factory::CTLWrapper& producer_;
    GenTL::DEV_HANDLE device_;
    std::atomic<GenTL::DS_HANDLE> stream_ = nullptr;
    std::optional<BufferRing> ring_;
    ImageCallback callback_;
    bool is_gige_ = false;
    std::mutex event_lock_;  // between the loop that ends the event and a close that kills a wait on it
    GenTL::EVENT_HANDLE new_buffer_event_ = nullptr;
    std::atomic<bool> running_ = false;
    std::atomic<bool> started_well_ = false;
    std::atomic<bool> closed_inside_ = false;  // by the callback: the loop must not touch the stream again
    kiv::platform::Event started_{kiv::platform::ResetMode::automatic};
    std::thread thread_;
};

}  // namespace ImageLib
