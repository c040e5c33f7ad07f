// What a node tells from its description: names, texts, flags, properties.
#include <optional>

#include "link/number_text.h"
#include "runtime/node.h"

namespace kiv::genapi {

using namespace GenApi;

std::string_view Node::Text(Tag tag) const {
    const auto* property = Find(tag);
    return property ? property->Text() : std::string_view();
}

Node* Node::Target(const Property* property) const {
    return property && property->target != nothing ? engine_.nodes[property->target] : nullptr;
}

gcstring Node::GetName(bool fullQualified) const {
    if (!fullQualified) return Name();
    return std::string(GetRecord().isStandard ? "Std::" : "Cust::").append(Name());
}

ENameSpace Node::GetNameSpace() const { return GetRecord().isStandard ? Standard : Custom; }
gcstring Node::GetToolTip() const { return TextOf(Tag::ToolTip); }
gcstring Node::GetDescription() const { return TextOf(Tag::Description); }
gcstring Node::GetDeviceName() const { return engine_.deviceName; }
gcstring Node::GetEventID() const { return TextOf(Tag::EventID); }

gcstring Node::GetDisplayName() const { return DisplayName(); }

std::string_view Node::DisplayName() const {
    const auto text = Text(Tag::DisplayName);
    if (!text.empty()) return text;
    return GetRecord().symbolic.empty() ? Name() : GetRecord().symbolic;
}

EVisibility Node::GetVisibility() const {
    EVisibility own = Beginner;
    EVisibilityClass::FromString(Text(Tag::Visibility), &own);
    const AutoLock hold(engine_.lock);
    return Combine(own, imposedVisibility_);
}

bool Node::IsStreamable() const { return parse_boolean(Text(Tag::Streamable)).value_or(false); }
bool Node::IsDeprecated() const { return parse_boolean(Text(Tag::IsDeprecated)).value_or(false); }

namespace {

/// What $(Sys::NAME) stands for in the address of a document; nothing for what is not known here.
std::optional<std::string> system_text(std::string_view name, const Node& node) {
    const auto& info = node.Context().table.info;
    const auto version = [](const uint16_t(&v)[3]) {
        return std::to_string(v[0]) + "." + std::to_string(v[1]) + "." + std::to_string(v[2]);
    };
    if (name == "NodeName") return std::string(node.Name());
    if (name == "ModelName") return std::string(info.modelName);
    if (name == "VendorName") return std::string(info.vendorName);
    if (name == "StandardNamespace" || name == "StandardNameSpace") return std::string(info.standardNameSpace);
    if (name == "DeviceVersion") return version(info.version);
    if (name == "SchemaVersion") return version(info.schema);
    return std::nullopt;
}

std::optional<std::string> variable_text(std::string_view name, const Node& node) {
    if (name.starts_with("Sys::")) return system_text(name.substr(5), node);
    auto* named = node.Context().Find(name);
    auto* value = named ? named->Value() : nullptr;
    if (!value) return std::nullopt;
    try {
        return std::string(value->ToString());
    } catch (const GenICam::GenericException&) {
        return std::nullopt;  // not readable now: the text shows the name
    }
}

}  // namespace

gcstring Node::GetDocuURL() const {
    const auto text = Text(Tag::DocuURL);
    std::string result;
    size_t done = 0;
    while (true) {
        const auto start = text.find("$(", done);
        const auto end = start == text.npos ? text.npos : text.find(')', start);
        if (end == text.npos) return result.append(text.substr(done));
        result.append(text.substr(done, start - done));
        const auto value = variable_text(text.substr(start + 2, end - start - 2), *this);
        result.append(value ? *value : std::string(text.substr(start, end + 1 - start)));
        done = end + 1;
    }
}

INode* Node::GetAlias() const { return Target(Tag::pAlias); }
INode* Node::GetCastAlias() const { return Target(Tag::pCastAlias); }

// ---- properties ----

void Node::GetPropertyNames(GenICam::gcstring_vector& names) const {
    names.clear();
    for (const auto* name : {"NodeType", "Name", "NameSpace", "DeviceName"}) names.push_back(name);
    TagSet seen;
    for (const auto& property : engine_.table.Properties(GetRecord())) {
        if (seen.Has(property.tag)) continue;
        seen.Add(property.tag);
        names.push_back(name_of(property.tag));
    }
    if (GetRecord().element == Element::Enumeration && !Find(Tag::pEnumEntry)) names.push_back(name_of(Tag::pEnumEntry));
    if (!GetRecord().symbolic.empty() && !Find(Tag::Symbolic)) names.push_back(name_of(Tag::Symbolic));
}

bool Node::GetProperty(const gcstring& name, gcstring& value, gcstring& attribute) const {
    value = attribute = {};
    if (name == "NodeType") return value = name_of(GetRecord().element), true;
    if (name == "Name") return value = Name(), true;
    if (name == "NameSpace") return value = ENameSpaceClass::ToString(GetNameSpace()), true;
    if (name == "DeviceName") return value = engine_.deviceName, true;
    const auto tag = find_tag(name);
    if (!tag) return false;
    bool found = false;
    const auto add = [&](std::string_view text, std::string_view attributeText) {
        if (std::exchange(found, true)) value += "\t", attribute += "\t";
        value += text;
        attribute += attributeText;
    };
    for (const auto& property : engine_.table.Properties(GetRecord()))
        if (property.tag == *tag) add(property.Text(), property.AttributeText());
    if (*tag == Tag::Symbolic && !found && !GetRecord().symbolic.empty()) add(GetRecord().symbolic, {});
    if (*tag == Tag::pEnumEntry) {
        const auto& records = engine_.table.records;
        for (size_t i = index_ + 1; i < records.size() && records[i].owner == index_; ++i) add(records[i].name, {});
    }
    if (attribute.find_first_not_of("\t") == gcstring::npos) attribute.clear();
    return found;
}

}  // namespace kiv::genapi
