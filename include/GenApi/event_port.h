#pragma once

#include <optional>
#include <vector>

#include "GenApi/i_port.h"
#include "GenApi/lock.h"

namespace GenApi {

class INode;
class IPortConstruct;

/// The data of one device event as a port: registers behind an event port of the description read the bytes of the last message
/// with its id. Before the first message there is nothing to read and the port is not available.
class KIV_GENICAM_API CEventPort : public IPort {
public:
    /// `node` must be a port of a map; its event id becomes this port's. Null: attach one later.
    explicit CEventPort(INode* node = nullptr);
    /// A copy has the id and the data, but no node: a port node has room for one implementation.
    CEventPort(const CEventPort&);
    CEventPort& operator=(const CEventPort&);
    ~CEventPort() override;

    /// Connects itself to a port node that has an event id. False when the node is none. The node is borrowed: it must live until
    /// DetachNode() or this object's end.
    bool AttachNode(INode* node);
    void DetachNode();

    /// Bytes of the event id as it is written in the description.
    int GetEventIDLength() const { return static_cast<int>(eventId_.size()); }
    /// Compare as numbers, so that leading zeros do not matter; the bytes of `id` begin with the most significant one.
    bool CheckEventID(const uint8_t* id, int length) const;
    bool CheckEventID(uint64_t id) const { return idNumber_ == id; }

    /// Copies the message; what depends on the port is invalidated.
    void AttachEvent(const uint8_t* data, int64_t length);
    void DetachEvent();
    /// As AttachEvent(), with the invalidation left to the caller.
    void StoreEvent(const uint8_t* data, int64_t length);
    /// Drops the copy without invalidating anything.
    void ResetEventDataBuffer() { data_.clear(), attached_ = false; }

    /// RO while there is data, otherwise NA.
    EAccessMode GetAccessMode() const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void InvalidateNode();
    /// The lock of the node's map. Throws LogicalErrorException without a node.
    CLock& GetLock() const;

private:
    INode* node_ = nullptr;
    IPortConstruct* port_ = nullptr;
    std::vector<uint8_t> eventId_;
    std::optional<uint64_t> idNumber_;
    std::vector<uint8_t> data_;
    bool attached_ = false;
};

}  // namespace GenApi
