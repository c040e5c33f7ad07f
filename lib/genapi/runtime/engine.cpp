#include "runtime/engine.h"

#include "runtime/node.h"
#include "sources/location.h"

namespace kiv::genapi {

Node* Engine::Find(std::string_view name) const {
    if (name.starts_with("Std::") || name.starts_with("Cust::")) name.remove_prefix(name.find("::") + 2);
    const auto index = names.Find(name, table.records);
    return index == nothing ? nullptr : nodes[index];
}

void Engine::Announce(Node& node) {
    if (!node.hasCallbacks_ || node.isWaiting_) return;
    node.isWaiting_ = true;
    callbacks.Wait(node);
}

/// Breadth first over the flat edge list: no recursion, each vertex once for each of the two marks.
void Engine::Spread(uint32_t origin, Effect effect) {
    evaluator.tainted = true;  // an answer that is being worked out right now may rest on what is changing
    marks_.resize(nodes.size() + locations.size());
    if (++walk_ == 0) {
        marks_.assign(marks_.size(), {});
        walk_ = 1;
    }
    queue_.clear();
    queue_.push_back({origin & 0x3FFFFFFF, static_cast<uint32_t>(effect)});
    for (size_t i = 0; i < queue_.size(); ++i) {
        const auto [vertex, how] = queue_[i];
        Visit(vertex, static_cast<Effect>(how));
    }
}

void Engine::Visit(uint32_t vertex, Effect effect) {
    auto& mark = marks_[vertex];
    const bool isNode = vertex < nodes.size();
    if (effect != Effect::Drops && mark.changed != walk_) {
        mark.changed = walk_;
        if (isNode) {
            nodes[vertex]->Forget();
            Announce(*nodes[vertex]);
        } else {
            locations[vertex - nodes.size()]->Announced();
        }
        for (const auto edge : graph.From(vertex)) {
            if (edge.effect == static_cast<uint32_t>(Effect::Drops)) continue;
            const auto& target = marks_[edge.target];
            if (target.changed != walk_ || (edge.effect == static_cast<uint32_t>(Effect::Outdates) && target.dropped != walk_))
                queue_.push_back(edge);
        }
    }
    if (effect != Effect::Changes && mark.dropped != walk_) {
        mark.dropped = walk_;
        if (isNode)
            nodes[vertex]->ForgetValue();
        else
            locations[vertex - nodes.size()]->Drop();
        for (const auto edge : graph.From(vertex))
            if (edge.effect == static_cast<uint32_t>(Effect::Drops) && marks_[edge.target].dropped != walk_)
                queue_.push_back(edge);
    }
}

void Engine::OutdateAll() {
    evaluator.tainted = true;
    for (auto* location : locations) {
        location->Announced();
        location->Drop();
    }
    for (auto* node : nodes) {
        node->Forget();
        Announce(*node);
    }
}

}  // namespace kiv::genapi
