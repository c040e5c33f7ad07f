/// What is kept of each node and each register location, and whether anybody has asked for it: a byte for each, side by side,
/// because a change looks at many of them.
///
/// The low half says what is kept. The high half says which facets were asked for by somebody who keeps an answer computed from
/// them. A change of a facet that nobody has asked for concerns nobody, so it goes no further. That is safe because an answer is
/// kept only together with the marks on everything that it was computed from, and the marks are taken away only when all that may
/// rest on them is told.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "runtime/dependency_graph.h"

namespace kiv::genapi {

namespace kept {
// Of a node.
constexpr uint8_t value = 1;
constexpr uint8_t mode = 2;
constexpr uint8_t readable = 8;  ///< the mode that is kept allows reading
// Of a location.
constexpr uint8_t reliance = 1;  ///< somebody may keep what was computed from the bytes, and would not be told that they differ
constexpr uint8_t place = 4;     ///< address and length
constexpr uint8_t bytes = 8;
}  // namespace kept

class VertexStates {
public:
    void Resize(size_t vertices) { states_.assign(vertices, 0); }

    bool Has(uint32_t vertex, uint8_t kept) const { return (states_[vertex] & kept) == kept; }
    void Keep(uint32_t vertex, uint8_t kept) { states_[vertex] |= kept; }
    void Forget(uint32_t vertex, uint8_t kept) { states_[vertex] &= static_cast<uint8_t>(~kept); }

    void Ask(uint32_t vertex, Facets facets) { states_[vertex] |= static_cast<uint8_t>(facets << 4); }
    /// Somebody wants to be told of every change. Lasts until TellNobody().
    void Tell(uint32_t vertex) { Ask(vertex, facet::notice); }
    bool IsTold(uint32_t vertex) const { return states_[vertex] & facet::notice << 4; }
    void TellNobody() {
        for (auto& state : states_) state &= static_cast<uint8_t>(~(facet::notice << 4));
    }

    /// Whether a change of these facets does anything to the vertex or beyond it.
    bool Concerns(uint32_t vertex, Facets changes) const {
        return states_[vertex] & ((changes & facet::limits ? kept::place : 0) | (changes & 3) | (changes & 15) << 4);
    }
    /// Forgets what such a change makes untrue; the answer says which of the changes concern others.
    Facets Change(uint32_t vertex, bool isNode, Facets changes) {
        auto& state = states_[vertex];
        const auto asked = static_cast<Facets>(state >> 4 & changes);
        const auto marks = static_cast<uint8_t>((changes & ~facet::notice & 15) << 4);
        state &= static_cast<uint8_t>(~(marks | forgotten[isNode][changes]));
        return asked;
    }
    /// A change of everything everywhere.
    void ChangeAll() {
        for (auto& state : states_) state &= facet::notice << 4;
    }

private:
    static constexpr auto forgotten = [] {
        std::array<std::array<uint8_t, 32>, 2> table{};
        for (unsigned changes = 0; changes < 32; ++changes) {
            const auto has = [&](Facets facets, int kept) { return changes & facets ? kept : 0; };
            table[0][changes] = static_cast<uint8_t>(has(facet::value, kept::reliance) | has(facet::limits, kept::place) |
                                                     has(facet::drop, kept::bytes));
            table[1][changes] = static_cast<uint8_t>(has(facet::value | facet::drop, kept::value) |
                                                     has(facet::mode, kept::mode | kept::readable));
        }
        return table;
    }();

    std::vector<uint8_t> states_;
};

}  // namespace kiv::genapi
