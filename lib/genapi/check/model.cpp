#include "check/model.h"

#include <algorithm>

namespace kiv::genapi {

Model::Model(const SourceTree& source) : tree(source), nodeOf_(source.elements.size(), none) {
    const auto& elements = tree.elements;
    for (uint32_t i = 1; i < elements.size(); ++i) {
        const auto kind = find_element(elements[i].name);
        const auto parent = elements[i].parent;
        const auto owner = nodeOf_[parent];
        const bool isTop = owner == none && (parent == 0 || elements[parent].name == "Group");
        if (isTop && !kind) strangers.push_back(i);
        if (isTop && kind && kind != Element::Group) AddNode(i, *kind, none);
        if (owner == none) continue;
        nodes[owner].children.push_back(i);
        const bool isInner = kind == Element::EnumEntry || kind == Element::StructEntry || kind == Element::IntSwissKnife ||
                             kind == Element::TextDesc || kind == Element::IntKey;
        if (isInner && nodes[owner].element == parent) AddNode(i, *kind, owner);
    }
    // What an entry of a structured register does not say itself is what the register says. No sensible register comes near the
    // bound; without one a hostile description could fill the memory.
    size_t room = 4'000'000;
    for (auto& node : nodes) {
        if (node.kind != Element::StructEntry || node.owner == none) continue;
        std::unordered_set<std::string_view> said{"StructEntry"};
        for (const auto child : node.children) said.insert(At(child).name);
        const auto& shared = nodes[node.owner].children;
        if (shared.size() > room) return;
        room -= shared.size();
        for (const auto child : shared)
            if (!said.contains(At(child).name)) node.children.push_back(child);
    }
}

void Model::AddNode(uint32_t element, Element kind, uint32_t owner) {
    const auto index = static_cast<uint32_t>(nodes.size());
    nodeOf_[element] = index;
    nodes.push_back({tree.Attribute(At(element), "Name"), kind, element, owner, {}, {}});
    const auto name = nodes[index].name;
    if (owner != none) nodes[owner].inner.push_back(index);
    if (kind == Element::EnumEntry && owner != none)
        entries_.emplace("EnumEntry_" + std::string(nodes[owner].name) + "_" + std::string(name), index);
    // Entries are known by their enumeration, a structured register by its entries.
    const bool isNamed = kind != Element::StructReg && !(kind == Element::EnumEntry && owner != none);
    if (isNamed && !name.empty() && !byName_.emplace(name, index).second) duplicates.insert(index);
}

uint32_t Model::Find(std::string_view name) const {
    if (name.starts_with("Std::") || name.starts_with("Cust::")) name.remove_prefix(name.find("::") + 2);
    const auto found = byName_.find(name);
    return found == byName_.end() ? none : found->second;
}

uint32_t Model::FindInMap(std::string_view name) const {
    const auto found = entries_.find(std::string(name));
    const auto plain = Find(name);
    return plain == none && found != entries_.end() ? found->second : plain;
}

const SourceElement* Model::Child(const NodeModel& node, std::string_view name) const {
    for (const auto child : node.children)
        if (At(child).name == name) return &At(child);
    return nullptr;
}

std::string_view Model::TextOf(const NodeModel& node, std::string_view child) const {
    const auto* found = Child(node, child);
    return found ? std::string_view(found->text) : std::string_view();
}

void Findings::Add(GenApi::EFindingSeverity severity, uint32_t line, std::string_view node, std::string text, std::string key) {
    if (!key.empty()) {
        auto& [index, count] = repeated_.try_emplace(std::move(key), findings_.size(), 0).first->second;
        if (++count > 1) return;
    }
    if (severity != GenApi::fsNote) lines_.insert(line);
    findings_.push_back({severity, line, node, text});
}

bool Findings::HasAt(uint32_t line) const { return lines_.contains(line); }

std::vector<GenApi::DescriptionFinding> Findings::Sorted() {
    for (const auto& [key, place] : repeated_)
        if (place.second > 1)
            findings_[place.first].text += " So " + std::to_string(place.second - 1) + " more in the description.";
    std::stable_sort(findings_.begin(), findings_.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
    return std::move(findings_);
}

std::string quoted(std::string_view text) {
    constexpr size_t longest = 80;
    return "'" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...'" : "'");
}

}  // namespace kiv::genapi
