#include "stream.h"

#include <algorithm>
#include <cstring>

#include "camera/chunk_data.h"
#include "flavour.h"
#include "session.h"

namespace kivsim {

namespace {

constexpr size_t least_buffers = 1;

int64_t number(const Info& info) {
    int64_t value = 0;
    std::memcpy(&value, info.Content().data(), std::min(info.Content().size(), sizeof value));
    return value;
}

}  // namespace

Stream::Stream(Session& session, std::shared_ptr<Device> device, uint32_t multicast)
    : Module(session, "StreamPort", "Stream", {GenTL::EVENT_ERROR, GenTL::EVENT_NEW_BUFFER}),
      device_(std::move(device)),
      parameters_(multicast) {
    Events().BelongTo(Faults());
    ListFeatures();
    FinishFeatures();
    device_->Hardware().SetFramesFetched(true);
    engine_ = std::thread([this] { RunEngine(); });
}

Stream::~Stream() {
    {
        const Guard guard(lock_);
        closing_ = true;
    }
    changed_.notify_all();
    device_->Hardware().Wake();
    if (engine_.joinable()) engine_.join();
}

void Stream::ListFeatures() {
    const auto count = [this](GenTL::STREAM_INFO_CMD command) { return [this, command] { return number(GetInfo(command)); }; };
    features_.Category("StreamInformation");
    features_.Text("StreamID", "Identifier of the stream", 256, [this] { return device_->StreamId(); });
    features_.Enumeration("StreamType", "Transport technology", transport_words(),
                          [this] { return transport_word_index(session_.configuration.tl_type); });
    features_.Category("BufferHandlingControl");
    features_.Integer("StreamAnnouncedBufferCount", "Buffers that are announced", count(GenTL::STREAM_INFO_NUM_ANNOUNCED));
    features_.Enumeration("StreamBufferHandlingMode", "Filled buffers are delivered in the order of their filling",
                          {"OldestFirst"}, [] { return 0; });
    features_.Integer("StreamAnnounceBufferMinimum", "Buffers that a start needs", count(GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN));
    features_.Integer("StreamDeliveredFrameCount", "Frames delivered since the last start",
                      count(GenTL::STREAM_INFO_NUM_DELIVERED));
    features_.Integer("StreamLostFrameCount", "Frames lost for lack of a queued buffer", count(GenTL::STREAM_INFO_NUM_UNDERRUN));
    features_.Integer("StreamInputBufferCount", "Buffers that wait for a frame", count(GenTL::STREAM_INFO_NUM_QUEUED));
    features_.Integer("StreamOutputBufferCount", "Filled buffers that wait to be fetched",
                      count(GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY));
    features_.Integer("StreamStartedFrameCount", "Frames whose transfer was begun", count(GenTL::STREAM_INFO_NUM_STARTED));
    features_.Integer("PayloadSize", "Bytes of a frame with the present settings", count(GenTL::STREAM_INFO_PAYLOAD_SIZE));
    features_.Boolean("StreamIsGrabbing", "Whether the stream is started", count(GenTL::STREAM_INFO_IS_GRABBING));
    features_.Integer("StreamChunkCountMaximum", "Most chunks that a buffer can hold", count(GenTL::STREAM_INFO_NUM_CHUNKS_MAX));
    features_.Integer("StreamBufferAlignment", "Alignment that buffers need, in bytes", count(GenTL::STREAM_INFO_BUF_ALIGNMENT));
}

Stream::Guard Stream::LockOpen() {
    Guard guard(lock_);
    if (closing_) fail(GenTL::GC_ERR_INVALID_HANDLE, "The stream was closed");
    return guard;
}

void Stream::RequireOwn(const std::shared_ptr<Buffer>& buffer) const {
    if (std::find(announced_.begin(), announced_.end(), buffer) != announced_.end()) return;
    fail(GenTL::GC_ERR_INVALID_HANDLE, "The buffer is not announced to this stream");
}

void Stream::CheckOwn(const std::shared_ptr<Buffer>& buffer) {
    const Guard guard = LockOpen();
    RequireOwn(buffer);
}

std::shared_ptr<Buffer> Stream::Announce(void* memory, size_t size, void* user_pointer) {
    if (size == 0) fail(GenTL::GC_ERR_INVALID_PARAMETER, "A buffer of no bytes cannot be announced");
    auto buffer = std::make_shared<Buffer>(memory, size, user_pointer);
    const uint32_t limit = device_->Hardware().Faults().announce_limit;
    const Guard guard = LockOpen();
    if (limit != 0 && announced_.size() >= limit)
        fail(GenTL::GC_ERR_RESOURCE_EXHAUSTED, "The stream takes no more than " + std::to_string(limit) + " buffers");
    for (const auto& other : announced_) {
        if (memory && other->Memory() == memory) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "This memory is announced already");
        if (other->OwnsMemory() != buffer->OwnsMemory())
            fail(GenTL::GC_ERR_BUSY, "Buffers of the consumer and of the producer cannot be mixed");
    }
    session_.handles.Add(buffer);
    announced_.push_back(buffer);
    return buffer;
}

void Stream::Revoke(const std::shared_ptr<Buffer>& buffer) {
    const Guard guard = LockOpen();
    RequireOwn(buffer);
    if (buffer->GetPlace() != Buffer::Place::Nowhere) fail(GenTL::GC_ERR_BUSY, "The buffer is queued");
    std::erase(announced_, buffer);
    session_.handles.Remove(*buffer);
}

void Stream::ToInput(const std::shared_ptr<Buffer>& buffer) {
    buffer->SetContent({});
    buffer->SetPlace(Buffer::Place::Input);
    input_.push_back(buffer);
}

void Stream::Queue(const std::shared_ptr<Buffer>& buffer) {
    const Guard guard = LockOpen();
    RequireOwn(buffer);
    if (buffer->GetPlace() != Buffer::Place::Nowhere) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "The buffer is queued already");
    ToInput(buffer);
}

void Stream::InputToOutput() {
    const auto output = OutputQueue();
    for (const auto& buffer : input_)
        if (!output || !output->Push(new_buffer_entry(buffer))) buffer->SetPlace(Buffer::Place::Nowhere);
    input_.clear();
}

void Stream::InterruptFill(Guard& guard, Interrupt interrupt) {
    if (!filling_) return;
    const uint64_t fill = fills_;  // the same buffer may be in the next fill already when this thread wakes
    if (interrupt != Interrupt::None) interrupt_ = interrupt;
    changed_.notify_all();
    changed_.wait(guard, [&] { return !filling_ || fills_ != fill; });
}

void Stream::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
    Guard guard = LockOpen();
    std::vector<std::shared_ptr<Buffer>> fetched;
    const auto empty_output = [&] {
        if (const auto output = OutputQueue()) fetched = output->Flush();
    };
    switch (operation) {
        case GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT:
            return InputToOutput();
        case GenTL::ACQ_QUEUE_OUTPUT_DISCARD:
            return empty_output();
        case GenTL::ACQ_QUEUE_ALL_TO_INPUT:
            InterruptFill(guard, Interrupt::ToInput);
            empty_output();
            for (const auto& buffer : fetched) ToInput(buffer);
            return;
        case GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT:
            for (const auto& buffer : announced_)
                if (buffer->GetPlace() == Buffer::Place::Nowhere) ToInput(buffer);
            return;
        case GenTL::ACQ_QUEUE_ALL_DISCARD:
            for (const auto& buffer : input_) buffer->SetPlace(Buffer::Place::Nowhere);
            input_.clear();
            InterruptFill(guard, Interrupt::Discard);
            return empty_output();
        default:
            fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "There is no flush operation " + std::to_string(operation));
    }
}

void Stream::Start(GenTL::ACQ_START_FLAGS flags, uint64_t count) {
    constexpr GenTL::ACQ_START_FLAGS gige_start = 1;
    if (flags != GenTL::ACQ_START_FLAGS_DEFAULT && !(flavour.gige && flags == gige_start))
        fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "There is no start flag " + std::to_string(flags));
    if (count == 0) fail(GenTL::GC_ERR_INVALID_PARAMETER, "No image at all cannot be acquired");
    device_->Present();
    const Guard guard = LockOpen();
    if (started_) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "The stream is started already");
    if (announced_.size() < least_buffers) fail(GenTL::GC_ERR_INVALID_BUFFER, "No buffer is announced");
    wanted_ = count;
    delivered_ = 0;
    started_ = grabbing_ = true;
}

void Stream::Stop(GenTL::ACQ_STOP_FLAGS flags) {
    if (flags != GenTL::ACQ_STOP_FLAGS_DEFAULT && flags != GenTL::ACQ_STOP_FLAGS_KILL)
        fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "There is no stop flag " + std::to_string(flags));
    Guard guard = LockOpen();
    if (!started_) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "The stream is not started");
    started_ = grabbing_ = false;
    InterruptFill(guard, flags == GenTL::ACQ_STOP_FLAGS_KILL ? Interrupt::Deliver : Interrupt::None);
}

Info Stream::GetInfo(GenTL::STREAM_INFO_CMD command) {
    const Guard guard = LockOpen();
    switch (command) {
        case GenTL::STREAM_INFO_ID:
            return Info::Text(device_->StreamId());
        case GenTL::STREAM_INFO_NUM_DELIVERED:
            return Info::Uint64(delivered_);
        case GenTL::STREAM_INFO_NUM_UNDERRUN:
            return Info::Uint64(lost_);
        case GenTL::STREAM_INFO_NUM_ANNOUNCED:
            return Info::Size(announced_.size());
        case GenTL::STREAM_INFO_NUM_QUEUED:
            return Info::Size(input_.size() + (filling_ ? 1 : 0));
        case GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY: {
            const auto output = OutputQueue();
            return Info::Size(output ? output->Count() : 0);
        }
        case GenTL::STREAM_INFO_NUM_STARTED:
            return Info::Uint64(fills_);
        case GenTL::STREAM_INFO_PAYLOAD_SIZE:
            return Info::Size(device_->Hardware().Faults().size.Of(SizeKind::Payload, device_->Hardware().PayloadSize()));
        case GenTL::STREAM_INFO_IS_GRABBING:
            return Info::Bool(grabbing_);
        case GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE:
            return Info::Bool(true);
        case GenTL::STREAM_INFO_TLTYPE:
            return Info::Text(session_.configuration.tl_type);
        case GenTL::STREAM_INFO_NUM_CHUNKS_MAX:
            return Info::Size(kChunkKinds);
        case GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN:
            return Info::Size(least_buffers);
        case GenTL::STREAM_INFO_BUF_ALIGNMENT:
            return Info::Size(1);
        default:
            fail_unknown_command("DSGetInfo", command);
    }
}

std::vector<GenTL::SINGLE_CHUNK_DATA> Stream::Chunks(const std::shared_ptr<Buffer>& buffer) {
    const Guard guard = LockOpen();
    RequireOwn(buffer);
    return buffer->Chunks();
}

Info Stream::Parameter(int32_t parameter) {
    const Guard guard = LockOpen();
    return parameters_.Get(parameter);
}

void Stream::SetParameter(int32_t parameter, uint32_t value) {
    const Guard guard = LockOpen();
    parameters_.Set(parameter, value);
}

std::shared_ptr<Buffer> Stream::BufferAt(uint32_t index) {
    const Guard guard = LockOpen();
    if (index < announced_.size()) return announced_[index];
    fail(GenTL::GC_ERR_INVALID_INDEX, "There is no buffer " + std::to_string(index) + " of " + std::to_string(announced_.size()));
}

Info Stream::BufferInfo(const std::shared_ptr<Buffer>& buffer, GenTL::BUFFER_INFO_CMD command) {
    const Guard guard = LockOpen();
    RequireOwn(buffer);
    return buffer->GetInfo(command, session_.configuration.tl_type);
}

void Stream::Close() {
    {
        Guard guard(lock_);
        closing_ = true;
        started_ = grabbing_ = false;
        InterruptFill(guard, Interrupt::Discard);
    }
    changed_.notify_all();
    device_->Hardware().Wake();
    engine_.join();
    device_->Hardware().SetFramesFetched(false);
    Retire();
    for (const auto& buffer : announced_) session_.handles.Remove(*buffer);
    device_->StreamClosed();
}

PortIdentity Stream::Identity() {
    PortIdentity identity;
    identity.id = device_->StreamId();
    identity.vendor = producer_vendor;
    identity.model = flavour.model;
    identity.tl_type = session_.configuration.tl_type;
    identity.module = "TLDataStream";
    identity.version = producer_version;
    identity.name = "StreamPort";
    return identity;
}

}  // namespace kivsim
