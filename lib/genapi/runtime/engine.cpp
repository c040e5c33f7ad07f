#include "runtime/engine.h"

#include <algorithm>

#include "runtime/node.h"
#include "sources/location.h"

namespace kiv::genapi {

Node* Engine::Find(std::string_view name) const {
    if (name.starts_with("Std::") || name.starts_with("Cust::")) name.remove_prefix(name.find("::") + 2);
    const auto index = names.Find(name, table.records);
    return index == nothing ? nullptr : nodes[index];
}

// ---- spreading a change ----

void Engine::Changed(uint32_t vertex, Facets facets) {
    const Facets changes = facets | facet::notice;
    if (areRoutesMarked_ && !states.Concerns(vertex, changes))
        evaluator.tainted = true;
    else
        Spread(vertex, changes);
}

/// Breadth first over the flat edge list: no recursion, and nothing twice.
void Engine::Spread(uint32_t origin, Facets changes) {
    evaluator.tainted = true;  // an answer that is being worked out right now may rest on what is changing
    if (!areRoutesMarked_) MarkRoutes();
    if (++walk_ == 0) {
        marks_.assign(marks_.size(), {});
        walk_ = 1;
    }
    queue_.clear();
    queue_.push_back({origin, changes});
    for (size_t i = 0; i < queue_.size(); ++i) Visit(queue_[i].vertex, queue_[i].changes);
}

void Engine::Visit(uint32_t vertex, Facets changes) {
    auto& mark = marks_[vertex];
    const bool isNode = vertex < nodes.size();
    auto onward = states.Change(vertex, isNode, changes);
    if (onward & facet::notice) {
        if (mark.noticed == walk_)
            onward &= static_cast<Facets>(~facet::notice);
        else if (isNode)
            callbacks.Wait(*nodes[vertex]);
        mark.noticed = walk_;
    }
    if (changes & facet::drop && mark.dropped != walk_) {
        mark.dropped = walk_;
        onward |= facet::drop;
        if (!isNode) ++evaluator.epoch;  // what was read in the present question is read again too
    }
    if (onward == 0) return;
    for (const auto edge : graph.From(vertex)) {
        const auto arriving = edge.Through(onward);
        if (arriving & facet::drop || states.Concerns(edge.target, arriving)) queue_.push_back({edge.target, arriving});
    }
}

void Engine::OutdateAll() {
    evaluator.tainted = true;
    ++evaluator.epoch;
    states.ChangeAll();
    if (callbacks.IsEmpty()) return;
    for (auto* node : nodes) callbacks.Wait(*node);
}

// ---- which changes have to be followed in any case ----

/// Those of all vertices from which a callback, or a register that has to be read again, can be reached.
void Engine::MarkRoutes() {
    areRoutesMarked_ = true;
    lostRoutes_ = 0;
    marks_.resize(graph.Vertices());
    states.TellNobody();
    backwards_ = graph.Reversed();
    for (uint32_t vertex = 0; vertex < graph.Vertices(); ++vertex) {
        const auto edges = graph.From(vertex);
        const bool outdates = std::any_of(edges.begin(), edges.end(), [](auto edge) { return edge.Is(Link::Invalidator); });
        if (outdates || (vertex < nodes.size() && nodes[vertex]->hasCallbacks_)) MarkRouteTo(vertex);
    }
    if (callbacks.IsEmpty()) backwards_.reset();
}

void Engine::MarkRouteTo(uint32_t vertex) {
    if (states.IsTold(vertex)) return;
    states.Tell(vertex);
    std::vector<uint32_t> found{vertex};
    for (size_t i = 0; i < found.size(); ++i) {
        for (const auto edge : backwards_->From(found[i])) {
            if (states.IsTold(edge.target)) continue;
            states.Tell(edge.target);
            found.push_back(edge.target);
        }
    }
}

GenApi::CallbackHandleType Engine::AddCallback(Node& node, std::unique_ptr<GenApi::CNodeCallback> callback) {
    const auto handle = callbacks.Add(node, std::move(callback));
    if (backwards_)
        MarkRouteTo(node.Index());
    else
        areRoutesMarked_ = false;
    return handle;
}

/// A mark too many costs time, nothing else; so they are made anew only now and then.
bool Engine::RemoveCallback(Node& node, GenApi::CallbackHandleType handle) {
    constexpr size_t patience = 64;
    if (!callbacks.Remove(node, handle)) return false;
    if (!node.hasCallbacks_ && ++lostRoutes_ > patience + callbacks.Nodes()) areRoutesMarked_ = false;
    return true;
}

}  // namespace kiv::genapi
