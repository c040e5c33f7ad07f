#include "check/schema.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kiv::genapi {

namespace {

#define KIV_YES_NO "Yes No"
#define KIV_MODES "RO WO RW"

constexpr ChildRule childRules[] = {
    {"Extension", Form::Any, true},
    {"ToolTip"},
    {"Description"},
    {"DisplayName"},
    {"Visibility", Form::Word, false, false, Need::Nothing, "Beginner Expert Guru Invisible"},
    {"DocuURL", Form::Text, false, true},
    {"IsDeprecated", Form::Word, false, true, Need::Nothing, KIV_YES_NO},
    {"EventID", Form::Hex},
    {"pIsImplemented", Form::Reference, false, false, Need::Number},
    {"pIsAvailable", Form::Reference, false, false, Need::Number},
    {"pIsLocked", Form::Reference, false, false, Need::Number},
    {"pBlockPolling", Form::Reference, false, true, Need::Number},
    {"ImposedAccessMode", Form::Word, false, false, Need::Nothing, KIV_MODES},
    {"pError", Form::Reference, true, true, Need::Enumeration},
    {"pAlias", Form::Reference, false, false, Need::Anything},
    {"pCastAlias", Form::Reference, false, true, Need::Anything},
    {"pInvalidator", Form::Reference, true, false, Need::Anything},
    {"pFeature", Form::Reference, true, false, Need::Value},
    {"Streamable", Form::Word, false, false, Need::Nothing, KIV_YES_NO},
    {"Address", Form::Integer, true},
    {"IntSwissKnife", Form::Nested, true},
    {"pAddress", Form::Reference, true, false, Need::Whole},
    {"pIndex", Form::Reference, true, false, Need::Whole},
    {"Length", Form::Natural},
    {"pLength", Form::Reference, false, false, Need::Whole},
    {"AccessMode", Form::Word, false, false, Need::Nothing, KIV_MODES},
    {"pPort", Form::Reference, false, false, Need::Port},
    {"Cachable", Form::Word, false, false, Need::Nothing, "NoCache WriteThrough WriteAround"},
    {"PollingTime", Form::Natural},
    {"Value", Form::Number},
    {"pValue", Form::Reference, false, false, Need::Number},
    {"pValueCopy", Form::Reference, true, true, Need::Number},
    {"ValueIndexed", Form::Number, true},
    {"pValueIndexed", Form::Reference, true, false, Need::Number},
    {"ValueDefault", Form::Number},
    {"pValueDefault", Form::Reference, false, false, Need::Number},
    {"Min", Form::Number},
    {"pMin", Form::Reference, false, false, Need::Number},
    {"Max", Form::Number},
    {"pMax", Form::Reference, false, false, Need::Number},
    {"Inc", Form::Number},
    {"pInc", Form::Reference, false, false, Need::Number},
    {"Unit"},
    {"Representation", Form::Word, false, false, Need::Nothing,
     "Linear Logarithmic Boolean PureNumber HexNumber IPV4Address MACAddress"},
    {"ValidValueSet"},
    {"ValidValuesSet"},
    {"pSelected", Form::Reference, true, false, Need::Value},
    {"Sign", Form::Word, false, false, Need::Nothing, "Signed Unsigned"},
    {"Endianess", Form::Word, false, false, Need::Nothing, "BigEndian LittleEndian"},
    {"Bit", Form::Natural},
    {"LSB", Form::Natural},
    {"MSB", Form::Natural},
    {"StructEntry", Form::Nested, true},
    {"pVariable", Form::Reference, true, false, Need::Anything},
    {"Constant", Form::Number, true, true},
    {"Expression", Form::Text, true, true},
    {"Formula"},
    {"FormulaTo"},
    {"FormulaFrom"},
    {"Slope", Form::Word, false, false, Need::Nothing, "Increasing Decreasing Varying Automatic"},
    {"IsLinear", Form::Word, false, true, Need::Nothing, KIV_YES_NO},
    {"OnValue", Form::Integer},
    {"OffValue", Form::Integer},
    {"CommandValue", Form::Integer},
    {"pCommandValue", Form::Reference, false, false, Need::Number},
    {"EnumEntry", Form::Nested, true},
    {"pEnumEntry", Form::Reference, true, false, Need::Entry},
    {"NumericValue", Form::Any, false, true},
    {"Symbolic"},
    {"IsSelfClearing", Form::Word, false, true, Need::Nothing, KIV_YES_NO},
    {"DisplayNotation", Form::Word, false, true, Need::Nothing, "Automatic Fixed Scientific"},
    {"DisplayPrecision", Form::Natural, false, true},
    {"ChunkID", Form::Hex},
    {"pChunkID", Form::Reference, false, false, Need::Whole},
    {"SwapEndianess", Form::Word, false, false, Need::Nothing, KIV_YES_NO},
    {"CacheChunkData", Form::Word, false, true, Need::Nothing, KIV_YES_NO},
    {"TextDesc", Form::Nested, true},
    {"IntKey", Form::Nested, true},
    {"FeatureID", Form::Any},
    {"Timeout", Form::Any},
};

#define KIV_N                                                                                                                  \
    "Extension ToolTip Description DisplayName Visibility DocuURL IsDeprecated EventID pIsImplemented pIsAvailable pIsLocked " \
    "pBlockPolling ImposedAccessMode pError pAlias pCastAlias pInvalidator "
#define KIV_R KIV_N "Streamable Address IntSwissKnife pAddress pIndex Length pLength AccessMode pPort Cachable PollingTime "
#define KIV_REGISTER "Address|IntSwissKnife|pAddress|pIndex Length|pLength AccessMode pPort "
#define KIV_TABLE "pIndex ValueIndexed pValueIndexed ValueDefault pValueDefault "
#define KIV_LIMITS "Min pMin Max pMax Inc pInc "
#define KIV_SHOWN "Unit Representation "
#define KIV_SHOWN_FLOAT KIV_SHOWN "DisplayNotation DisplayPrecision "
#define KIV_VARIABLES "Streamable pVariable Constant Expression "
#define KIV_FIELD "Bit LSB MSB Sign " KIV_SHOWN "pSelected "

// Indexed by the element.
constexpr NodeRule nodeRules[] = {
    {Element::Node, KIV_N, ""},
    {Element::Category, KIV_N "pFeature", ""},
    {Element::Integer,
     KIV_N "Streamable Value pValue pValueCopy " KIV_TABLE KIV_LIMITS KIV_SHOWN "ValidValueSet ValidValuesSet pSelected",
     "Value|pValue|pIndex"},
    {Element::IntReg, KIV_R "Sign Endianess " KIV_SHOWN "pSelected", KIV_REGISTER "Endianess"},
    {Element::MaskedIntReg, KIV_R KIV_FIELD "Endianess", KIV_REGISTER "Bit|LSB Bit|MSB Endianess"},
    {Element::StructReg, KIV_R "Endianess StructEntry", KIV_REGISTER "Endianess StructEntry"},
    {Element::StructEntry, KIV_N "Streamable AccessMode Cachable PollingTime " KIV_FIELD, "Bit|LSB Bit|MSB"},
    {Element::IntSwissKnife, KIV_N KIV_VARIABLES "Formula " KIV_SHOWN, "Formula"},
    {Element::IntConverter, KIV_N KIV_VARIABLES "FormulaTo FormulaFrom pValue Slope " KIV_SHOWN, "FormulaTo FormulaFrom pValue"},
    {Element::Boolean, KIV_N "Streamable Value pValue OnValue OffValue pSelected", "Value|pValue"},
    {Element::Command, KIV_N "Value pValue CommandValue pCommandValue PollingTime", "Value|pValue CommandValue|pCommandValue"},
    {Element::Enumeration, KIV_N "Streamable EnumEntry pEnumEntry Value pValue pSelected PollingTime",
     "EnumEntry|pEnumEntry Value|pValue"},
    {Element::EnumEntry, KIV_N "Value NumericValue Symbolic IsSelfClearing", "Value"},
    {Element::Float, KIV_N "Streamable Value pValue " KIV_TABLE KIV_LIMITS KIV_SHOWN_FLOAT, "Value|pValue|pIndex", false},
    {Element::FloatReg, KIV_R "Endianess " KIV_SHOWN_FLOAT, KIV_REGISTER "Endianess", false},
    {Element::SwissKnife, KIV_N KIV_VARIABLES "Formula " KIV_SHOWN_FLOAT, "Formula", false},
    {Element::Converter, KIV_N KIV_VARIABLES "FormulaTo FormulaFrom pValue Slope IsLinear " KIV_SHOWN_FLOAT,
     "FormulaTo FormulaFrom pValue", false},
    {Element::String, KIV_N "Streamable Value pValue", "Value|pValue"},
    {Element::StringReg, KIV_R, KIV_REGISTER},
    {Element::Register, KIV_R, KIV_REGISTER},
    {Element::Port, KIV_N "ChunkID pChunkID SwapEndianess CacheChunkData", ""},
    {Element::ConfRom, KIV_N "Unit Address IntSwissKnife pAddress Length pPort TextDesc IntKey",
     "Address|IntSwissKnife|pAddress Length pPort"},
    {Element::TextDesc, "", ""},
    {Element::IntKey, "", ""},
    {Element::AdvFeatureLock, KIV_R "FeatureID Timeout", KIV_REGISTER},
    {Element::SmartFeature, "Address IntSwissKnife pAddress pPort pIsImplemented pIsAvailable", ""},
};

constexpr std::string_view exclusiveGroups[] = {
    "Value|pValue|pIndex",
    "Min|pMin",
    "Max|pMax",
    "Inc|pInc",
    "Length|pLength",
    "Bit|LSB",
    "Bit|MSB",
    "CommandValue|pCommandValue",
    "ValueDefault|pValueDefault",
    "ChunkID|pChunkID",
};

size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (size_t j = 0; j < b.size(); ++j) {
            const auto changed = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
        }
    }
    return row.back();
}

}  // namespace

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const auto part = text.substr(0, text.find(separator));
        if (!part.empty()) parts.push_back(part);
        text.remove_prefix(std::min(text.size(), part.size() + 1));
    }
    return parts;
}

bool has_word(std::string_view words, std::string_view word) {
    for (auto at = words.find(word); at != words.npos && !word.empty(); at = words.find(word, at + 1)) {
        const auto end = at + word.size();
        if ((at == 0 || words[at - 1] == ' ') && (end == words.size() || words[end] == ' ')) return true;
    }
    return false;
}

const ChildRule* find_child_rule(std::string_view name) {
    const auto found =
        std::find_if(std::begin(childRules), std::end(childRules), [&](const ChildRule& rule) { return rule.name == name; });
    return found == std::end(childRules) ? nullptr : found;
}

const NodeRule& node_rule(Element element) {
    static_assert(std::size(nodeRules) == static_cast<size_t>(Element::Group));
    return nodeRules[static_cast<size_t>(element)];
}

bool allows(Element element, std::string_view child) { return has_word(node_rule(element).children, child); }

std::span<const std::string_view> exclusive_groups() { return exclusiveGroups; }

bool serves(Element element, Need need) {
    switch (need) {
        case Need::Nothing:
        case Need::Anything:
            return true;
        case Need::Whole:
            if (element == Element::Float || element == Element::FloatReg || element == Element::SwissKnife ||
                element == Element::Converter)
                return false;
            [[fallthrough]];
        case Need::Number:
            return !serves(element, Need::String) && element != Element::Node && element != Element::Category &&
                   element != Element::Register && element != Element::Port && element != Element::ConfRom;
        case Need::String:
            return element == Element::String || element == Element::StringReg || element == Element::TextDesc;
        case Need::Port:
            return element == Element::Port;
        case Need::Enumeration:
            return element == Element::Enumeration;
        case Need::Value:
            return element != Element::Node && element != Element::Port;
        case Need::Entry:
            return element == Element::EnumEntry;
        case Need::Memory:
            return element == Element::ConfRom;
    }
    return true;
}

std::string_view similar_child(Element element, std::string_view name) {
    constexpr size_t near = 2, longest = 64;
    if (name.size() > longest) return {};
    std::string_view best;
    size_t least = near + 1;
    for (const auto child : split(node_rule(element).children, ' '))
        if (const auto steps = distance(name, child); steps < least) best = child, least = steps;
    return best;
}

}  // namespace kiv::genapi
