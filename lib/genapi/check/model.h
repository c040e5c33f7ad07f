/// The nodes of a description as those see them who look for faults: by name, with the elements inside them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "GenApi/description_check.h"
#include "record/elements.h"
#include "record/source_tree.h"

namespace kiv::genapi {

constexpr uint32_t none = UINT32_MAX;

struct NodeModel {
    std::string_view name;
    Element kind{};
    uint32_t element = 0;            ///< in the source tree
    uint32_t owner = none;           ///< the node around this one: an enumeration, a register, a structured register
    std::vector<uint32_t> children;  ///< elements; those of a structured register count for its entries, too
    std::vector<uint32_t> inner;     ///< the nodes that this one is the owner of
};

/// What a cycle is looked for in: for each node those that it leads to.
using Links = std::vector<std::vector<uint32_t>>;

class Model {
public:
    explicit Model(const SourceTree& source);
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// `none` when there is no such node.
    uint32_t Find(std::string_view name) const;
    /// The same for the name that the node has in a map, where entries of enumerations have names of their own.
    uint32_t FindInMap(std::string_view name) const;
    const SourceElement& At(uint32_t element) const { return tree.elements[element]; }
    const SourceElement& At(const NodeModel& node) const { return tree.elements[node.element]; }
    /// The first child of that name; null when there is none.
    const SourceElement* Child(const NodeModel& node, std::string_view name) const;
    std::string_view TextOf(const NodeModel& node, std::string_view child) const;
    bool Has(const NodeModel& node, std::string_view child) const { return Child(node, child) != nullptr; }

    const SourceTree& tree;
    std::vector<NodeModel> nodes;
    std::unordered_set<uint32_t> duplicates;  ///< nodes that do not count, because another one had the name before
    std::vector<uint32_t> strangers;          ///< elements where nodes are expected, which are none

private:
    void AddNode(uint32_t element, Element kind, uint32_t owner);

    std::unordered_map<std::string_view, uint32_t> byName_;
    std::unordered_map<std::string, uint32_t> entries_;  // by the name in a map
    std::vector<uint32_t> nodeOf_;                       // by element
};

class Findings {
public:
    /// With a `key` only the first of many findings is kept, with how many there were.
    void Add(GenApi::EFindingSeverity severity, uint32_t line, std::string_view node, std::string text, std::string key = {});
    void Error(uint32_t line, std::string_view node, std::string text) { Add(GenApi::fsError, line, node, std::move(text)); }
    void Warn(uint32_t line, std::string_view node, std::string text) { Add(GenApi::fsWarning, line, node, std::move(text)); }
    void Note(uint32_t line, std::string_view node, std::string text) { Add(GenApi::fsNote, line, node, std::move(text)); }
    /// Whether something worse than a note has been found there.
    bool HasAt(uint32_t line) const;
    std::vector<GenApi::DescriptionFinding> Sorted();

private:
    std::vector<GenApi::DescriptionFinding> findings_;
    std::unordered_set<int64_t> lines_;                                    // of findings worse than notes
    std::unordered_map<std::string, std::pair<size_t, size_t>> repeated_;  // key -> finding, count
};

std::string quoted(std::string_view text);

// Each looks for one kind of faults.

void check_root(const Model& model, Findings& findings);
void check_elements(const Model& model, Findings& findings);
void check_references(const Model& model, Findings& findings);
void check_links(const Model& model, Findings& findings);
void check_values(const Model& model, Findings& findings);

}  // namespace kiv::genapi
