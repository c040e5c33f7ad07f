/// The state of one node map, shared by its nodes. The map itself (node_map.h) is the face of it.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "GenApi/i_node_map.h"
#include "link/name_table.h"
#include "record/records.h"
#include "runtime/arena.h"
#include "runtime/callback_book.h"
#include "runtime/dependency_graph.h"
#include "runtime/evaluation.h"
#include "runtime/location_index.h"

namespace kiv::genapi {

class Location;
class Node;

struct Engine {
    // Fixed once the map is built.
    RecordTable table;
    NameTable names;
    Arena arena;
    std::vector<Node*> nodes;          ///< element i belongs to record i
    std::vector<Location*> locations;  ///< vertex nodes.size() + i of the graph
    DependencyGraph graph;
    LocationIndex locationIndex;
    std::vector<std::vector<uint32_t>> selecting;  ///< by node, empty unless there is a selector at all
    std::unordered_map<const Node*, std::string> faults;
    std::vector<Node*> polled;
    std::string deviceName;
    GenApi::INodeMap* map = nullptr;

    // Guarded by the lock.
    mutable GenApi::CLock lock;
    Evaluator evaluator;
    CallbackBook callbacks;
    const char* operation = "";
    int operationDepth = 0;

    /// Null when there is none; an optional "Std::" or "Cust::" is let pass.
    Node* Find(std::string_view name) const;
    /// `vertex` shows another value, because it was written or because what it is computed from did.
    void Changed(uint32_t vertex) { Spread(vertex, Effect::Changes); }
    /// `vertex` may show another value in the device: it has to be read again.
    void Outdated(uint32_t vertex) { Spread(vertex, Effect::Outdates); }
    void OutdateAll();

private:
    void Spread(uint32_t origin, Effect effect);
    void Visit(uint32_t vertex, Effect effect);
    void Announce(Node& node);

    struct Mark {
        uint32_t changed = 0, dropped = 0;
    };
    std::vector<Mark> marks_;  // by vertex: the last walk that came by
    std::vector<DependencyGraph::Edge> queue_;
    uint32_t walk_ = 0;
};

}  // namespace kiv::genapi
