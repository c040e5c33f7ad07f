/// Who is affected when something changes, as one flat list.
///
/// The vertices are the nodes and the register locations behind them. An edge says what a change of its origin does to its
/// target.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kiv::genapi {

enum class Effect : uint8_t {
    Changes = 0,   ///< what the target has computed from the origin is no longer true
    Outdates = 1,  ///< the device itself may show another value in the target: it must be read again
    Drops = 2,     ///< only when the origin is outdated: the target is where its value comes from
};

class DependencyGraph {
public:
    struct Edge {
        uint32_t target : 30;
        uint32_t effect : 2;
    };

    void Add(uint32_t from, uint32_t to, Effect effect) {
        raw_.push_back({from, {to & 0x3FFFFFFF, static_cast<uint32_t>(effect)}});
    }
    /// Ends the adding.
    void Close(uint32_t vertices);
    std::span<const Edge> From(uint32_t vertex) const {
        return {edges_.data() + first_[vertex], first_[vertex + 1] - first_[vertex]};
    }

private:
    struct RawEdge {
        uint32_t from;
        Edge edge;
    };
    std::vector<RawEdge> raw_;  // while adding
    std::vector<uint32_t> first_;
    std::vector<Edge> edges_;
};

}  // namespace kiv::genapi
