/// Everything that kiv shows about one feature, read once from its node: as JSON for programs and as a value for people.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "node.h"

struct EnumEntry {
    std::string name;
    std::string display_name;
    int64_t value = 0;
    bool available = false;
};

struct Feature {
    std::string name;
    std::string display_name;
    Kind kind = Kind::kOther;
    uint32_t access = 0;
    uint32_t visibility = 0;
    std::string unit;
    std::string text;         ///< the value as a text; empty when it cannot be read
    nlohmann::json value;     ///< the value by its type; null when it cannot be read
    nlohmann::json min, max;  ///< numbers; null where there are no limits
    nlohmann::json inc;       ///< null where every step is allowed
    std::vector<EnumEntry> entries;
    std::vector<std::string> selected_by;  ///< its selectors: the value is that of what they point at
    std::vector<std::string> selects;      ///< of a selector: the features that it selects
    std::string error;                     ///< why the value or its limits could not be read although the access mode allows it
};

/// A failing device does not throw here: it is told in `error`, so that one broken feature does not hide all others.
Feature read_feature(const Node& node);

/// A value by its type, enumerations by the entry's name. Throws ApiError when it cannot be read.
nlohmann::json node_value(const Node& node, Kind kind);

/// The keys are documented in docs/kiv-tool.md.
nlohmann::json to_json(const Feature& feature);

/// "640", "5000 us", "(command)"; why not, in brackets, when there is no value.
std::string value_for_reading(const Feature& feature);
/// "16 .. 2592 step 16" for numbers; empty for others.
std::string range_for_reading(const Feature& feature);

/// JSON as kiv prints it. Bytes of a device's text that are no UTF-8 are replaced, as JSON cannot carry them.
std::string json_text(const nlohmann::json& json);
/// The same in a single line, for output that has no end.
std::string json_line(const nlohmann::json& json);
