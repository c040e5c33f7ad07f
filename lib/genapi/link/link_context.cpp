#include "link/link_context.h"

#include "link/number_text.h"
#include "nodes/enumeration_node.h"

namespace kiv::genapi {

namespace {

[[noreturn]] void fail(Tag tag, std::string_view text, std::string_view what) {
    throw LinkError(std::string(name_of(tag)) + " '" + std::string(text.substr(0, 100)) + "' " + std::string(what) + ".");
}

}  // namespace

template <>
int64_t LinkContext::NumberOf<int64_t>(std::string_view text, Tag tag) {
    if (const auto number = parse_integer(text)) return *number;
    const auto number = parse_double(text);  // "1e6" and "5.0" are found where an integer is meant
    if (!number || !(*number >= -0x1p63 && *number < 0x1p63) || static_cast<double>(static_cast<int64_t>(*number)) != *number)
        fail(tag, text, "is no integer");
    return static_cast<int64_t>(*number);
}

template <>
double LinkContext::NumberOf<double>(std::string_view text, Tag tag) {
    const auto number = parse_double(text);
    if (!number) fail(tag, text, "is no number");
    return *number;
}

int64_t LinkContext::Integer(const Node& node, Tag tag, int64_t otherwise) const {
    const auto* property = node.Find(tag);
    return property ? NumberOf<int64_t>(property->Text(), tag) : otherwise;
}

bool LinkContext::Boolean(const Node& node, Tag tag, bool otherwise) const {
    const auto* property = node.Find(tag);
    if (!property) return otherwise;
    const auto value = parse_boolean(property->Text());
    if (!value) fail(tag, property->Text(), "is neither true nor false");
    return *value;
}

Node& LinkContext::Required(const Node& node, const Property& property) const {
    auto* target = node.Target(&property);
    if (!target) fail(property.tag, property.Text(), "does not exist");
    return *target;
}

Node& LinkContext::Required(const Node& node, Tag tag) const {
    const auto* property = node.Find(tag);
    if (!property) throw LinkError("It has no " + std::string(name_of(tag)) + ".");
    return Required(node, *property);
}

template <class T>
Setting<T> LinkContext::Number(const Node& node, Tag immediate, Tag reference) const {
    if (const auto* property = node.Find(immediate)) return Setting<T>(NumberOf<T>(property->Text(), immediate));
    if (const auto* property = node.Find(reference)) return Setting<T>(Required(node, *property));
    return {};
}
template Setting<int64_t> LinkContext::Number<int64_t>(const Node&, Tag, Tag) const;
template Setting<double> LinkContext::Number<double>(const Node&, Tag, Tag) const;

// ---- sources ----

template <class T>
Source<T>& LinkContext::MakeTable(Node& node) {
    std::vector<typename IndexedSource<T>::Entry> entries;
    for (const auto& property : engine.table.Properties(node.GetRecord())) {
        if (property.tag != Tag::ValueIndexed && property.tag != Tag::pValueIndexed) continue;
        const auto index = NumberOf<int64_t>(property.AttributeText(), property.tag);
        const bool isReference = property.tag == Tag::pValueIndexed;
        entries.push_back(
            {index, isReference ? Setting<T>(Required(node, property)) : Setting<T>(NumberOf<T>(property.Text(), property.tag))});
    }
    const auto otherwise = Number<T>(node, Tag::ValueDefault, Tag::pValueDefault);
    return engine.arena.Make<IndexedSource<T>>(Required(node, Tag::pIndex), std::move(entries), otherwise);
}

template <class T>
Source<T>& LinkContext::MakeSource(Node& node) {
    if (node.Find(Tag::pIndex)) return MakeTable<T>(node);
    const auto* value = node.Find(Tag::pValue);
    if (value && !node.Find(Tag::pValueCopy)) return engine.arena.Make<NodeSource<T>>(Required(node, *value));
    if (value) {
        std::vector<Node*> targets;
        size_t shown = 0;
        for (const auto& property : engine.table.Properties(node.GetRecord())) {
            if (property.tag == Tag::pValue) shown = targets.size();
            if (property.tag == Tag::pValue || property.tag == Tag::pValueCopy) targets.push_back(&Required(node, property));
        }
        return engine.arena.Make<CopiedSource<T>>(std::move(targets), shown);
    }
    value = node.Find(Tag::Value);
    if (!value) throw LinkError("It has no value.");
    if (const auto word = std::is_integral_v<T> ? parse_boolean(value->Text()) : std::nullopt)
        return engine.arena.Make<StoredSource<T>>(static_cast<T>(*word));
    return engine.arena.Make<StoredSource<T>>(NumberOf<T>(value->Text(), Tag::Value));
}
template Source<int64_t>& LinkContext::MakeSource<int64_t>(Node&);
template Source<double>& LinkContext::MakeSource<double>(Node&);

// ---- variables of formulas ----

Variable LinkContext::MakeVariable(const Node& node, const Property& property) const {
    struct Row {
        std::string_view suffix;
        Part part;
    };
    static constexpr Row rows[] = {
        {"", Part::Value},
        {"Value", Part::Value},
        {"Min", Part::Min},
        {"Max", Part::Max},
        {"Inc", Part::Inc},
        {"AccessMode", Part::AccessMode},
        {"Visibility", Part::Visibility},
        {"CachingMode", Part::CachingMode},
    };
    auto& target = Required(node, property);
    const auto name = property.AttributeText();
    if (name.empty()) fail(property.tag, property.Text(), "has no name in the formula");
    const auto dot = name.find('.');
    const auto suffix = dot == name.npos ? std::string_view() : name.substr(dot + 1);
    for (const auto& row : rows)
        if (row.suffix == suffix) return {&target, row.part, 0};
    const auto entryDot = suffix.find('.');
    const auto kind = suffix.substr(0, entryDot);
    auto* enumeration = dynamic_cast<EnumerationNode*>(&target);
    if (entryDot != suffix.npos && (kind == "Entry" || kind == "Enum") && enumeration) {
        for (const auto* entry : enumeration->entries_)
            if (entry->Symbolic() == suffix.substr(entryDot + 1)) return {&target, Part::Constant, entry->value_};
    }
    fail(property.tag, name, "asks for something that '" + std::string(target.Name()) + "' does not have");
}

std::vector<Variable> LinkContext::Variables(const Node& node) const {
    std::vector<Variable> variables;
    for (const auto& property : engine.table.Properties(node.GetRecord()))
        if (property.tag == Tag::pVariable) variables.push_back(MakeVariable(node, property));
    return variables;
}

}  // namespace kiv::genapi
