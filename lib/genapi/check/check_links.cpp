// Circles: values that are computed from themselves, categories inside themselves, selectors that select each other.
#include <algorithm>

#include "check/model.h"
#include "check/schema.h"

namespace kiv::genapi {

namespace {

/// The links that the named children make.
Links links_of(const Model& model, std::string_view roles) {
    Links links(model.nodes.size());
    for (uint32_t i = 0; i < model.nodes.size(); ++i) {
        const auto& node = model.nodes[i];
        const auto add = [&](std::string_view name) {
            if (const auto target = model.Find(name); target != none) links[i].push_back(target);
        };
        for (const auto index : node.children) {
            const auto& child = model.At(index);
            if (!has_word(roles, child.name) ||
                !allows(node.kind == Element::StructEntry ? Element::StructReg : node.kind, child.name))
                continue;
            const auto name = model.tree.Attribute(child, "Name");
            if (child.name == "IntSwissKnife") {
                add(name);
            } else if (child.name != "pVariable" || name.find('.') == name.npos || name.ends_with(".Value")) {
                add(child.text);
                add(model.tree.Attribute(child, "pOffset"));
            }
        }
    }
    return links;
}

/// Calls `report` with the nodes of each circle that a walk through the links comes back on. Who has corrected a hundred of them
/// looks again.
template <class Report>
void find_circles(const Links& links, Report report) {
    enum : uint8_t { fresh, open, done };
    std::vector<uint8_t> state(links.size(), fresh);
    int room = 100;
    struct Step {
        uint32_t node;
        size_t next = 0;
    };
    for (uint32_t start = 0; start < links.size(); ++start) {
        if (state[start] != fresh) continue;
        std::vector<Step> path{{start}};
        state[start] = open;
        while (!path.empty()) {
            auto& [node, next] = path.back();
            if (next == links[node].size()) {
                state[node] = done;
                path.pop_back();
                continue;
            }
            const auto target = links[node][next++];
            if (state[target] == fresh) {
                state[target] = open;
                path.push_back({target});
            } else if (state[target] == open && room > 0) {
                const auto from = std::find_if(path.begin(), path.end(), [&](const Step& step) { return step.node == target; });
                std::vector<uint32_t> circle;
                for (auto it = from; it != path.end(); ++it) circle.push_back(it->node);
                --room;
                report(circle);
            }
        }
    }
}

struct CircleRow {
    std::string_view roles;
    GenApi::EFindingSeverity severity;
    const char* text;
};
constexpr CircleRow circleRows[] = {
    {"pValue pVariable pIndex pAddress pLength IntSwissKnife pValueIndexed pValueDefault", GenApi::fsError,
     "The value is computed from itself: "},
    {"pFeature", GenApi::fsWarning, "The category is inside itself: "},
    {"pSelected", GenApi::fsWarning, "The selector selects itself: "},
};

}  // namespace

void check_links(const Model& model, Findings& findings) {
    for (const auto& row : circleRows) {
        find_circles(links_of(model, row.roles), [&](const std::vector<uint32_t>& circle) {
            constexpr size_t mostNames = 20;
            std::string text = row.text;
            for (size_t i = 0; i < circle.size(); ++i)
                if (i < mostNames) text.append(model.nodes[circle[i]].name).append(" -> ");
            if (circle.size() > mostNames) text += "... -> ";
            const auto& first = model.nodes[circle.front()];
            findings.Add(row.severity, model.At(first).line, first.name, text + std::string(first.name) + ".");
        });
    }
}

}  // namespace kiv::genapi
