/// What a description may say: for each kind of node its children, for each child the form of its text.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "record/elements.h"

namespace kiv::genapi {

/// The form of a child's text.
enum class Form : uint8_t {
    Text,
    Number,  ///< whole in nodes that are whole numbers, else floating point
    Integer,
    Natural,  ///< not below 0
    Hex,      ///< digits without a prefix
    Truth,    ///< xs:boolean
    Word,     ///< one of a list
    Reference,
    Nested,  ///< a node of its own
    Any,     ///< not looked at
};

/// What a reference is used for, and so what may be at its end.
enum class Need : uint8_t {
    Nothing,
    Anything,
    Number,
    Whole,  ///< a number without fraction
    String,
    Port,
    Enumeration,
    Value,  ///< what an application can show
    Entry,
    Memory,  ///< a configuration memory
};

struct ChildRule {
    std::string_view name;
    Form form = Form::Text;
    bool isMany = false;
    bool isNew = false;  ///< only since version 1.1
    Need need = Need::Nothing;
    std::string_view words{};  ///< separated by blanks
};

struct NodeRule {
    Element element;
    std::string_view children;  ///< separated by blanks
    /// Separated by blanks; of each group one must be there: "Value|pValue".
    std::string_view required;
    bool isWhole = true;  ///< numbers in it are integers
};

/// Null when no node has a child of that name.
const ChildRule* find_child_rule(std::string_view name);
const NodeRule& node_rule(Element element);
/// Whether nodes of that kind have such children.
bool allows(Element element, std::string_view child);
/// Groups of children of which a node has at most one.
std::span<const std::string_view> exclusive_groups();
/// Whether a node of that kind serves as what a reference needs.
bool serves(Element element, Need need);

std::vector<std::string_view> split(std::string_view text, char separator);
bool has_word(std::string_view words, std::string_view word);
/// The word that was probably meant; "" when none is near.
std::string_view similar_child(Element element, std::string_view name);

}  // namespace kiv::genapi
