/// The chunk features of a camera: which buffer they read from.
///
/// Any function may be called from any thread, one at a time runs. Nobody may read chunk features meanwhile: their values change
/// under the reader's feet. Node callbacks of chunk features run inside; what they detach is detached when the call that they run
/// in is over.
#pragma once

#include <GenApi/chunk_adapter.h>
#include <kiv/types.h>

#include <memory>

#include "transport/lock.h"

namespace GenICam::Factory {

class CModuleNodeMap;

class CChunkPorts {
public:
    /// `owner` has the node map and outlives this object.
    explicit CChunkPorts(CModuleNodeMap& owner) : owner_(owner) {}
    ~CChunkPorts();
    CChunkPorts(const CChunkPorts&) = delete;
    CChunkPorts& operator=(const CChunkPorts&) = delete;

    static constexpr std::int64_t unknown_length = -1;

    /// Makes the adapter when there is none, and lays the list under the features. The buffer is borrowed. A length that is known
    /// bounds offsets and lengths of the list.
    K_STATUS_CODES Attach(void* buffer, std::int64_t length, const GenApi::SingleChunkData_t* chunks,
                          std::uint64_t count) noexcept;
    /// The same layout in another buffer.
    K_STATUS_CODES Update(void* buffer) noexcept;
    /// No buffer for now: the features are not available. The adapter stays.
    void Release() noexcept;
    /// Ends it; the next Attach makes a new adapter.
    K_STATUS_CODES Detach() noexcept;

private:
    class Use;
    K_STATUS_CODES End() noexcept;

    CModuleNodeMap& owner_;
    GEV::CCriticalSection section_;
    int depth_ = 0;
    bool end_later_ = false;
    std::unique_ptr<GenApi::CChunkAdapterGeneric> adapter_;
    GenApi::AttachStatistics_t statistics_{};  // of the last attach
};

}  // namespace GenICam::Factory
