/// A description as it is written: every element with its attributes, text and line, whether the engine knows it or not.
///
/// Building a map does not need this; those who look for what is wrong in a description do.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiv::genapi {

struct SourceAttribute {
    std::string_view name;
    std::string_view value;
};

struct SourceElement {
    std::string_view name;
    std::string text;  ///< without blanks around it; "" when there are elements inside
    uint32_t parent = 0;
    uint32_t line = 0;
    uint32_t firstAttribute = 0;
    uint32_t attributeCount = 0;
};

/// Elements stand in the order of the description; the root is the first.
struct SourceTree {
    SourceTree() = default;
    SourceTree(const SourceTree&) = delete;
    SourceTree& operator=(const SourceTree&) = delete;

    std::span<const SourceAttribute> Attributes(const SourceElement& element) const {
        return std::span(attributes).subspan(element.firstAttribute, element.attributeCount);
    }
    /// "" when there is none.
    std::string_view Attribute(const SourceElement& element, std::string_view name) const {
        for (const auto& attribute : Attributes(element))
            if (attribute.name == name) return attribute.value;
        return {};
    }

    std::string description;  ///< names and attributes point into it
    std::vector<SourceElement> elements;
    std::vector<SourceAttribute> attributes;
};

/// Fills an empty tree. The text has been parsed as a description before; what cannot be parsed leaves the tree empty.
void read_source(std::string_view bytes, SourceTree& tree);

}  // namespace kiv::genapi
