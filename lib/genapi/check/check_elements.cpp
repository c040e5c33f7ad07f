// Elements one by one: known or not, in the right place, complete, of the right form.
#include <algorithm>
#include <cctype>

#include "check/model.h"
#include "check/schema.h"
#include "link/number_text.h"

namespace kiv::genapi {

namespace {

bool is_name(std::string_view text) {
    return !text.empty() && (std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_') &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

bool is_hex(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

/// What is wrong with the text of a child; "" when nothing is.
std::string form_fault(const NodeModel& node, const ChildRule& rule, const std::string& text) {
    const bool isWhole = node_rule(node.kind).isWhole;
    switch (rule.form) {
        case Form::Number:
            if (rule.name == "Value" && node.kind == Element::String) return {};
            if (rule.name == "Value" && node.kind == Element::Boolean)
                return text == "true" || text == "false" || text == "1" || text == "0" ? "" : "is neither true nor false";
            if (isWhole ? parse_integer(text).has_value() : parse_double(text).has_value()) return {};
            return isWhole ? "is no integer" : "is no number";
        case Form::Integer:
            return parse_integer(text) ? "" : "is no integer";
        case Form::Natural:
            return parse_integer(text).value_or(-1) >= 0 ? "" : "is no number from 0 up";
        case Form::Hex:
            return is_hex(text) ? "" : "is no hexadecimal number (without 0x)";
        case Form::Word:
            return has_word(rule.words, text) ? "" : "is none of: " + std::string(rule.words);
        case Form::Reference:
            return text.empty() ? "names no node" : "";
        default:
            return {};
    }
}

class ElementCheck {
public:
    ElementCheck(const Model& model, Findings& findings) : model_(model), findings_(findings) {}

    void Run() {
        for (const auto i : model_.strangers) {
            const auto& element = model_.At(i);
            Ignored(element, "", "The element " + quoted(element.name) + " is not known; it is ignored.");
        }
        for (const auto& node : model_.nodes) Check(node);
    }

private:
    void Ignored(const SourceElement& element, std::string_view node, std::string text) {
        findings_.Add(GenApi::fsWarning, element.line, node, std::move(text),
                      "element " + std::string(model_.At(element.parent).name) + "/" + std::string(element.name));
    }

    void Check(const NodeModel& node) {
        const auto& element = model_.At(node);
        if (node.name.empty() && node.kind != Element::StructReg)
            findings_.Error(element.line, "", "A node of kind " + std::string(element.name) + " has no name; it is left out.");
        else if (!node.name.empty() && !is_name(node.name))
            findings_.Add(node.kind == Element::EnumEntry ? GenApi::fsNote : GenApi::fsWarning, element.line, node.name,
                          "The name is not made of letters, digits and '_' alone, beginning with a letter.");
        for (const auto& attribute : model_.tree.Attributes(element))
            if (!has_word("Name NameSpace MergePriority ExposeStatic Comment p1212Parser Key FeatureID", attribute.name) &&
                !attribute.name.starts_with("xml") && !attribute.name.starts_with("xsi:"))
                findings_.Add(GenApi::fsNote, element.line, node.name,
                              "The attribute " + quoted(attribute.name) + " is not known; it is ignored.",
                              "attribute " + std::string(attribute.name));
        for (const auto child : node.children)
            if (model_.At(child).parent == node.element) CheckChild(node, model_.At(child));
        CheckComplete(node);
        if (has_word("ConfRom TextDesc IntKey AdvFeatureLock SmartFeature", element.name))
            findings_.Add(GenApi::fsNote, element.line, node.name,
                          "Nodes of kind " + std::string(element.name) + " are known by name only.",
                          "relic " + std::string(element.name));
    }

    void CheckChild(const NodeModel& node, const SourceElement& child) {
        const auto* rule = find_child_rule(child.name);
        const auto kind = std::string(model_.At(node).name);
        const auto what = "The element " + quoted(child.name);
        if (!allows(node.kind, child.name)) {
            if (rule) return Ignored(child, node.name, what + " means nothing in a node of kind " + kind + ".");
            if (find_element(child.name)) return Ignored(child, node.name, what + " is a node inside a node; it is ignored.");
            const auto meant = similar_child(node.kind, child.name);
            return Ignored(child, node.name,
                           what + " is not known; it is ignored." + (meant.empty() ? "" : " Is " + quoted(meant) + " meant?"));
        }
        if (!rule->isMany && model_.Child(node, child.name) != &child)
            findings_.Warn(child.line, node.name, what + " is there more than once; the first one counts.");
        if (rule->isNew && model_.tree.Attribute(model_.At(0), "SchemaMinorVersion") == "0")
            findings_.Add(GenApi::fsNote, child.line, node.name,
                          what + " came with version 1.1 of the schema; the description is of version 1.0.",
                          "new " + std::string(child.name));
        if (const auto fault = form_fault(node, *rule, child.text); !fault.empty())
            findings_.Warn(child.line, node.name, std::string(child.name) + " " + quoted(child.text) + " " + fault + ".");
    }

    void CheckComplete(const NodeModel& node) {
        const auto line = model_.At(node).line;
        for (const auto group : split(node_rule(node.kind).required, ' ')) {
            const auto names = split(group, '|');
            if (std::any_of(names.begin(), names.end(), [&](auto name) { return model_.Has(node, name); })) continue;
            std::string list;
            for (const auto name : names) list += (list.empty() ? "" : " or ") + std::string(name);
            const auto effect = group == "AccessMode" ? " RW is taken." : group == "Endianess" ? " LittleEndian is taken." : "";
            findings_.Warn(line, node.name, "It has no " + list + "." + effect);
        }
        for (const auto group : exclusive_groups()) {
            std::string list;
            int count = 0;
            for (const auto name : split(group, '|')) {
                const auto* child = model_.Child(node, name);
                if (!child || child->parent != node.element || !allows(node.kind, name)) continue;
                list += (count++ ? " and " : "") + std::string(name);
            }
            if (count > 1) findings_.Warn(line, node.name, "It has " + list + ", which exclude each other.");
        }
    }

    const Model& model_;
    Findings& findings_;
};

}  // namespace

void check_elements(const Model& model, Findings& findings) { ElementCheck(model, findings).Run(); }

void check_root(const Model& model, Findings& findings) {
    const auto& root = model.At(0);
    for (const std::string_view name :
         {"ModelName", "VendorName", "StandardNameSpace", "SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion",
          "MajorVersion", "MinorVersion", "SubMinorVersion", "ProductGuid", "VersionGuid"})
        if (model.tree.Attribute(root, name).empty()) findings.Warn(root.line, "", "The root has no " + std::string(name) + ".");
    const auto major = model.tree.Attribute(root, "SchemaMajorVersion"), minor = model.tree.Attribute(root, "SchemaMinorVersion");
    if (!major.empty() && (major != "1" || (minor != "0" && minor != "1")))
        findings.Warn(
            root.line, "",
            "The schema version " + std::string(major) + "." + std::string(minor) + " is not known; it is read as 1.1.");
    const auto space = model.tree.Attribute(root, "xmlns");
    constexpr std::string_view start = "http://www.genicam.org/GenApi/Version_";
    if (space != std::string(start) + "1_0" && space != std::string(start) + "1_1")
        findings.Warn(root.line, "", "The namespace " + quoted(space) + " is none of the schema's; it is ignored.");
    else if (!minor.empty() && space.substr(start.size() + 2) != minor)
        findings.Warn(root.line, "", "The namespace and SchemaMinorVersion tell different versions.");
    const auto standard = model.tree.Attribute(root, "StandardNameSpace");
    if (!standard.empty() && !has_word("None IIDC GEV CL USB", standard))
        findings.Warn(root.line, "", "StandardNameSpace " + quoted(standard) + " is none of: None IIDC GEV CL USB.");
}

}  // namespace kiv::genapi
