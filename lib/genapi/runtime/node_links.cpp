// Questions about a node's neighbours. They are rare, so they are answered from the description's references and the dependency
// graph instead of lists of their own.
#include <algorithm>
#include <unordered_set>

#include "link/number_text.h"
#include "runtime/node.h"

namespace kiv::genapi {

using namespace GenApi;

namespace {

constexpr TagSet valueTags{Tag::pValue,    Tag::pIndex,   Tag::pValueIndexed, Tag::pValueDefault,
                           Tag::pVariable, Tag::pAddress, Tag::pLength,       Tag::IntSwissKnife};
constexpr TagSet readingTags{Tag::pValue,       Tag::pIndex,    Tag::pValueIndexed, Tag::pValueDefault, Tag::pVariable,
                             Tag::pAddress,     Tag::pLength,   Tag::IntSwissKnife, Tag::pPort,         Tag::pMin,
                             Tag::pMax,         Tag::pInc,      Tag::pCommandValue, Tag::pChunkID,      Tag::pIsImplemented,
                             Tag::pIsAvailable, Tag::pIsLocked, Tag::pBlockPolling};
constexpr TagSet modeTags{Tag::pValue,         Tag::pIndex,       Tag::pValueIndexed, Tag::pValueDefault, Tag::pVariable,
                          Tag::pAddress,       Tag::pLength,      Tag::IntSwissKnife, Tag::pPort,         Tag::pCommandValue,
                          Tag::pIsImplemented, Tag::pIsAvailable, Tag::pIsLocked};
constexpr TagSet writingTags{Tag::pValue, Tag::pValueCopy, Tag::pValueIndexed, Tag::pValueDefault};
constexpr TagSet invalidatorTags{Tag::pInvalidator};

std::vector<const Node*> children_of(const Node& node, const TagSet& tags) {
    std::vector<const Node*> children;
    std::unordered_set<const Node*> seen;
    const auto add = [&](const Node* child) {
        if (child && seen.insert(child).second) children.push_back(child);
    };
    for (const auto& property : node.Context().table.Properties(node.GetRecord())) {
        if (!tags.Has(property.tag)) continue;
        add(node.Target(&property));
        if (property.attribute == Attribute::pOffset) add(node.Context().Find(property.AttributeText()));
    }
    return children;
}

/// The node and everything below it, each once.
template <class Next>
std::vector<const Node*> closure(const Node& start, Next next) {
    std::vector<bool> seen(start.Context().nodes.size());
    std::vector<const Node*> found{&start};
    seen[start.Index()] = true;
    for (size_t i = 0; i < found.size(); ++i) {
        for (const auto* node : next(*found[i])) {
            if (seen[node->Index()]) continue;
            seen[node->Index()] = true;
            found.push_back(node);
        }
    }
    return found;
}

std::vector<const Node*> dependants_of(const Node& node, bool all) {
    const auto& engine = node.Context();
    std::vector<bool> seen(engine.nodes.size() + engine.locations.size());
    std::vector<uint32_t> queue{node.Index()};
    std::vector<const Node*> found;
    seen[node.Index()] = true;
    for (size_t i = 0; i < queue.size(); ++i) {
        if (!all && i > 0 && queue[i] < engine.nodes.size()) continue;
        for (const auto edge : engine.graph.From(queue[i])) {
            if (edge.Is(Link::Origin) || seen[edge.target]) continue;
            seen[edge.target] = true;
            queue.push_back(edge.target);
            if (edge.target < engine.nodes.size()) found.push_back(engine.nodes[edge.target]);
        }
    }
    return found;
}

std::vector<const Node*> terminals_of(const Node& node) {
    auto all = closure(node, [](const Node& n) { return children_of(n, writingTags); });
    std::erase_if(all, [](const Node* n) { return !children_of(*n, writingTags).empty(); });
    return all;
}

void put(NodeList_t& list, const std::vector<const Node*>& nodes) {
    list.clear();
    for (const auto* node : nodes) list.push_back(const_cast<Node*>(node));
}

}  // namespace

void Node::GetChildren(NodeList_t& children, ELinkType linkType) const {
    switch (linkType) {
        case ctAllDependingNodes:
            return put(children, dependants_of(*this, true));
        case ctAllTerminalNodes:
            return put(children, terminals_of(*this));
        case ctInvalidators:
            return put(children, children_of(*this, invalidatorTags));
        case ctReadingChildren:
            return put(children, children_of(*this, readingTags));
        case ctWritingChildren:
            return put(children, children_of(*this, writingTags));
        case ctDependingChildren:
            return put(children, dependants_of(*this, false));
    }
    throw GenICam::InvalidArgumentException("There is no link type " + std::to_string(linkType) + ".", {Name(), "GetChildren"});
}

void Node::GetParents(NodeList_t& parents) const { put(parents, dependants_of(*this, false)); }

void Node::GetLockNodes(NodeList_t& locks) const {
    std::vector<const Node*> found;
    for (const auto* node : closure(*this, [](const Node& n) { return children_of(n, writingTags); })) {
        const auto* lock = node->Target(Tag::pIsLocked);
        if (lock && std::find(found.begin(), found.end(), lock) == found.end()) found.push_back(lock);
    }
    put(locks, found);
}

/// The weakest mode of the registers that the value comes from.
ECachingMode Node::GetCachingMode() const {
    auto weakest = WriteThrough;
    for (const auto* node : closure(*this, [](const Node& n) { return children_of(n, valueTags); })) {
        const auto mode = node->OwnCaching();
        if (mode == NoCache) return NoCache;
        if (mode == WriteAround) weakest = WriteAround;
    }
    return weakest;
}

bool Node::IsCachable() const { return GetCachingMode() != NoCache; }

EYesNo Node::IsAccessModeCacheable() const {
    // The value of a register does not enter the mode of what shows it, but it does when the register decides a condition.
    for (const auto* node : closure(*this, [](const Node& n) { return children_of(n, modeTags); })) {
        for (const auto tag : {Tag::pIsImplemented, Tag::pIsAvailable, Tag::pIsLocked, Tag::pIndex}) {
            const auto* condition = node->Target(tag);
            if (condition && !condition->IsCachable()) return No;
        }
    }
    return Yes;
}

/// Its own time, else the shortest one of what the value comes from.
int64_t Node::GetPollingTime() const {
    int64_t shortest = -1;
    for (const auto* node : closure(*this, [](const Node& n) {
             return n.Find(Tag::PollingTime) ? std::vector<const Node*>() : children_of(n, valueTags);
         })) {
        const auto time = parse_integer(node->Text(Tag::PollingTime)).value_or(-1);
        if (time > 0 && (shortest < 0 || time < shortest)) shortest = time;
    }
    return shortest;
}

}  // namespace kiv::genapi
