#pragma once

#include <vector>

#include "GenApi/i_port.h"
#include "GenApi/lock.h"

namespace GenApi {

class INode;

/// One chunk of a buffer as a port. Addresses count from the chunk's start, negative ones from its end.
class KIV_GENICAM_API CChunkPort : public IPort {
public:
    explicit CChunkPort(INode* node = nullptr);
    CChunkPort(const CChunkPort&);
    CChunkPort& operator=(const CChunkPort&);
    ~CChunkPort() override;

    /// Connects itself to a port node. False when the node is no chunk port.
    bool AttachPort(INode* node);
    void DetachPort();

    /// The chunk stands at `base + offset`; it is borrowed, unless `cache` asks for a copy.
    void AttachChunk(uint8_t* base, int64_t offset, int64_t length, bool cache);
    void DetachChunk();
    /// The same layout in another buffer.
    void UpdateBuffer(uint8_t* base);
    void ClearCache();

    bool CheckChunkID(const uint8_t* id, int length) const;
    bool CheckChunkID(uint64_t id) const;
    int GetChunkIDLength() const { return static_cast<int>(chunkId_.size()); }
    EYesNo GetSwapEndianess() const { return swap_; }

    EAccessMode GetAccessMode() const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void InvalidateNode();
    CLock& GetLock() const;

private:
    INode* node_ = nullptr;
    std::vector<uint8_t> chunkId_;
    EYesNo swap_ = No;
    uint8_t* base_ = nullptr;  // borrowed
    int64_t offset_ = 0, length_ = 0;
    std::vector<uint8_t> cache_;
    bool cached_ = false;
};

}  // namespace GenApi
