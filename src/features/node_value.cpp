#include "features/node_value.h"

#include <string_view>

#include "features/node_cast.h"

namespace kiv {

namespace {

using namespace GenApi;

constexpr std::string_view words_for_true[] = {"true", "True", "TRUE", "1", "on", "On", "ON"};

bool means_true(std::string_view text) {
    for (auto word : words_for_true)
        if (word == text) return true;
    return false;
}

void set_enumeration(IEnumeration& enumeration, bool verify, std::string_view text) {
    // Display names win over symbolic ones, also over another entry's: user interfaces hand in what they showed.
    if (auto* shown = enumeration.GetEntryByDisplayName(text)) return enumeration.SetIntValue(shown->GetValue(), verify);
    enumeration.FromString(gcstring(text), verify);
}

}  // namespace

bool get_int64(INode& node, bool verify, std::int64_t& value) {
    if (auto* integer = interface_of<IInteger>(node)) return value = integer->GetValue(verify, false), true;
    if (auto* enumeration = interface_of<IEnumeration>(node)) return value = enumeration->GetIntValue(verify, false), true;
    if (auto* boolean = interface_of<IBoolean>(node)) return value = boolean->GetValue(false, false) ? 1 : 0, true;
    return false;
}

bool set_int64(INode& node, bool verify, std::int64_t value) {
    if (auto* integer = interface_of<IInteger>(node)) return integer->SetValue(value, verify), true;
    if (auto* enumeration = interface_of<IEnumeration>(node)) return enumeration->SetIntValue(value, verify), true;
    if (auto* boolean = interface_of<IBoolean>(node)) return boolean->SetValue(value != 0, verify), true;
    return false;
}

bool set_text(INode& node, bool verify, const char* text) {
    if (auto* enumeration = interface_of<IEnumeration>(node)) return set_enumeration(*enumeration, verify, text), true;
    if (auto* boolean = interface_of<IBoolean>(node)) return boolean->SetValue(means_true(text), verify), true;
    if (auto* value = interface_of<IValue>(node)) return value->FromString(text, verify), true;
    if (auto* bytes = interface_of<IRegister>(node)) return bytes->FromString(text, verify), true;
    return false;
}

}  // namespace kiv
