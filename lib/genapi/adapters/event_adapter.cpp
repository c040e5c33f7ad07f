#include "GenApi/event_adapter.h"

#include <utility>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenICam/exceptions.h"
#include "adapters/hex_id.h"

namespace GenApi {

CEventAdapter::CEventAdapter(INodeMap* map) {
    if (map) AttachNodeMap(map);
}

CEventAdapter::CEventAdapter(const CEventAdapter&) {}

CEventAdapter& CEventAdapter::operator=(const CEventAdapter& other) {
    if (this != &other) DetachNodeMap();
    return *this;
}

CEventAdapter::~CEventAdapter() {
    try {
        DetachNodeMap();
    } catch (...) {  // of a callback that heard of the change; nobody is left to be told
    }
}

void CEventAdapter::AttachNodeMap(INodeMap* map) {
    if (!map) throw GenICam::InvalidArgumentException("An event adapter was given no node map.");
    DetachNodeMap();
    map_ = map;
    NodeList_t all;
    map->GetNodes(all);
    map->RunTogether([&] {
        for (INode* node : all) {
            const std::optional<uint64_t> id = kiv::genapi::id_number(kiv::genapi::id_bytes(node->GetEventID()));
            if (!id) continue;
            if (ports_.emplace_back().AttachNode(node)) continue;
            ports_.pop_back();
            nodes_.push_back({*id, node});
        }
    });
}

void CEventAdapter::DetachNodeMap() {
    nodes_.clear();
    if (auto* map = std::exchange(map_, nullptr)) map->RunTogether([&] { ports_.clear(); });
}

void CEventAdapter::DeliverEvent(const uint8_t* data, uint32_t length, uint64_t id) {
    if (!map_) return;
    map_->RunTogether([&] {
        for (CEventPort& port : ports_)
            if (port.CheckEventID(id)) port.AttachEvent(data, length);
        for (const EventNode& node : nodes_)
            if (node.id == id) node.node->InvalidateNode();
    });
}

}  // namespace GenApi
