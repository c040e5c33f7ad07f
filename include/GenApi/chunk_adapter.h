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
    /// A copy has no node map: a port node has room for one implementation.
    CChunkAdapter(const CChunkAdapter&);
    CChunkAdapter& operator=(const CChunkAdapter&);
    virtual ~CChunkAdapter();

    /// The map is borrowed: it must live until DetachNodeMap() or this object's end.
    void AttachNodeMap(INodeMap* map);
    void DetachNodeMap();
    virtual bool CheckBufferLayout(uint8_t* buffer, int64_t length) = 0;
    virtual void AttachBuffer(uint8_t* buffer, int64_t length, AttachStatistics_t* statistics = nullptr) = 0;
    /// The buffer may be reused afterwards. Copies of chunks whose port asks for one stay readable.
    virtual void DetachBuffer();
    /// The same layout in another buffer.
    virtual void UpdateBuffer(uint8_t* base);
    void ClearCaches();

protected:
    /// Lays the chunks under the ports. `bufferLength` of -1 is unknown. A list that cannot be true (an offset or a length that
    /// is negative or outside the buffer) detaches all ports and throws InvalidArgumentException. Of chunks with one id the first
    /// counts.
    void AttachChunks(uint8_t* buffer, int64_t bufferLength, const SingleChunkData_t* chunks, int64_t count,
                      AttachStatistics_t* statistics);

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

    /// The buffer and the list must be as the list says; where the buffer's length is known, the other form checks it.
    void AttachBuffer(uint8_t* buffer, const SingleChunkData_t* chunks, int64_t count, AttachStatistics_t* statistics = nullptr);
    void AttachBuffer(uint8_t* buffer, int64_t bufferLength, const SingleChunkData_t* chunks, int64_t count,
                      AttachStatistics_t* statistics = nullptr);
    /// The generic adapter knows no layout of its own: these answer false and throw LogicalErrorException.
    bool CheckBufferLayout(uint8_t* buffer, int64_t length) override;
    void AttachBuffer(uint8_t* buffer, int64_t length, AttachStatistics_t* statistics = nullptr) override;
};

}  // namespace GenApi
