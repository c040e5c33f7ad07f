#include "camera/chunk_ports.h"

#include "camera/module_node_map.h"
#include "transport/status.h"

namespace GenICam::Factory {

namespace {

template <class Work>
K_STATUS_CODES succeeds(Work work) {
    return kiv::answer_of([&]() -> K_STATUS_CODES {
        work();
        return K_ST_SUCCESS;
    });
}

}  // namespace

/// One call; the outermost one of the thread that holds the lock does what was put off.
class CChunkPorts::Use {
public:
    explicit Use(CChunkPorts& ports) : ports_(ports), lock_(ports.section_) { ++ports_.depth_; }
    ~Use() {
        if (--ports_.depth_ == 0 && ports_.end_later_) ports_.End();
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

private:
    CChunkPorts& ports_;
    GEV::CAutoLock lock_;
};

CChunkPorts::~CChunkPorts() { End(); }

K_STATUS_CODES CChunkPorts::Attach(void* buffer, std::int64_t length, const GenApi::SingleChunkData_t* chunks,
                                   std::uint64_t count) noexcept {
    Use use(*this);
    auto* map = owner_.GetNodeMap();
    if (!map || !buffer || !chunks) return K_ST_INVALID_PARAMETER;
    if (!adapter_)
        kiv::answer_of([&] { return adapter_ = std::make_unique<GenApi::CChunkAdapterGeneric>(map, -1), K_ST_SUCCESS; });
    if (!adapter_ || count == 0) return K_ST_NOT_INITIALIZED;
    return succeeds([&] {
        auto* bytes = static_cast<std::uint8_t*>(buffer);
        auto entries = static_cast<std::int64_t>(count);
        if (length == unknown_length)
            adapter_->AttachBuffer(bytes, chunks, entries, &statistics_);
        else
            adapter_->AttachBuffer(bytes, length, chunks, entries, &statistics_);
    });
}

K_STATUS_CODES CChunkPorts::Update(void* buffer) noexcept {
    Use use(*this);
    if (!owner_.GetNodeMap() || !adapter_) return K_ST_INVALID_PARAMETER;
    return succeeds([&] { adapter_->UpdateBuffer(static_cast<std::uint8_t*>(buffer)); });
}

void CChunkPorts::Release() noexcept {
    Use use(*this);
    if (adapter_) succeeds([&] { adapter_->DetachBuffer(); });
}

K_STATUS_CODES CChunkPorts::Detach() noexcept {
    Use use(*this);
    if (!owner_.GetNodeMap()) return K_ST_INVALID_PARAMETER;
    if (depth_ == 1) return End();
    // Inside a callback of one of the ports, which must not go while they are being walked through, or made.
    end_later_ = true;
    return K_ST_SUCCESS;
}

K_STATUS_CODES CChunkPorts::End() noexcept {
    end_later_ = false;
    // Out of sight first: callbacks that fire during the end see none.
    std::unique_ptr<GenApi::CChunkAdapterGeneric> ended = std::move(adapter_);
    if (!ended) return K_ST_SUCCESS;
    return succeeds([&] {
        ended->DetachBuffer();
        ended->ClearCaches();
        ended->DetachNodeMap();
    });
}

}  // namespace GenICam::Factory
