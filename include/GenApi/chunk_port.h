#pragma once

#include <optional>
#include <vector>

#include "GenApi/i_port.h"
#include "GenApi/lock.h"

namespace GenApi {

class INode;
class IPortConstruct;

/// One chunk of a buffer as a port. Addresses count from the chunk's start, negative ones from its end.
class KIV_GENICAM_API CChunkPort : public IPort {
public:
    explicit CChunkPort(INode* node = nullptr);
    /// A copy has the id and the data, but no node: a port node has room for one implementation.
    CChunkPort(const CChunkPort&);
    CChunkPort& operator=(const CChunkPort&);
    ~CChunkPort() override;

    /// Connects itself to a port node. False when the node is no chunk port. The node is borrowed: it must live until
    /// DetachPort() or this object's end.
    bool AttachPort(INode* node);
    void DetachPort();

    /// The chunk stands at `base + offset`; it is borrowed, unless `cache` asks for a copy.
    void AttachChunk(uint8_t* base, int64_t offset, int64_t length, bool cache);
    void DetachChunk();
    /// The same layout in another buffer. Does nothing while no chunk is attached.
    void UpdateBuffer(uint8_t* base);
    /// Drops the copy; without an attached chunk the port has no data any more.
    void ClearCache();
    bool IsAttached() const { return base_ != nullptr; }
    bool HasData() const { return base_ || cached_; }

    /// As the ones above, with the invalidation left to the caller.
    void StoreChunk(uint8_t* base, int64_t offset, int64_t length, bool cache);
    void DropChunk() { base_ = nullptr; }
    void DropCache() { cached_ = false, cache_.clear(); }
    /// Asks the node for its chunk id again; only an id that comes from another node ever changes.
    void RefreshChunkID();

    /// The bytes of `id` must be those of the description, neither fewer nor more.
    bool CheckChunkID(const uint8_t* id, int length) const;
    /// Compares as numbers.
    bool CheckChunkID(uint64_t id) const { return idNumber_ == id; }
    int GetChunkIDLength() const { return static_cast<int>(chunkId_.size()); }
    EYesNo GetSwapEndianess() const { return swap_; }

    /// Whether the description wants a copy to outlive the buffer.
    bool WantsCache() const { return wantsCache_; }

    /// RO while there is data, otherwise NA.
    EAccessMode GetAccessMode() const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    /// Two addresses do not lie in the chunk: INT64_MAX gives the memory address of its first byte, INT64_MAX - 15 its length,
    /// each as an integer of 8 bytes in the byte order of the machine.
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void InvalidateNode();
    CLock& GetLock() const;

private:
    void SetChunkID(std::vector<uint8_t> id);
    const uint8_t* Data() const;  // throws without a chunk

    INode* node_ = nullptr;
    IPortConstruct* port_ = nullptr;
    std::vector<uint8_t> chunkId_;
    std::optional<uint64_t> idNumber_;
    bool idChanges_ = false;
    bool wantsCache_ = false;
    EYesNo swap_ = No;
    uint8_t* base_ = nullptr;  // borrowed
    int64_t offset_ = 0, length_ = 0;
    std::vector<uint8_t> cache_;
    bool cached_ = false;
};

}  // namespace GenApi
