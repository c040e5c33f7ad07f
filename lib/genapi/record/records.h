/// What a description says, as a flat table without behaviour: a record for each node, in the order of the description, and
/// behind it the texts that stood inside the node. Texts are views into the kept description.
///
/// Groups are gone, a structured register has become a masked register for each of its entries, an entry of an enumeration and a
/// formula inside a register have become nodes of their own.
#pragma once

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "record/elements.h"

namespace kiv::genapi {

constexpr uint32_t nothing = UINT32_MAX;

enum class Attribute : uint8_t { None, Name, Index, Offset, pOffset };

struct Property {
    const char* text = "";
    const char* attributeText = "";
    uint32_t length = 0;
    uint32_t target = nothing;  ///< the record that a reference names, once the linker has found it
    uint32_t attributeLength = 0;
    Tag tag{};
    Attribute attribute = Attribute::None;

    std::string_view Text() const { return {text, length}; }
    std::string_view AttributeText() const { return {attributeText, attributeLength}; }
};

struct Record {
    std::string_view name;
    uint32_t firstProperty = 0;
    uint32_t propertyCount = 0;
    uint32_t owner = nothing;   ///< the enumeration of an entry
    std::string_view symbolic;  ///< the name that an entry has in the description
    Element element{};
    bool isStandard = false;
    bool isInner = false;  ///< stood inside the record before it, or beside others that did
    int8_t mergePriority = 0;
};

/// The root's attributes.
struct DescriptionInfo {
    std::string_view modelName, vendorName, toolTip, standardNameSpace, productGuid, versionGuid;
    uint16_t schema[3] = {};
    uint16_t schemaOfNamespace[2] = {};  ///< zeros when the namespace is none of the known kind
    uint16_t version[3] = {};
};

class RecordTable {
public:
    RecordTable() = default;
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    std::span<const Property> Properties(const Record& record) const {
        return {properties.data() + record.firstProperty, record.propertyCount};
    }
    std::span<Property> Properties(const Record& record) {
        return {properties.data() + record.firstProperty, record.propertyCount};
    }
    /// The first property of that tag; null when there is none.
    const Property* Find(const Record& record, Tag tag) const {
        for (const auto& property : Properties(record))
            if (property.tag == tag) return &property;
        return nullptr;
    }
    /// A copy that lives as long as the table.
    std::string_view Keep(std::string_view text);

    std::string description;  ///< changed in place by reading it; every view points into it or into the kept texts
    DescriptionInfo info;
    std::vector<Record> records;
    std::vector<Property> properties;
    std::vector<std::string> faults;      ///< what was wrong, each with the name of its node
    std::unique_ptr<RecordTable> merged;  ///< another description, whose texts are in use here too

private:
    std::pmr::monotonic_buffer_resource kept_;
};

}  // namespace kiv::genapi
