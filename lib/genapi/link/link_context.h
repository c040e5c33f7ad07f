/// What the makers of nodes share while a map is being linked.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nodes/string_node.h"
#include "runtime/engine.h"
#include "runtime/node.h"
#include "sources/formula_sources.h"
#include "sources/location.h"
#include "sources/plain_sources.h"
#include "sources/register_access.h"

namespace kiv::genapi {

/// Something in the description of one node is wrong; costs that node.
struct LinkError : std::runtime_error {
    using runtime_error::runtime_error;
};

class LinkContext {
public:
    explicit LinkContext(Engine& target) : engine(target) { locations_.reserve(target.table.records.size() / 2); }

    // Texts of a node's properties as values. Throw LinkError when they are none.

    int64_t Integer(const Node& node, Tag tag, int64_t otherwise) const;
    bool Boolean(const Node& node, Tag tag, bool otherwise) const;
    /// The number in `immediate`, else the node named in `reference`, else an absent setting.
    template <class T>
    Setting<T> Number(const Node& node, Tag immediate, Tag reference) const;
    template <class T>
    static T NumberOf(std::string_view text, Tag tag);
    /// The node that a property names.
    Node& Required(const Node& node, const Property& property) const;
    Node& Required(const Node& node, Tag tag) const;

    /// Stored in the node, another node, or a table.
    template <class T>
    Source<T>& MakeSource(Node& node);
    std::vector<Variable> Variables(const Node& node) const;
    /// Fills in where a register node's bytes stand.
    void FillAccess(Node& node, RegisterAccess& access);

    template <class T>
    Source<T>& NoNumber() {
        if constexpr (std::is_integral_v<T>)
            return noInteger_;
        else
            return noFloat_;
    }

    Engine& engine;

private:
    template <class T>
    Source<T>& MakeTable(Node& node);
    Variable MakeVariable(const Node& node, const Property& property) const;
    Location& FindOrMakeLocation(PortNode& port, int64_t base, std::vector<AddressTerm> terms, Setting<int64_t> length);

    Source<int64_t>& noInteger_ = engine.arena.Make<NoSource<int64_t>>();
    Source<double>& noFloat_ = engine.arena.Make<NoSource<double>>();
    std::unordered_multimap<size_t, Location*> locations_;
};

}  // namespace kiv::genapi
