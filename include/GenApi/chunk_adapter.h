#pragma once

#include <cstddef>
#include <cstdint>
#include <list>

#include "GenApi/chunk_port.h"

namespace GenApi {

class INodeMap;

struct AttachStatistics_t {
    int NumChunkPorts;      ///< chunk ports of the map
    int NumChunks;          ///< chunks of the buffer
    int NumAttachedChunks;  ///< ports that found their chunk
};

/// Where one chunk stands in its buffer; the form in which producers report it.
struct SingleChunkData_t {
    uint64_t ChunkID;
    int64_t ChunkOffset;
    uint64_t ChunkLength;
};
static_assert(sizeof(SingleChunkData_t) == 24);

/// Lays the chunks of a buffer under the chunk ports of a node map. Ports without a chunk are not available.
class KIV_GENICAM_API CChunkAdapter {
public:
    /// `maxChunkCacheSize` in bytes: larger chunks are never copied. -1: no limit.
    explicit CChunkAdapter(INodeMap* map = nullptr, int64_t maxChunkCacheSize = -1);
    CChunkAdapter(const CChunkAdapter&);
    CChunkAdapter& operator=(const CChunkAdapter&);
    virtual ~CChunkAdapter();

    void AttachNodeMap(INodeMap* map);
    void DetachNodeMap();
    virtual bool CheckBufferLayout(uint8_t* buffer, int64_t length) = 0;
    virtual void AttachBuffer(uint8_t* buffer, int64_t length, AttachStatistics_t* statistics = nullptr) = 0;
    virtual void DetachBuffer();
    virtual void UpdateBuffer(uint8_t* base);
    void ClearCaches();

protected:
    INodeMap* map_ = nullptr;
    std::list<CChunkPort> ports_;
    int64_t maxChunkCacheSize_;
};

/// For buffers whose layout somebody else has taken apart.
class KIV_GENICAM_API CChunkAdapterGeneric : public CChunkAdapter {
public:
    explicit CChunkAdapterGeneric(INodeMap* map = nullptr, int64_t maxChunkCacheSize = -1);
    CChunkAdapterGeneric(const CChunkAdapterGeneric&);
    CChunkAdapterGeneric& operator=(const CChunkAdapterGeneric&);
    ~CChunkAdapterGeneric() override;

    void AttachBuffer(uint8_t* buffer, const SingleChunkData_t* chunks, int64_t count, AttachStatistics_t* statistics = nullptr);
    /// The generic adapter knows no layout of its own.
    bool CheckBufferLayout(uint8_t* buffer, int64_t length) override;
    void AttachBuffer(uint8_t* buffer, int64_t length, AttachStatistics_t* statistics = nullptr) override;
};

}  // namespace GenApi
