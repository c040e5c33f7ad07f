#include "link/link_dependencies.h"

#include <algorithm>
#include <iterator>

#include "runtime/node.h"

namespace kiv::genapi {

namespace {

struct DependencyRow {
    Tag tag;
    Effect effect;        ///< of a change of the named node on the one that names it
    bool isWhereItLives;  ///< the named node is where the value comes from
};
constexpr DependencyRow dependencyRows[] = {
    {Tag::pValue, Effect::Changes, true},          {Tag::pValueCopy, Effect::Changes, false},
    {Tag::pValueIndexed, Effect::Changes, true},   {Tag::pValueDefault, Effect::Changes, true},
    {Tag::pIndex, Effect::Changes, false},         {Tag::pMin, Effect::Changes, false},
    {Tag::pMax, Effect::Changes, false},           {Tag::pInc, Effect::Changes, false},
    {Tag::pVariable, Effect::Changes, false},      {Tag::pCommandValue, Effect::Changes, false},
    {Tag::pIsImplemented, Effect::Changes, false}, {Tag::pIsAvailable, Effect::Changes, false},
    {Tag::pIsLocked, Effect::Changes, false},      {Tag::pBlockPolling, Effect::Changes, false},
    {Tag::pChunkID, Effect::Changes, false},       {Tag::pInvalidator, Effect::Outdates, false},
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
            engine.graph.Add(node.Index(), property.target, Effect::Outdates);
            continue;
        }
        if (isRegister && property.tag == Tag::pIndex) continue;  // a term of the address
        if (!dependencyTags.Has(property.tag)) continue;
        const auto& row = *std::find_if(std::begin(dependencyRows), std::end(dependencyRows),
                                        [&](const auto& candidate) { return candidate.tag == property.tag; });
        engine.graph.Add(property.target, node.Index(), row.effect);
        if (row.isWhereItLives) engine.graph.Add(node.Index(), property.target, Effect::Drops);
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
    engine.graph.Close(static_cast<uint32_t>(engine.nodes.size() + engine.locations.size()));
    list_selectors(engine);
}

}  // namespace kiv::genapi
