#pragma once

#include <list>
#include <vector>

#include "GenApi/event_port.h"

namespace GenApi {

class INodeMap;

/// Hands the event messages of a device to the nodes that carry their ids: ports get the data, other nodes are invalidated, and
/// callbacks fire on the delivering thread.
class KIV_GENICAM_API CEventAdapter {
public:
    explicit CEventAdapter(INodeMap* map = nullptr);
    /// A copy has no node map: a port node has room for one implementation.
    CEventAdapter(const CEventAdapter&);
    CEventAdapter& operator=(const CEventAdapter&);
    virtual ~CEventAdapter();

    /// The map is borrowed: it must live until DetachNodeMap() or this object's end.
    void AttachNodeMap(INodeMap* map);
    void DetachNodeMap();
    /// The message of the transport, header included. The bytes are copied.
    virtual void DeliverMessage(const uint8_t* message, uint32_t length) = 0;
    /// One event: `data` is what event ports show, from its address 0. An id that nobody has is let pass.
    void DeliverEvent(const uint8_t* data, uint32_t length, uint64_t id);

private:
    struct EventNode {
        uint64_t id;
        INode* node;
    };
    INodeMap* map_ = nullptr;
    std::list<CEventPort> ports_;
    std::vector<EventNode> nodes_;  // those that are no ports
};

/// For the event packets of GigE Vision's control channel. A packet that is no event, or that ends before it says so, throws
/// InvalidArgumentException and delivers nothing.
class KIV_GENICAM_API CEventAdapterGEV : public CEventAdapter {
public:
    explicit CEventAdapterGEV(INodeMap* map = nullptr);
    CEventAdapterGEV(const CEventAdapterGEV&);
    CEventAdapterGEV& operator=(const CEventAdapterGEV&);
    ~CEventAdapterGEV() override;

    void DeliverMessage(const uint8_t* message, uint32_t length) override;
};

}  // namespace GenApi
