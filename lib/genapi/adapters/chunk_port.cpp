#include "GenApi/chunk_port.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenICam/exceptions.h"
#include "adapters/hex_id.h"

namespace GenApi {

namespace {

// Two registers that the standard puts where no chunk can reach.
constexpr int64_t addressOfBase = std::numeric_limits<int64_t>::max();
constexpr int64_t addressOfLength = addressOfBase - 15;

void give_number(void* buffer, int64_t length, int64_t number) {
    if (length != sizeof number) throw GenICam::OutOfRangeException("Address and length of a chunk are read as 8 bytes.");
    std::memcpy(buffer, &number, sizeof number);
}

}  // namespace

CChunkPort::CChunkPort(INode* node) {
    if (node) AttachPort(node);
}

CChunkPort::CChunkPort(const CChunkPort& other)
    : IPort(other),
      chunkId_(other.chunkId_),
      idNumber_(other.idNumber_),
      swap_(other.swap_),
      base_(other.base_),
      offset_(other.offset_),
      length_(other.length_),
      cache_(other.cache_),
      cached_(other.cached_) {}

CChunkPort& CChunkPort::operator=(const CChunkPort& other) {
    if (this == &other) return *this;
    DetachPort();
    chunkId_ = other.chunkId_;
    idNumber_ = other.idNumber_;
    swap_ = other.swap_;
    base_ = other.base_;
    offset_ = other.offset_;
    length_ = other.length_;
    cache_ = other.cache_;
    cached_ = other.cached_;
    return *this;
}

CChunkPort::~CChunkPort() {
    try {
        DetachPort();
    } catch (...) {  // of a callback that heard of the change; nobody is left to be told
    }
}

bool CChunkPort::AttachPort(INode* node) {
    DetachPort();
    auto* port = dynamic_cast<IPortConstruct*>(node);
    auto* chunk = dynamic_cast<IChunkPort*>(node);
    if (!port || !chunk) return false;
    gcstring target, attribute;
    const bool idChanges = node->GetProperty("pChunkID", target, attribute);
    std::vector<uint8_t> id;
    if (!idChanges) id = kiv::genapi::id_bytes(chunk->GetChunkID());
    if (!idChanges && id.empty()) return false;

    node_ = node;
    port_ = port;
    SetChunkID(std::move(id));
    idChanges_ = idChanges;
    wantsCache_ = chunk->CacheChunkData() == Yes;
    swap_ = port->GetSwapEndianess();
    port->SetPortImpl(this);
    return true;
}

void CChunkPort::DetachPort() {
    if (!node_) return;
    // Not under the lock: callbacks that ask to be called outside of it must be.
    port_->SetPortImpl(nullptr);
    node_ = nullptr;
    port_ = nullptr;
    DropChunk();
    DropCache();
}

void CChunkPort::SetChunkID(std::vector<uint8_t> id) {
    idNumber_ = kiv::genapi::id_number(id);
    chunkId_ = std::move(id);
}

void CChunkPort::RefreshChunkID() {
    if (!idChanges_) return;
    try {
        SetChunkID(kiv::genapi::id_bytes(dynamic_cast<IChunkPort&>(*node_).GetChunkID()));
    } catch (const GenICam::GenericException&) {  // an id that cannot be read is that of no chunk
        SetChunkID({});
    }
}

void CChunkPort::StoreChunk(uint8_t* base, int64_t offset, int64_t length, bool cache) {
    if (!base || offset < 0 || length < 0 || offset > std::numeric_limits<int64_t>::max() - length)
        throw GenICam::InvalidArgumentException("A chunk of " + std::to_string(length) + " bytes at offset " +
                                                std::to_string(offset) + " of a buffer is not possible.");
    base_ = base;
    offset_ = offset;
    length_ = length;
    cached_ = cache;
    if (cache) cache_.assign(base + offset, base + offset + length);
}

void CChunkPort::AttachChunk(uint8_t* base, int64_t offset, int64_t length, bool cache) {
    if (!node_) return StoreChunk(base, offset, length, cache);
    {
        const AutoLock lock(GetLock());
        StoreChunk(base, offset, length, cache);
    }
    InvalidateNode();
}

void CChunkPort::DetachChunk() {
    if (!node_) return DropChunk();
    {
        const AutoLock lock(GetLock());
        DropChunk();
    }
    InvalidateNode();
}

void CChunkPort::UpdateBuffer(uint8_t* base) {
    if (IsAttached()) AttachChunk(base, offset_, length_, cached_);
}

void CChunkPort::ClearCache() {
    if (!cached_) return;
    if (!node_) return DropCache();
    {
        const AutoLock lock(GetLock());
        DropCache();
    }
    InvalidateNode();
}

bool CChunkPort::CheckChunkID(const uint8_t* id, int length) const {
    if (!id || length <= 0 || chunkId_.empty()) return false;
    return std::ranges::equal(chunkId_, std::span(id, static_cast<size_t>(length)));
}

EAccessMode CChunkPort::GetAccessMode() const { return HasData() ? RO : NA; }

EInterfaceType CChunkPort::GetPrincipalInterfaceType() const { return intfIPort; }

const uint8_t* CChunkPort::Data() const {
    if (base_) return base_ + offset_;
    if (cached_) return cache_.data();
    throw GenICam::AccessException("No chunk is attached to the port.");
}

void CChunkPort::Read(void* buffer, int64_t address, int64_t length) {
    const uint8_t* data = Data();
    if (address == addressOfBase) return give_number(buffer, length, static_cast<int64_t>(reinterpret_cast<intptr_t>(data)));
    if (address == addressOfLength) return give_number(buffer, length, length_);
    const int64_t from = address < 0 ? address + length_ : address;
    if (from < 0 || length < 0 || length > length_ || from > length_ - length)
        throw GenICam::OutOfRangeException("The chunk of " + std::to_string(length_) + " bytes has no " + std::to_string(length) +
                                           " bytes at address " + std::to_string(address) + ".");
    if (length > 0) std::memcpy(buffer, data + from, static_cast<size_t>(length));
}

void CChunkPort::Write(const void*, int64_t, int64_t) {
    throw GenICam::AccessException("The data of a chunk cannot be written.");
}

void CChunkPort::InvalidateNode() {
    if (node_) node_->InvalidateNode();
}

CLock& CChunkPort::GetLock() const {
    if (!node_) throw GenICam::LogicalErrorException("The chunk port is attached to no node.");
    return node_->GetNodeMap()->GetLock();
}

}  // namespace GenApi
