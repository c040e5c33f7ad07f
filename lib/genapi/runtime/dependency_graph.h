/// Who is affected when something changes, as one flat list.
///
/// The vertices are the nodes and the register locations behind them. What changes about a vertex is told apart: a register that
/// was written shows another value, but may be read and written as before. So an edge says what each kind of change of its origin
/// does to its target.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace kiv::genapi {

/// What may change about a vertex, as a set of bits.
using Facets = uint8_t;
namespace facet {
constexpr Facets value = 1;   ///< the value; the bytes of a location
constexpr Facets mode = 2;    ///< the access mode
constexpr Facets limits = 4;  ///< minimum, maximum, increment; address and length of a location
constexpr Facets notice = 8;  ///< that something changed at all: whoever wants to be told is told
constexpr Facets all = 15;
/// No change of its own: the device may show another value, so that what holds it has to be read again.
constexpr Facets drop = 16;
}  // namespace facet

/// How a vertex takes part in another one.
enum class Link : uint8_t {
    Source,       ///< its value is the value, its limits are the limits
    Choice,       ///< it decides where the value comes from
    Limit,        ///< it is one of the limits
    Variable,     ///< a formula uses it
    Condition,    ///< it decides the access mode
    Enabling,     ///< it has to be readable
    Mention,      ///< nothing is computed from it
    Place,        ///< from a term of the address, or the length, to the location
    Bytes,        ///< from the location to what shows its bytes
    Invalidator,  ///< the target must be read again when it changes
    Origin,       ///< followed only when the vertex must be read again: the target is where its value comes from
};

class DependencyGraph {
public:
    struct Edge {
        uint32_t target : 24;
        uint32_t link : 8;

        /// What the changes of the origin do to the target.
        Facets Through(Facets changes) const;
        bool Is(Link kind) const { return link == static_cast<uint32_t>(kind); }
    };

    /// Vertices and their number stay below this; no description comes near it.
    static constexpr uint32_t mostVertices = 1u << 24;

    void Add(uint32_t from, uint32_t to, Link link) {
        raw_.push_back({from, {to & (mostVertices - 1), static_cast<uint32_t>(link)}});
    }
    /// Ends the adding.
    void Close(uint32_t vertices);
    uint32_t Vertices() const { return static_cast<uint32_t>(first_.size() - 1); }
    std::span<const Edge> From(uint32_t vertex) const {
        return {edges_.data() + first_[vertex], first_[vertex + 1] - first_[vertex]};
    }
    /// The same vertices with every edge turned round, without those that are followed on a drop only.
    DependencyGraph Reversed() const;

private:
    struct RawEdge {
        uint32_t from;
        Edge edge;
    };
    std::vector<RawEdge> raw_;  // while adding
    std::vector<uint32_t> first_{0};
    std::vector<Edge> edges_;
};

namespace detail {

struct LinkRow {
    Link link;
    Facets ofValue, ofMode, ofLimits;
};
constexpr LinkRow linkRows[] = {
    // Limits count for the mode too: what is written to several places at once must have one increment in all of them.
    {Link::Source, facet::value, facet::mode, facet::limits | facet::mode},
    {Link::Choice, facet::value | facet::mode | facet::limits, facet::mode, 0},
    {Link::Limit, facet::limits, facet::limits, 0},
    // A variable may be any of these of its node, and the limits of a converter are computed with the same formula.
    {Link::Variable, facet::value | facet::limits, facet::value | facet::mode | facet::limits, facet::value | facet::limits},
    {Link::Condition, facet::mode, facet::mode, 0},
    {Link::Enabling, 0, facet::mode, 0},
    {Link::Mention, 0, 0, 0},
    {Link::Place, facet::value | facet::limits, facet::mode, 0},
    {Link::Bytes, facet::value, facet::mode, facet::value | facet::limits},
    {Link::Invalidator, 0, 0, 0},
    {Link::Origin, 0, 0, 0},
};

/// For each link and each set of changes what arrives at the target.
constexpr auto linkTable = [] {
    std::array<std::array<Facets, 32>, std::size(linkRows)> table{};
    for (const auto& row : linkRows) {
        for (unsigned changes = 0; changes < 32; ++changes) {
            Facets arrives = changes & facet::notice;
            if (changes & facet::value) arrives |= row.ofValue;
            if (changes & facet::mode) arrives |= row.ofMode;
            if (changes & facet::limits) arrives |= row.ofLimits;
            if (row.link == Link::Invalidator) arrives = changes & facet::notice ? facet::all | facet::drop : 0;
            if (row.link == Link::Origin) arrives = changes & facet::drop;
            table[static_cast<size_t>(row.link)][changes] = arrives;
        }
    }
    return table;
}();

}  // namespace detail

inline Facets DependencyGraph::Edge::Through(Facets changes) const { return detail::linkTable[link][changes]; }

}  // namespace kiv::genapi
