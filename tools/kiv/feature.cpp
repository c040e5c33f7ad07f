#include "feature.h"

#include <array>
#include <cmath>
#include <limits>

#include "error.h"
#include "text.h"

namespace {

using Json = nlohmann::json;

template <class Number, class Function>
Json limit(Function function, const Node& node, const char* call) {
    Number value{};
    check(function(node.Handle(), &value), call, node.Name());
    return value;
}

bool has_float_step(const Node& node) {
    uint32_t has = 0;
    check(K_Node_GetFloatHasInc(node.Handle(), &has), "K_Node_GetFloatHasInc", node.Name());
    return has != 0;
}

void read_limits(const Node& node, Feature& feature) {
    if (feature.kind == Kind::kInteger) {
        feature.min = limit<int64_t>(K_Node_GetMinInt64, node, "K_Node_GetMinInt64");
        feature.max = limit<int64_t>(K_Node_GetMaxInt64, node, "K_Node_GetMaxInt64");
        feature.inc = limit<int64_t>(K_Node_GetInc, node, "K_Node_GetInc");
    }
    if (feature.kind == Kind::kFloat) {
        feature.min = limit<double>(K_Node_GetMinDouble, node, "K_Node_GetMinDouble");
        feature.max = limit<double>(K_Node_GetMaxDouble, node, "K_Node_GetMaxDouble");
        if (has_float_step(node)) feature.inc = limit<double>(K_Node_GetFloatInc, node, "K_Node_GetFloatInc");
    }
}

void read_value(const Node& node, Feature& feature) {
    feature.text = node.Text();
    feature.value = node_value(node, feature.kind);
    if (feature.kind == Kind::kBoolean) feature.text = feature.value ? "true" : "false";
}

bool has_value(Kind kind) { return kind != Kind::kCategory && kind != Kind::kCommand && kind != Kind::kOther; }

/// The ends of the number types stand for "no limit": nothing to read there.
bool is_no_limit(const Json& number) {
    if (!number.is_number_float())
        return number == std::numeric_limits<int64_t>::min() || number == std::numeric_limits<int64_t>::max();
    return std::abs(number.get<double>()) >= static_cast<double>(std::numeric_limits<float>::max());
}

std::string limit_for_reading(const Json& number) {
    if (is_no_limit(number)) return {};
    return number.is_number_float() ? short_number(number.get<double>()) : number.dump();
}

/// Registers may be thousands of bytes long.
std::string shortened(const std::string& text) {
    constexpr std::size_t kLongest = 66;
    const std::string safe = printable(text);
    if (safe.size() <= kLongest) return safe;
    return safe.substr(0, kLongest / 2) + "... (" + counted((safe.size() - 2) / 2, "byte") + ")";
}

Json entry_json(const EnumEntry& entry) {
    return {{"name", entry.name}, {"display_name", entry.display_name}, {"value", entry.value}, {"available", entry.available}};
}

}  // namespace

Json node_value(const Node& node, Kind kind) {
    switch (kind) {
        case Kind::kInteger:
            return node.Integer();
        case Kind::kFloat:
            return node.Double();
        case Kind::kBoolean:
            return node.Integer() != 0;
        default:
            return node.Text();
    }
}

Feature read_feature(const Node& node) {
    Feature feature;
    feature.name = node.Name();
    try {
        feature.display_name = node.DisplayName();
        feature.kind = node.GetKind();
        feature.visibility = node.Visibility();
        feature.access = node.Access();
        feature.unit = node.Unit();
        for (const Node& selector : node.Selecting()) feature.selected_by.push_back(selector.Name());
        for (const Node& selected : node.Selected()) feature.selects.push_back(selected.Name());
        for (const Node& entry : node.Entries())
            feature.entries.push_back(
                {entry.Symbolic(feature.name), entry.DisplayName(), entry.EntryValue(), entry.IsAvailable()});
        if (node.IsReadable() && has_value(feature.kind)) read_value(node, feature);
        if (node.IsAvailable()) read_limits(node, feature);
    } catch (const ApiError& failure) {
        feature.error = failure.what();
    }
    return feature;
}

Json to_json(const Feature& feature) {
    Json json{{"name", feature.name},
              {"display_name", feature.display_name},
              {"type", kind_name(feature.kind)},
              {"access", access_name(feature.access)},
              {"visibility", visibility_name(feature.visibility)}};
    if (has_value(feature.kind)) json["value"] = feature.value;
    if (has_value(feature.kind)) json["text"] = feature.text;
    if (!feature.unit.empty()) json["unit"] = feature.unit;
    const std::array<std::pair<const char*, const Json*>, 3> limits{
        {{"min", &feature.min}, {"max", &feature.max}, {"inc", &feature.inc}}};
    for (const auto& [key, value] : limits)
        if (!value->is_null()) json[key] = *value;
    for (const EnumEntry& entry : feature.entries) json["entries"].push_back(entry_json(entry));
    if (!feature.selected_by.empty()) json["selected_by"] = feature.selected_by;
    if (!feature.selects.empty()) json["selects"] = feature.selects;
    if (!feature.error.empty()) json["error"] = feature.error;
    return json;
}

std::string value_for_reading(const Feature& feature) {
    if (!feature.error.empty()) return "(" + printable(feature.error) + ")";
    if (feature.access == 0) return "(not implemented)";
    if (feature.access == 1) return "(not available)";
    if (feature.kind == Kind::kCommand) return "(command)";
    if (feature.access == 2) return "(write only)";
    if (feature.kind == Kind::kRegister) return shortened(feature.text);
    const std::string text = feature.kind == Kind::kFloat ? short_number(feature.value.get<double>()) : printable(feature.text);
    return feature.unit.empty() ? text : text + " " + printable(feature.unit);
}

std::string range_for_reading(const Feature& feature) {
    if (feature.min.is_null() || feature.max.is_null()) return {};
    const bool every_step = feature.inc.is_null() || feature.inc == 1;
    const std::string min = limit_for_reading(feature.min), max = limit_for_reading(feature.max);
    const std::string range = min.empty() && max.empty() ? "" : min + " .. " + max;
    return every_step ? range : range + (range.empty() ? "" : " ") + "step " + limit_for_reading(feature.inc);
}

std::string json_text(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n"; }
std::string json_line(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n"; }
