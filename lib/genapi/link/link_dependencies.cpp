#include "link/link_dependencies.h"

#include <algorithm>
#include <iterator>

#include "runtime/node.h"

namespace kiv::genapi {

namespace {

struct DependencyRow {
    Tag tag;
    Link link;            ///< of the named node to the one that names it
    bool isWhereItLives;  ///< the named node is where the value comes from
};
constexpr DependencyRow dependencyRows[] = {
    {Tag::pValue, Link::Source, true},
    {Tag::pValueCopy, Link::Source, false},
    {Tag::pValueIndexed, Link::Source, true},
    {Tag::pValueDefault, Link::Source, true},
    {Tag::pIndex, Link::Choice, false},
    {Tag::pMin, Link::Limit, false},
    {Tag::pMax, Link::Limit, false},
    {Tag::pInc, Link::Limit, false},
    {Tag::pVariable, Link::Variable, false},
    {Tag::pCommandValue, Link::Enabling, false},
    {Tag::pIsImplemented, Link::Condition, false},
    {Tag::pIsAvailable, Link::Condition, false},
    {Tag::pIsLocked, Link::Condition, false},
    {Tag::pBlockPolling, Link::Mention, false},
    {Tag::pChunkID, Link::Mention, false},
    {Tag::pInvalidator, Link::Invalidator, false},
};

constexpr TagSet dependencyTags = [] {
    TagSet tags;
    for (const auto& row : dependencyRows) tags.Add(row.tag);
    return tags;
}();

void add_dependencies(Engine& engine, Node& node) {
    const bool isRegister = static_cast<GenApi::INode&>(node).AsInterface(GenApi::intfIRegister) != nullptr;
    for (const auto& property : engine.table.Properties(node.GetRecord())) {
        if (property.target == nothing) continue;
        if (property.tag == Tag::pSelected) {
            engine.graph.Add(node.Index(), property.target, Link::Invalidator);
            continue;
        }
        if (isRegister && property.tag == Tag::pIndex) continue;  // a term of the address
        if (!dependencyTags.Has(property.tag)) continue;
        const auto& row = *std::find_if(std::begin(dependencyRows), std::end(dependencyRows),
                                        [&](const auto& candidate) { return candidate.tag == property.tag; });
        engine.graph.Add(property.target, node.Index(), row.link);
        if (row.isWhereItLives) engine.graph.Add(node.Index(), property.target, Link::Origin);
    }
}

/// For each node, who selects it: directly, or by showing a node that does.
void list_selectors(Engine& engine) {
    constexpr int deepest = 256;
    const auto& table = engine.table;
    const bool any = std::any_of(table.properties.begin(), table.properties.end(),
                                 [](const Property& property) { return property.tag == Tag::pSelected; });
    if (!any) return;
    engine.selecting.resize(engine.nodes.size());
    for (const auto* node : engine.nodes) {
        const Node* shown = node;
        for (int depth = 0; shown && depth < deepest; ++depth, shown = shown->Target(Tag::pValue)) {
            for (const auto& property : table.Properties(shown->GetRecord())) {
                if (property.tag != Tag::pSelected || property.target == nothing) continue;
                auto& list = engine.selecting[property.target];
                if (list.empty() || list.back() != node->Index()) list.push_back(node->Index());
            }
        }
    }
}

}  // namespace

void link_dependencies(Engine& engine) {
    for (auto* node : engine.nodes) add_dependencies(engine, *node);
    const auto vertices = engine.nodes.size() + engine.locations.size();
    if (vertices >= DependencyGraph::mostVertices)
        throw GenICam::RuntimeException("The description has too many nodes: " + std::to_string(engine.nodes.size()) + ".");
    engine.graph.Close(static_cast<uint32_t>(vertices));
    engine.states.Resize(vertices);
    list_selectors(engine);
}

}  // namespace kiv::genapi
