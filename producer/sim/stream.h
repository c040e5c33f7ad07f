/// The data stream module: the announced buffers, the pools that they move between, and the engine that fills them.
///
///     announce -> Nowhere -> queue -> Input -> engine -> Filling -> Output (the EVENT_NEW_BUFFER queue) -> fetched: Nowhere
///
/// The engine is one thread from open to close. It takes every frame that the camera has; a frame is thrown away while the stream
/// is not started, and lost when no buffer is queued.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "buffer.h"
#include "device.h"
#include "module.h"
#include "stream_parameters.h"

namespace kivsim {

/// Unlike the other modules a stream has a lock of its own: but for Close and the port, its members need no lock of the tree.
class Stream : public Module {
public:
    Stream(Session& session, std::shared_ptr<Device> device, uint32_t multicast);
    ~Stream() override;

    const std::shared_ptr<Device>& Owner() const { return device_; }

    /// Null memory: the buffer brings its own.
    std::shared_ptr<Buffer> Announce(void* memory, size_t size, void* user_pointer);
    void Revoke(const std::shared_ptr<Buffer>& buffer);
    void Queue(const std::shared_ptr<Buffer>& buffer);
    void Flush(GenTL::ACQ_QUEUE_TYPE operation);
    void Start(GenTL::ACQ_START_FLAGS flags, uint64_t count);
    void Stop(GenTL::ACQ_STOP_FLAGS flags);

    Info GetInfo(GenTL::STREAM_INFO_CMD command);
    std::shared_ptr<Buffer> BufferAt(uint32_t index);
    Info BufferInfo(const std::shared_ptr<Buffer>& buffer, GenTL::BUFFER_INFO_CMD command);
    std::vector<GenTL::SINGLE_CHUNK_DATA> Chunks(const std::shared_ptr<Buffer>& buffer);
    /// The transport behind a GigE Vision stream, by number. Throws NOT_IMPLEMENTED, ACCESS_DENIED, INVALID_VALUE.
    Info Parameter(int32_t parameter);
    void SetParameter(int32_t parameter, uint32_t value);

    /// Throws INVALID_HANDLE for the buffer of another stream.
    void CheckOwn(const std::shared_ptr<Buffer>& buffer);

    /// Stops, flushes and revokes. With the tree's lock.
    void Close();

    PortIdentity Identity() override;
    EntryFaults* Faults() override { return device_->Faults(); }

private:
    /// What becomes of the buffer that is being filled.
    enum class Interrupt { None, Deliver, ToInput, Discard };
    using Guard = std::unique_lock<std::mutex>;

    void ListFeatures();
    Guard LockOpen();
    void RequireOwn(const std::shared_ptr<Buffer>& buffer) const;
    void ToInput(const std::shared_ptr<Buffer>& buffer);
    void InputToOutput();
    void InterruptFill(Guard& guard, Interrupt interrupt);
    std::shared_ptr<EventQueue> OutputQueue() { return Events().Registered(GenTL::EVENT_NEW_BUFFER); }

    // the engine's thread
    void RunEngine();
    void TakeFrame();
    Buffer::Content Fill(Buffer& buffer, const FrameFaults& faults);
    Buffer::Content FillWrongly(Buffer& buffer, const FrameFaults& faults);
    void RememberFrame(Buffer& buffer, const Buffer::Content& content);
    void UnplugAfter(const FrameFaults& faults);
    size_t Transfer(std::span<const std::byte> frame, std::span<std::byte> buffer);
    void EndFill(const std::shared_ptr<Buffer>& buffer, const Buffer::Content& content);
    void Deliver(const std::shared_ptr<Buffer>& buffer, const Buffer::Content& arrived);

    const std::shared_ptr<Device> device_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<std::shared_ptr<Buffer>> announced_;  ///< in the order of announcing
    std::deque<std::shared_ptr<Buffer>> input_;
    std::shared_ptr<Buffer> filling_;
    Interrupt interrupt_ = Interrupt::None;
    bool started_ = false;   ///< between start and stop
    bool grabbing_ = false;  ///< ... and the asked number is not reached
    bool closing_ = false;
    StreamParameters parameters_;
    uint64_t wanted_ = 0, delivered_ = 0, lost_ = 0, fills_ = 0;
    std::vector<std::byte> line_buffer_;  ///< the frame on a slow link; the engine's alone
    std::vector<std::byte> last_frame_;   ///< kept while frames are to be repeated or torn; the engine's alone
    FrameInfo last_info_;                 ///< what it is
    std::thread engine_;
};

}  // namespace kivsim
