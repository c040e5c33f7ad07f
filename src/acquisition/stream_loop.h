/// The stream thread's loop: a buffer comes, is described, handed out, and queued again.
#pragma once

#include <chrono>

#include "acquisition/chunk_data.h"
#include "acquisition/image_info.h"
#include "acquisition/stream_thread.h"

namespace ImageLib {

/// Lives on the stream thread for as long as it runs. Throws ProducerGate::Shut when it must leave at once.
class CStreamThread::Loop {
public:
    Loop(CStreamThread& thread, GenICam::Factory::CRemoteDeviceClass& remote);

    void Run();

private:
    using Clock = std::chrono::steady_clock;

    void OneBuffer(GenTL::BUFFER_HANDLE buffer);
    bool Describe(BufferQuestion& question);
    void Deliver();
    void BalanceWhite(kiv::ImageDisplay* display);
    void Queue(GenTL::BUFFER_HANDLE buffer);
    K_STATUS_CODES TryToQueue(GenTL::BUFFER_HANDLE buffer);
    void QueueLeftOver();

    CStreamThread& thread_;
    const GenTL::DS_HANDLE stream_;
    const GenTL::EVENT_HANDLE new_buffer_event_;
    ImageDescriber describer_;
    ChunkData chunks_;
    K_IMAGE_INFO info_{};
    std::array<GenTL::BUFFER_HANDLE, BufferRing::most_buffers> left_over_{};  // that the producer did not take back yet
    std::size_t left_over_count_ = 0;
};

}  // namespace ImageLib
