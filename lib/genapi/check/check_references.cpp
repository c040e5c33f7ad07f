// References: to nodes that are there and serve, from nodes that are needed.
#include <algorithm>

#include "check/model.h"
#include "check/schema.h"

namespace kiv::genapi {

namespace {

class ReferenceCheck {
public:
    ReferenceCheck(const Model& model, Findings& findings) : model_(model), findings_(findings), isNamed_(model.nodes.size()) {}

    void Run() {
        for (const auto index : model_.duplicates) {
            const auto& node = model_.nodes[index];
            const auto& first = model_.nodes[model_.Find(node.name)];
            findings_.Error(model_.At(node).line, node.name,
                            "The name is that of a node in line " + std::to_string(model_.At(first).line) + "; that one counts.");
        }
        for (const auto& node : model_.nodes)
            for (const auto child : node.children)
                if (model_.At(child).parent == node.element) CheckChild(node, model_.At(child));
        CheckUse();
    }

private:
    void CheckChild(const NodeModel& node, const SourceElement& child) {
        const auto* rule = find_child_rule(child.name);
        if (!rule || !allows(node.kind, child.name)) return;
        if (rule->form == Form::Reference && !child.text.empty()) Check(node, child, child.name, child.text, NeedOf(node, *rule));
        if (const auto stride = model_.tree.Attribute(child, "pOffset"); !stride.empty())
            Check(node, child, "pOffset", stride, Need::Whole);
    }

    /// Where a text is shown, a text is needed.
    static Need NeedOf(const NodeModel& node, const ChildRule& rule) {
        return rule.name == "pValue" && node.kind == Element::String ? Need::String : rule.need;
    }

    void Check(const NodeModel& node, const SourceElement& at, std::string_view role, std::string_view name, Need need) {
        const auto what = std::string(role) + " " + quoted(name);
        const auto target = model_.Find(name);
        if (target == none) return findings_.Error(at.line, node.name, what + " does not exist.");
        isNamed_[target] = true;
        const auto& found = model_.nodes[target];
        const auto kind = std::string(model_.At(found).name);
        if (!serves(found.kind, need)) {
            const bool works = need == Need::Whole && serves(found.kind, Need::Number);
            const std::string text = what + " is of kind " + kind + ", which " +
                                     (works ? "is no integer; its fraction is cut off." : "does not serve here.");
            return works || need == Need::Value ? findings_.Warn(at.line, node.name, text)
                                                : findings_.Error(at.line, node.name, text);
        }
        const bool isRead = (need == Need::Number || need == Need::Whole || role == "pVariable") && role != "pValue" &&
                            role != "pValueCopy" && role != "pValueIndexed" && role != "pValueDefault";
        if (isRead && model_.TextOf(found, "AccessMode") == "WO")
            findings_.Error(at.line, node.name, what + " can only be written, and is to be read here.");
        if (node.kind == Element::Command && role == "pValue" && model_.TextOf(found, "AccessMode") == "RO")
            findings_.Error(at.line, node.name, what + " can only be read, so that the command can never be executed.");
    }

    void CheckUse() {
        const auto root = model_.Find("Root");
        if (root == none || model_.nodes[root].kind != Element::Category)
            findings_.Warn(model_.At(0).line, "", "There is no category 'Root', where applications begin to look for features.");
        // That of a camera, and those of the modules that lead to it.
        constexpr std::string_view ports = "Device TLPort InterfacePort DevicePort StreamPort BufferPort";
        bool hasPort = false;
        for (uint32_t i = 0; i < model_.nodes.size(); ++i) {
            const auto& node = model_.nodes[i];
            hasPort |= node.kind == Element::Port && has_word(ports, node.name);
            if (isNamed_[i] || node.owner != none || i == root || node.name.empty() || node.kind == Element::StructReg) continue;
            if (node.kind == Element::Port || model_.duplicates.contains(i)) continue;
            if (node.kind == Element::Category)
                findings_.Warn(model_.At(node).line, node.name, "No category lists this one; its features are not found.");
            else
                findings_.Note(model_.At(node).line, node.name, "It is in no category, and no other node needs it.");
        }
        if (!hasPort) findings_.Warn(model_.At(0).line, "", "There is no port 'Device', which the device is connected to.");
    }

    const Model& model_;
    Findings& findings_;
    std::vector<bool> isNamed_;
};

}  // namespace

void check_references(const Model& model, Findings& findings) { ReferenceCheck(model, findings).Run(); }

}  // namespace kiv::genapi
