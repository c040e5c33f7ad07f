#include "GenApi/chunk_adapter.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenICam/exceptions.h"

namespace GenApi {

namespace {

bool is_possible(const SingleChunkData_t& chunk, int64_t bufferLength) {
    const int64_t end = bufferLength < 0 ? std::numeric_limits<int64_t>::max() : bufferLength;
    return chunk.ChunkOffset >= 0 && chunk.ChunkOffset <= end &&
           chunk.ChunkLength <= static_cast<uint64_t>(end - chunk.ChunkOffset);
}

}  // namespace

CChunkAdapter::CChunkAdapter(INodeMap* map, int64_t maxChunkCacheSize) : maxChunkCacheSize_(maxChunkCacheSize) {
    if (map) AttachNodeMap(map);
}

CChunkAdapter::CChunkAdapter(const CChunkAdapter& other) : maxChunkCacheSize_(other.maxChunkCacheSize_) {}

CChunkAdapter& CChunkAdapter::operator=(const CChunkAdapter& other) {
    if (this == &other) return *this;
    DetachNodeMap();
    maxChunkCacheSize_ = other.maxChunkCacheSize_;
    return *this;
}

CChunkAdapter::~CChunkAdapter() {
    try {
        DetachNodeMap();
    } catch (...) {  // of a callback that heard of the change; nobody is left to be told
    }
}

void CChunkAdapter::AttachNodeMap(INodeMap* map) {
    if (!map) throw GenICam::InvalidArgumentException("A chunk adapter was given no node map.");
    DetachNodeMap();
    map_ = map;
    NodeList_t all;
    map->GetNodes(all);
    map->RunTogether([&] {
        for (INode* node : all)
            if (node->GetPrincipalInterfaceType() == intfIPort && !ports_.emplace_back().AttachPort(node)) ports_.pop_back();
    });
}

void CChunkAdapter::DetachNodeMap() {
    if (auto* map = std::exchange(map_, nullptr)) map->RunTogether([&] { ports_.clear(); });
}

void CChunkAdapter::AttachChunks(uint8_t* buffer, int64_t bufferLength, const SingleChunkData_t* chunks, int64_t count,
                                 AttachStatistics_t* statistics) {
    if (!map_) throw GenICam::LogicalErrorException("The chunk adapter has no node map.");
    if (!buffer || count < 0 || (!chunks && count > 0))
        throw GenICam::InvalidArgumentException("No buffer, or no list of chunks.");
    const std::span<const SingleChunkData_t> list(chunks, static_cast<size_t>(count));
    auto wrong = std::ranges::find_if(list, [bufferLength](auto& chunk) { return !is_possible(chunk, bufferLength); });
    if (wrong != list.end()) {
        DetachBuffer();  // what was attached before is not what the caller shows now
        throw GenICam::InvalidArgumentException("The chunk of id " + std::to_string(wrong->ChunkID) +
                                                " does not fit into its buffer.");
    }

    AttachStatistics_t counted{static_cast<int>(ports_.size()), static_cast<int>(std::min<int64_t>(count, INT32_MAX)), 0};
    map_->RunTogether([&] {
        for (CChunkPort& port : ports_) {
            const bool hadData = port.HasData();
            port.RefreshChunkID();
            auto chunk = std::ranges::find_if(list, [&port](auto& one) { return port.CheckChunkID(one.ChunkID); });
            if (chunk != list.end()) {
                const auto length = static_cast<int64_t>(chunk->ChunkLength);
                const bool cache = port.WantsCache() && (maxChunkCacheSize_ < 0 || length <= maxChunkCacheSize_);
                port.StoreChunk(buffer, chunk->ChunkOffset, length, cache);
                ++counted.NumAttachedChunks;
            } else {  // a copy of another buffer's chunk would pass for this one's
                port.DropChunk();
                port.DropCache();
            }
            if (hadData || port.HasData()) port.InvalidateNode();
        }
    });
    if (statistics) *statistics = counted;
}

void CChunkAdapter::DetachBuffer() {
    if (!map_) return;
    map_->RunTogether([&] {
        for (CChunkPort& port : ports_)
            if (port.IsAttached()) port.DetachChunk();
    });
}

void CChunkAdapter::UpdateBuffer(uint8_t* base) {
    if (!map_) throw GenICam::LogicalErrorException("The chunk adapter has no node map.");
    if (!base) throw GenICam::InvalidArgumentException("No buffer.");
    map_->RunTogether([&] {
        for (CChunkPort& port : ports_) port.UpdateBuffer(base);
    });
}

void CChunkAdapter::ClearCaches() {
    if (!map_) return;
    map_->RunTogether([&] {
        for (CChunkPort& port : ports_) port.ClearCache();
    });
}

CChunkAdapterGeneric::CChunkAdapterGeneric(INodeMap* map, int64_t maxChunkCacheSize) : CChunkAdapter(map, maxChunkCacheSize) {}
CChunkAdapterGeneric::CChunkAdapterGeneric(const CChunkAdapterGeneric&) = default;
CChunkAdapterGeneric& CChunkAdapterGeneric::operator=(const CChunkAdapterGeneric&) = default;
CChunkAdapterGeneric::~CChunkAdapterGeneric() = default;

void CChunkAdapterGeneric::AttachBuffer(uint8_t* buffer, const SingleChunkData_t* chunks, int64_t count,
                                        AttachStatistics_t* statistics) {
    AttachChunks(buffer, -1, chunks, count, statistics);
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* buffer, int64_t bufferLength, const SingleChunkData_t* chunks, int64_t count,
                                        AttachStatistics_t* statistics) {
    AttachChunks(buffer, std::max<int64_t>(bufferLength, 0), chunks, count, statistics);
}

bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t*, int64_t) { return false; }

void CChunkAdapterGeneric::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*) {
    throw GenICam::LogicalErrorException("The generic chunk adapter needs the list of chunks.");
}

}  // namespace GenApi
