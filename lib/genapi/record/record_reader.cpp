#include "record/record_reader.h"

#include <algorithm>
#include <pugixml.hpp>

#include "GenICam/exceptions.h"
#include "link/number_text.h"
#include "record/description_text.h"

namespace kiv::genapi {

namespace {

std::string_view attribute_text(pugi::xml_node element, const char* name) { return trimmed(element.attribute(name).value()); }

/// What the entries of a structured register share is repeated for each of them; a hostile description could fill the memory.
constexpr size_t mostProperties = 4'000'000;
/// Names are repeated too, in the names of entries.
constexpr size_t longestName = 1000;

class Reader {
public:
    explicit Reader(RecordTable& table) : table_(table) {}

    void ReadRoot(pugi::xml_node root);

private:
    void ReadSchemaOfNamespace(pugi::xml_node root);
    void ReadNodes(pugi::xml_node root);
    void ReadNode(pugi::xml_node element, Element kind);
    void ReadStructReg(pugi::xml_node element);
    void ReadEmbedded(pugi::xml_node element, Element kind, uint32_t owner);
    /// The properties of one element; nodes inside it are left for later.
    void ReadProperties(pugi::xml_node element, std::vector<Property>& properties);
    uint32_t AddRecord(pugi::xml_node element, Element kind, std::string_view name, const std::vector<Property>& properties);
    std::string_view TextOf(pugi::xml_node element, bool trim);
    void Fault(std::string text) { table_.faults.push_back(std::move(text)); }

    RecordTable& table_;
    std::vector<Property> scratch_;
    bool hasInner_ = false;  // the element that was read last has nodes inside
};

/// Text is in the element itself; only a description that mixes text with CDATA sections needs a copy.
std::string_view Reader::TextOf(pugi::xml_node element, bool trim) {
    std::string_view text = element.value();
    if (const auto child = element.first_child();
        child && (child.type() == pugi::node_cdata || child.type() == pugi::node_pcdata)) {
        std::string joined(text);
        for (const auto part : element.children()) joined += part.name()[0] == '\0' ? part.value() : "";
        text = table_.Keep(joined);
    }
    return trim ? trimmed(text) : text;
}

Attribute read_attribute(pugi::xml_node element, Tag tag, std::string_view& text) {
    struct Row {
        Tag tag;
        const char* name;
        Attribute attribute;
    };
    static constexpr Row rows[] = {
        {Tag::pVariable, "Name", Attribute::Name},       {Tag::Constant, "Name", Attribute::Name},
        {Tag::Expression, "Name", Attribute::Name},      {Tag::ValueIndexed, "Index", Attribute::Index},
        {Tag::pValueIndexed, "Index", Attribute::Index}, {Tag::pIndex, "Offset", Attribute::Offset},
        {Tag::pIndex, "pOffset", Attribute::pOffset},
    };
    if (!element.first_attribute()) return Attribute::None;
    for (const auto& row : rows) {
        if (row.tag != tag) continue;
        if (const auto found = element.attribute(row.name)) {
            text = trimmed(found.value());
            return row.attribute;
        }
    }
    return Attribute::None;
}

void Reader::ReadProperties(pugi::xml_node element, std::vector<Property>& properties) {
    for (auto child = element.first_child(); child; child = child.next_sibling()) {
        const auto tag = find_tag(child.name());
        if (!tag) continue;
        const bool isNode = *tag == Tag::IntSwissKnife;  // stands for its name here and is read as a node later
        const auto text = isNode ? attribute_text(child, "Name") : TextOf(child, *tag != Tag::Value);
        hasInner_ |= isNode;
        std::string_view attributeText;
        Property property;
        property.attribute = read_attribute(child, *tag, attributeText);
        property.tag = *tag;
        property.text = text.data();
        property.length = static_cast<uint32_t>(text.size());
        property.attributeText = attributeText.data();
        property.attributeLength = static_cast<uint32_t>(attributeText.size());
        properties.push_back(property);
    }
}

Property reference_to(std::string_view name, Tag tag) {
    Property property;
    property.tag = tag;
    property.text = name.data();
    property.length = static_cast<uint32_t>(name.size());
    return property;
}

uint32_t Reader::AddRecord(pugi::xml_node element, Element kind, std::string_view name, const std::vector<Property>& properties) {
    Record record;
    record.name = name;
    record.element = kind;
    record.isStandard = attribute_text(element, "NameSpace") == "Standard";
    record.mergePriority =
        static_cast<int8_t>(std::clamp<int64_t>(parse_integer(attribute_text(element, "MergePriority")).value_or(0), -1, 1));
    record.firstProperty = static_cast<uint32_t>(table_.properties.size());
    record.propertyCount = static_cast<uint32_t>(properties.size());
    table_.properties.insert(table_.properties.end(), properties.begin(), properties.end());
    table_.records.push_back(record);
    return static_cast<uint32_t>(table_.records.size() - 1);
}

/// Elements inside a node that are nodes themselves: entries, formulas of an address, keys of a configuration memory.
void Reader::ReadEmbedded(pugi::xml_node element, Element kind, uint32_t owner) {
    for (const auto child : element.children()) {
        const auto inner = find_element(child.name());
        const bool isEntry = kind == Element::Enumeration && inner == Element::EnumEntry;
        const bool isKey = kind == Element::ConfRom && (inner == Element::TextDesc || inner == Element::IntKey);
        if (!isEntry && !isKey && inner != Element::IntSwissKnife) continue;
        auto name = attribute_text(child, "Name");
        if (name.empty() || name.size() > longestName) continue;
        const auto symbolic = name;
        if (isEntry) name = table_.Keep("EnumEntry_" + std::string(table_.records[owner].name) + "_" + std::string(symbolic));
        scratch_.clear();
        ReadProperties(child, scratch_);
        if (isKey) scratch_.push_back(reference_to(table_.records[owner].name, Tag::p1212Parser));
        const auto index = AddRecord(child, *inner, name, scratch_);
        table_.records[index].isInner = true;
        if (!isEntry) continue;
        table_.records[index].owner = owner;
        table_.records[index].symbolic = symbolic;
    }
}

void Reader::ReadNode(pugi::xml_node element, Element kind) {
    const auto name = attribute_text(element, "Name");
    if (name.empty()) return Fault("A node of kind " + std::string(name_of(kind)) + " has no name.");
    if (name.size() > longestName) return Fault("The name '" + std::string(name.substr(0, 40)) + "...' is too long.");
    scratch_.clear();
    hasInner_ = kind == Element::Enumeration || kind == Element::ConfRom;
    ReadProperties(element, scratch_);
    const bool hasInner = hasInner_;
    if (kind == Element::IntKey || kind == Element::TextDesc) {
        if (const auto parser = attribute_text(element, "p1212Parser"); !parser.empty())
            scratch_.push_back(reference_to(parser, Tag::p1212Parser));
    }
    const auto index = AddRecord(element, kind, name, scratch_);
    if (hasInner) ReadEmbedded(element, kind, index);
}

void Reader::ReadStructReg(pugi::xml_node element) {
    std::vector<Property> common, own;
    ReadProperties(element, common);
    for (auto entry = element.child("StructEntry"); entry; entry = entry.next_sibling("StructEntry")) {
        const auto name = attribute_text(entry, "Name");
        if (name.empty()) {
            Fault("An entry of a structured register has no name.");
            continue;
        }
        own.clear();
        ReadProperties(entry, own);
        TagSet present;
        for (const auto& property : own) present.Add(property.tag);
        for (const auto& property : common)
            if (!present.Has(property.tag)) own.push_back(property);
        if (table_.properties.size() + own.size() > mostProperties)
            return Fault("The structured register of '" + std::string(name) + "' is too large.");
        AddRecord(entry, Element::MaskedIntReg, name, own);
    }
    ReadEmbedded(element, Element::StructReg, nothing);
}

/// Groups may be nested to any depth, so they are walked, not recursed into.
void Reader::ReadNodes(pugi::xml_node root) {
    for (auto element = root.first_child(); element;) {
        if (const auto kind = find_element(element.name())) {
            if (*kind == Element::Group && element.first_child()) {
                element = element.first_child();
                continue;
            }
            if (*kind == Element::StructReg)
                ReadStructReg(element);
            else if (*kind != Element::StructEntry && *kind != Element::Group)
                ReadNode(element, *kind);
        }
        while (!element.next_sibling() && element.parent() != root) element = element.parent();
        element = element.next_sibling();
    }
}

void Reader::ReadRoot(pugi::xml_node root) {
    const auto number = [&](const char* name) {
        return static_cast<uint16_t>(parse_integer(attribute_text(root, name)).value_or(0));
    };
    auto& info = table_.info;
    info.modelName = root.attribute("ModelName").value();
    info.vendorName = root.attribute("VendorName").value();
    info.toolTip = root.attribute("ToolTip").value();
    info.standardNameSpace = attribute_text(root, "StandardNameSpace");
    info.productGuid = attribute_text(root, "ProductGuid");
    info.versionGuid = attribute_text(root, "VersionGuid");
    const char* const schema[] = {"SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion"};
    const char* const version[] = {"MajorVersion", "MinorVersion", "SubMinorVersion"};
    std::transform(std::begin(schema), std::end(schema), info.schema, number);
    std::transform(std::begin(version), std::end(version), info.version, number);
    ReadSchemaOfNamespace(root);
    ReadNodes(root);
}

void Reader::ReadSchemaOfNamespace(pugi::xml_node root) {
    constexpr std::string_view space = "http://www.genicam.org/GenApi/Version_";
    auto& info = table_.info;
    for (const auto attribute : root.attributes()) {
        auto text = trimmed(attribute.value());
        if (!std::string_view(attribute.name()).starts_with("xmlns") || !text.starts_with(space)) continue;
        text.remove_prefix(space.size());
        const auto major = parse_integer(text.substr(0, text.find('_')));
        const auto minor = parse_integer(text.substr(std::min(text.size(), text.find('_') + 1)));
        if (!major || !minor || *major < 0 || *minor < 0 || *major > UINT16_MAX || *minor > UINT16_MAX) continue;
        info.schemaOfNamespace[0] = static_cast<uint16_t>(*major);
        info.schemaOfNamespace[1] = static_cast<uint16_t>(*minor);
    }
    if (info.schema[0] == 0) std::copy_n(info.schemaOfNamespace, 2, info.schema);
}

/// The guess was far off; a small excess is not worth copying everything.
template <class List>
void shrink(List& list) {
    if (list.capacity() > list.size() + list.size() / 2) list.shrink_to_fit();
}

[[noreturn]] void throw_parse_error(std::string_view text, const pugi::xml_parse_result& result) {
    const auto offset = std::min<size_t>(result.offset > 0 ? static_cast<size_t>(result.offset) : 0, text.size());
    const auto before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const auto column = offset - (before.rfind('\n') == before.npos ? 0 : before.rfind('\n') + 1) + 1;
    throw GenICam::RuntimeException("Error while parsing XML stream at line " + std::to_string(line) + " and column " +
                                    std::to_string(column) + " : '" + result.description() + "'");
}

}  // namespace

std::string_view RecordTable::Keep(std::string_view text) {
    if (text.empty()) return {};
    auto* copy = static_cast<char*>(kept_.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), copy);
    return {copy, text.size()};
}

void read_records(std::string description, RecordTable& table) {
    table.description = clean_description(std::move(description));
    auto& text = table.description;
    constexpr unsigned options = pugi::parse_embed_pcdata | pugi::parse_escapes | pugi::parse_cdata;
    pugi::xml_document document;
    const auto result = document.load_buffer_inplace(text.data(), text.size(), options, pugi::encoding_utf8);
    if (!result) throw_parse_error(text, result);
    const auto root = document.document_element();
    if (std::string_view(root.name()) != "RegisterDescription")
        throw GenICam::RuntimeException("Error while parsing XML stream at line 1 and column 1 : 'the root element is \"" +
                                        std::string(root.name()) + "\", not \"RegisterDescription\"'");
    table.records.reserve(text.size() / 300);
    table.properties.reserve(text.size() / 40);
    Reader(table).ReadRoot(root);
    shrink(table.records);
    shrink(table.properties);
}

void require_known_schema(const DescriptionInfo& info) {
    constexpr std::pair<uint16_t, uint16_t> newest{1, 1};
    for (const auto* version : {info.schema, info.schemaOfNamespace}) {
        if (std::pair(version[0], version[1]) <= newest) continue;
        throw GenICam::RuntimeException("The description is made for version " + std::to_string(version[0]) + "." +
                                        std::to_string(version[1]) + " of the schema; the newest one that is known is 1.1.");
    }
}

}  // namespace kiv::genapi
