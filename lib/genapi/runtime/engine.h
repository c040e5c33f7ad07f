/// The state of one node map, shared by its nodes. The map itself (node_map.h) is the face of it.
#pragma once

#include <optional>
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
#include "runtime/vertex_states.h"

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
    VertexStates states;
    Evaluator evaluator;
    CallbackBook callbacks;
    const char* operation = "";
    int operationDepth = 0;

    /// Null when there is none; an optional "Std::" or "Cust::" is let pass.
    Node* Find(std::string_view name) const;

    /// A facet of `vertex` goes into an answer. To be called before the facet is worked out.
    void Ask(uint32_t vertex, Facets facets) {
        if (evaluator.keepers > 0) states.Ask(vertex, facets);
    }
    /// The facets of `vertex` have changed, because it was written or because what they are computed from did.
    void Changed(uint32_t vertex, Facets facets);
    /// `vertex` may show another value in the device: it has to be read again.
    void Outdated(uint32_t vertex) { Spread(vertex, facet::all | facet::drop); }
    void OutdateAll();

    // Callbacks of a node. They decide which changes have to be followed although nobody keeps anything.
    GenApi::CallbackHandleType AddCallback(Node& node, std::unique_ptr<GenApi::CNodeCallback> callback);
    bool RemoveCallback(Node& node, GenApi::CallbackHandleType handle);

private:
    struct Step {
        uint32_t vertex;
        Facets changes;
    };
    struct Mark {
        uint32_t noticed = 0, dropped = 0;
    };

    void Spread(uint32_t origin, Facets changes);
    void Visit(uint32_t vertex, Facets changes);
    void MarkRoutes();
    void MarkRouteTo(uint32_t vertex);

    std::vector<Mark> marks_;  // by vertex: the last walk that came by
    std::vector<Step> queue_;
    uint32_t walk_ = 0;
    bool areRoutesMarked_ = false;
    std::optional<DependencyGraph> backwards_;  // while there are callbacks
    size_t lostRoutes_ = 0;                     // marked for nodes that have no callbacks any more
};

}  // namespace kiv::genapi
