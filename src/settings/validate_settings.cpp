#include "settings/validate_settings.h"

#include <kiv/node.h>
#include <kiv/platform/debug_output.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "features/node_cast.h"
#include "features/node_type.h"
#include "settings/write_setting.h"

namespace kiv {

namespace {

constexpr std::size_t longest_text = 10000;

std::string quoted(const std::string& text) { return "'" + text + "'"; }

std::string out_of_range(const Setting& setting, const std::string& minimum, const std::string& maximum) {
    return "Warning: Feature " + quoted(setting.feature) + " with value " + quoted(setting.value) +
           " is outside the legal range of the feature [" + minimum + "-" + maximum + "]";
}

/// Bounds are told as 32-bit numbers, as readers of these texts know them.
std::string narrowed(std::int64_t bound) { return std::to_string(static_cast<std::int32_t>(bound)); }

std::string six_decimals(double bound) {
    char text[400];  // the largest double has 309 digits before the point
    std::snprintf(text, sizeof text, "%lf", bound);
    return text;
}

std::optional<std::int64_t> whole_decimal(const std::string& text) {
    std::int64_t value = 0;
    auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

bool has_entry(GenApi::IEnumeration& enumeration, const Setting& setting) {
    GenApi::NodeList_t entries;
    enumeration.GetEntries(entries);
    // "EnumEntry_", the feature's name, and another "_" stand before the symbolic name.
    const auto prefix = setting.feature.size() + 11;
    for (auto* entry : entries) {
        const std::string name = entry->GetName().c_str();
        if (name.size() >= prefix && name.compare(prefix, std::string::npos, setting.value) == 0) return true;
    }
    for (auto* entry : entries)
        if (setting.value == entry->GetDisplayName().c_str()) return true;
    auto value = whole_decimal(setting.value);
    return value && enumeration.GetEntry(*value);
}

class Validator {
public:
    Validator(GenApi::INodeMap& map, const RecordError& record) : map_(map), record_(record) {}

    void Check(const Setting& setting) try {
        if (setting.feature.starts_with('#')) return;
        auto* node = setting.feature.empty() ? nullptr : map_.GetNode(setting.feature.c_str());
        if (!node) return Error("Error: Feature " + quoted(setting.feature) + " not found in node tree!");
        auto type = node_type(*node);
        if (!type) return Error("Error: Unable to get node type for Feature " + quoted(setting.feature));
        switch (*type) {
            case K_NODE_TYPE_INTEGER:
                return Integer(*node, setting);
            case K_NODE_TYPE_ENUMERATION:
                return Enumeration(*node, setting);
            case K_NODE_TYPE_FLOAT:
                return Float(*node, setting);
            case K_NODE_TYPE_SELECTOR:
                return platform::debug_print("Selector\n");
            default:
                return;
        }
    } catch (const GenICam::GenericException& error) {
        record_(error);
    }

    Validation Take() { return std::move(found_); }

private:
    void Integer(GenApi::INode& node, const Setting& setting) {
        auto* integer = interface_of<GenApi::IInteger>(node);
        if (!integer) return;
        auto value = std::strtoll(setting.value.c_str(), nullptr, 10);
        auto minimum = integer->GetMin(), maximum = integer->GetMax();
        if (value < minimum || value > maximum) Warning(out_of_range(setting, narrowed(minimum), narrowed(maximum)));
        WriteSelector(node, setting);
    }

    void Enumeration(GenApi::INode& node, const Setting& setting) {
        auto* enumeration = interface_of<GenApi::IEnumeration>(node);
        if (!enumeration || !has_entry(*enumeration, setting))
            return Error("Error: Unable to match the enumeration value " + quoted(setting.value) + " for Feature " +
                         quoted(setting.feature));
        WriteSelector(node, setting);
    }

    void Float(GenApi::INode& node, const Setting& setting) {
        auto* number = interface_of<GenApi::IFloat>(node);
        if (!number) return;
        auto value = std::strtod(setting.value.c_str(), nullptr);
        auto minimum = number->GetMin(), maximum = number->GetMax();
        if (minimum > value || value > maximum) Warning(out_of_range(setting, six_decimals(minimum), six_decimals(maximum)));
    }

    void WriteSelector(GenApi::INode& node, const Setting& setting) {
        auto* selector = interface_of<GenApi::ISelector>(node);
        if (selector && selector->IsSelector()) write_setting(node, setting.value, record_);
    }

    void Error(const std::string& text) {
        found_.has_errors = true;
        Tell(text);
    }
    void Warning(const std::string& text) {
        found_.has_warnings = true;
        Tell(text);
    }
    void Tell(const std::string& text) {
        platform::debug_print(text + "\n");
        found_.text += (text + "\n").substr(0, longest_text - found_.text.size());
    }

    GenApi::INodeMap& map_;
    const RecordError& record_;
    Validation found_;
};

}  // namespace

Validation validate_settings(GenApi::INodeMap& map, const Settings& settings, const RecordError& record) {
    Validator validator(map, record);
    for (auto& setting : settings) validator.Check(setting);
    return validator.Take();
}

}  // namespace kiv
