#include <algorithm>
#include <charconv>
#include <memory>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenICam/exceptions.h"
#include "check/model.h"
#include "kiv/genapi/load_node_map.h"

namespace GenApi {

namespace {

using namespace kiv::genapi;

/// "... at line 7 and column 3 : ...": the parser tells the line in its message.
int64_t line_in(std::string_view message) {
    constexpr std::string_view before = " line ";
    int64_t line = 1;
    if (const auto at = message.find(before); at != message.npos)
        std::from_chars(message.data() + at + before.size(), message.data() + message.size(), line);
    return line;
}

/// The line of the child that a fault begins with the name of, else that of the node.
uint32_t line_of_fault(const Model& model, const NodeModel& node, std::string_view fault) {
    const auto word = fault.substr(0, fault.find(' '));
    const auto* named = model.Child(node, word);
    for (const auto child : node.children) {
        const auto& element = model.At(child);
        if (element.name == word && !element.text.empty() && fault.find(element.text) != fault.npos) named = &element;
    }
    return named ? named->line : model.At(node).line;
}

const NodeModel* find(const Model& model, std::string_view name) {
    const auto index = model.FindInMap(name);
    return index == none ? nullptr : &model.nodes[index];
}

/// What the engine itself could not make sense of. The other checks may have told it already, and better.
void add_engine_faults(const INodeMap& map, const Model& model, Findings& findings) {
    constexpr std::string_view start = "Node '";
    for (const std::string_view fault : description_faults(map)) {
        const auto end = fault.starts_with(start) ? fault.find('\'', start.size()) : fault.npos;
        const auto name = end == fault.npos ? std::string_view() : fault.substr(start.size(), end - start.size());
        const auto* node = find(model, name);
        if (end == fault.npos || fault.substr(end).find("is there twice") != fault.npos || !node) {
            if (fault.find("has no name") == fault.npos && fault.find("twice") == fault.npos)
                findings.Error(1, "", std::string(fault));
            continue;
        }
        const auto text = fault.substr(std::min(end + 3, fault.size()));
        const auto line = line_of_fault(model, *node, text);
        const bool isLost = map.GetNode(name) && map.GetNode(name)->GetAccessMode() == NI;
        if (isLost || !findings.HasAt(line))
            findings.Error(line, name, std::string(text) + (isLost ? " The node cannot be used." : ""));
    }
}

void add_formula_faults(const INodeMap& map, const Model& model, Findings& findings) {
    gcstring_vector errors;
    map.ParseSwissKnifes(&errors);
    for (const std::string_view error : errors) {
        const auto name = error.substr(0, error.find(": "));
        const auto* node = find(model, name);
        const auto text = error.substr(std::min(name.size() + 2, error.size()));
        uint32_t line = node ? model.At(*node).line : 1;
        if (node)
            for (const auto child : node->children)
                if (model.At(child).name.starts_with("Formula") && text.find(model.At(child).text.substr(0, 100)) != text.npos)
                    line = model.At(child).line;
        findings.Error(line, name, std::string(text));
    }
}

}  // namespace

std::vector<DescriptionFinding> CheckDescription(const gcstring& description) {
    Findings findings;
    std::unique_ptr<INodeMap> map;
    try {
        map = load_node_map(description.str());
    } catch (const GenICam::GenericException& error) {
        return {{fsError, line_in(error.GetDescription()), {}, error.GetDescription()}};
    }
    SourceTree tree;
    read_source(description, tree);
    if (tree.elements.empty()) return {};
    const Model model(tree);
    check_root(model, findings);
    check_elements(model, findings);
    check_references(model, findings);
    check_links(model, findings);
    check_values(model, findings);
    add_engine_faults(*map, model, findings);
    add_formula_faults(*map, model, findings);
    return findings.Sorted();
}

}  // namespace GenApi
