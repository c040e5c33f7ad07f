#include "node.h"

#include <algorithm>
#include <array>
#include <utility>

#include "session.h"

namespace {

struct KindRow {
    uint32_t type;
    Kind kind;
};

constexpr std::array kKinds{
    KindRow{K_NODE_TYPE_CATEGORY, Kind::kCategory},       KindRow{K_NODE_TYPE_INTEGER, Kind::kInteger},
    KindRow{K_NODE_TYPE_MASKED_INT_REG, Kind::kInteger},  KindRow{K_NODE_TYPE_INT_REG, Kind::kInteger},
    KindRow{K_NODE_TYPE_INT_SWISS_KNIFE, Kind::kInteger}, KindRow{K_NODE_TYPE_INT_CONVERTER, Kind::kInteger},
    KindRow{K_NODE_TYPE_INT_KEY, Kind::kInteger},         KindRow{K_NODE_TYPE_FLOAT, Kind::kFloat},
    KindRow{K_NODE_TYPE_FLOAT_REG, Kind::kFloat},         KindRow{K_NODE_TYPE_SWISS_KNIFE, Kind::kFloat},
    KindRow{K_NODE_TYPE_CONVERTER, Kind::kFloat},         KindRow{K_NODE_TYPE_BOOLEAN, Kind::kBoolean},
    KindRow{K_NODE_TYPE_ENUMERATION, Kind::kEnumeration}, KindRow{K_NODE_TYPE_ENUM_ENTRY, Kind::kEntry},
    KindRow{K_NODE_TYPE_COMMAND, Kind::kCommand},         KindRow{K_NODE_TYPE_STRING_REG, Kind::kString},
    KindRow{K_NODE_TYPE_REGISTER, Kind::kRegister},
};

constexpr std::array kKindNames{"category", "integer", "float",  "boolean",  "enumeration",
                                "entry",    "command", "string", "register", "other"};
constexpr std::array kAccessNames{"NI", "NA", "WO", "RO", "RW"};
constexpr std::array kVisibilityNames{"beginner", "expert", "guru", "invisible"};

template <class Names>
const char* name_at(const Names& names, std::size_t index) {
    return index < names.size() ? names[index] : "undefined";
}

using NodeText = K_STATUS_CODES(K_CALL*)(NODE_HANDLE, char*, uint32_t*);

std::string text_of(NodeText function, NODE_HANDLE node, const char* call) {
    return read_text([&](char* buffer, uint32_t* size) { return function(node, buffer, size); }, call);
}

template <class Value, class Function>
Value value_of(Function function, NODE_HANDLE node, const char* call) {
    Value value{};
    check(function(node, &value), call);
    return value;
}

using NodeCount = K_STATUS_CODES(K_CALL*)(NODE_HANDLE, uint32_t*);
using NodeAt = K_STATUS_CODES(K_CALL*)(NODE_HANDLE, uint32_t, NODE_HANDLE*);

/// A list that a node may lack: empty then.
std::vector<Node> list_of(NodeCount count_of, NodeAt at, NODE_HANDLE node, const char* call) {
    uint32_t count = 0;
    if (count_of(node, &count) != K_ST_SUCCESS) return {};
    std::vector<Node> nodes;
    for (uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE element = nullptr;
        check(at(node, i, &element), call);
        nodes.emplace_back(element);
    }
    return nodes;
}

}  // namespace

const char* kind_name(Kind kind) { return name_at(kKindNames, static_cast<std::size_t>(kind)); }
const char* access_name(uint32_t access) { return name_at(kAccessNames, access); }
const char* visibility_name(uint32_t visibility) { return name_at(kVisibilityNames, visibility); }

std::string Node::Name() const {
    return read_text([&](char* buffer, uint32_t* size) { return K_Node_GetName(handle_, buffer, size, 0); }, "K_Node_GetName");
}
std::string Node::DisplayName() const { return text_of(K_Node_GetDisplayName, handle_, "K_Node_GetDisplayName"); }
std::string Node::ToolTip() const { return text_of(K_Node_GetToolTip, handle_, "K_Node_GetToolTip"); }
std::string Node::Description() const { return text_of(K_Node_GetDescription, handle_, "K_Node_GetDescription"); }

std::string Node::Unit() const {
    const Kind kind = GetKind();
    const bool has_unit = kind == Kind::kInteger || kind == Kind::kFloat;
    return has_unit ? text_of(K_Node_GetUnit, handle_, "K_Node_GetUnit") : std::string();
}

Kind Node::GetKind() const {
    const auto type = value_of<uint32_t>(K_Node_GetType, handle_, "K_Node_GetType");
    const auto* row =
        std::find_if(kKinds.begin(), kKinds.end(), [type](const KindRow& candidate) { return candidate.type == type; });
    return row != kKinds.end() ? row->kind : Kind::kOther;
}

uint32_t Node::Access() const { return value_of<uint32_t>(K_Node_GetAccessMode, handle_, "K_Node_GetAccessMode"); }
uint32_t Node::Visibility() const { return value_of<uint32_t>(K_Node_GetVisibility, handle_, "K_Node_GetVisibility"); }

std::string Node::Text() const {
    return read_text([&](char* buffer, uint32_t* size) { return K_Node_GetValueString(handle_, true, buffer, size); },
                     "K_Node_GetValueString", Name());
}

int64_t Node::Integer() const {
    int64_t value = 0;
    check(K_Node_GetValueInt64(handle_, true, &value), "K_Node_GetValueInt64", Name());
    return value;
}

double Node::Double() const {
    double value = 0;
    check(K_Node_GetValueDouble(handle_, true, &value), "K_Node_GetValueDouble", Name());
    return value;
}

std::vector<Node> Node::SubFeatures(CAM_HANDLE camera) const {
    const std::string name = Name();
    uint32_t count = 0;
    check(K_Camera_GetNumOfSubFeatures(camera, name.c_str(), &count), "K_Camera_GetNumOfSubFeatures", name);
    std::vector<Node> features;
    for (uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE feature = nullptr;
        check(K_Camera_GetSubFeatureByIndex(camera, name.c_str(), i, &feature), "K_Camera_GetSubFeatureByIndex", name);
        features.emplace_back(feature);
    }
    return features;
}

std::vector<Node> Node::ModuleSubFeatures(void* module) const {
    const std::string name = Name();
    uint32_t count = 0;
    check(K_GenTL_GetNumOfSubFeatures(module, name.c_str(), &count), "K_GenTL_GetNumOfSubFeatures", name);
    std::vector<Node> features;
    for (uint32_t i = 0; i < count; ++i) {
        NODE_HANDLE feature = nullptr;
        check(K_GenTL_GetSubFeatureByIndex(module, name.c_str(), i, &feature), "K_GenTL_GetSubFeatureByIndex", name);
        features.emplace_back(feature);
    }
    return features;
}

std::vector<Node> Node::Entries() const {
    return list_of(K_Node_GetNumOfEnumEntries, K_Node_GetEnumEntryByIndex, handle_, "K_Node_GetEnumEntryByIndex");
}

std::string Node::Symbolic(const std::string& enumeration) const {
    // Entries stand in the node map as EnumEntry_<enumeration>_<entry>, so that two enumerations can have entries of one name.
    const std::string name = Name();
    const std::string prefix = "EnumEntry_" + enumeration + "_";
    return name.compare(0, prefix.size(), prefix) == 0 ? name.substr(prefix.size()) : name;
}

int64_t Node::EntryValue() const { return value_of<int64_t>(K_Node_GetEnumEntryValue, handle_, "K_Node_GetEnumEntryValue"); }

std::vector<Node> Node::Selecting() const {
    return list_of(K_Node_GetNumOfSelectingFeatures, K_Node_GetSelectingFeatureByIndex, handle_,
                   "K_Node_GetSelectingFeatureByIndex");
}

std::vector<Node> Node::Selected() const {
    return list_of(K_Node_GetNumOfSelectedFeatures, K_Node_GetSelectedFeatureByIndex, handle_,
                   "K_Node_GetSelectedFeatureByIndex");
}
