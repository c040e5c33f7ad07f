#include "runtime/dependency_graph.h"

namespace kiv::genapi {

void DependencyGraph::Close(uint32_t vertices) {
    first_.assign(vertices + 1, 0);
    for (const auto& raw : raw_) ++first_[raw.from + 1];
    for (uint32_t i = 0; i < vertices; ++i) first_[i + 1] += first_[i];
    edges_.resize(raw_.size());
    auto next = first_;
    for (const auto& raw : raw_) edges_[next[raw.from]++] = raw.edge;
    raw_ = {};
}

DependencyGraph DependencyGraph::Reversed() const {
    DependencyGraph reversed;
    reversed.raw_.reserve(edges_.size());
    for (uint32_t from = 0; from < Vertices(); ++from)
        for (const auto edge : From(from))
            if (!edge.Is(Link::Origin)) reversed.Add(edge.target, from, static_cast<Link>(edge.link));
    reversed.Close(Vertices());
    return reversed;
}

}  // namespace kiv::genapi
