#include "feature_tree.h"

#include <cstdio>
#include <cstdlib>
#include <set>

#include "text.h"

namespace {

class TreeWalk {
public:
    TreeWalk(const FeatureFilter& filter, const ChildrenOf& children, const FeatureVisitor& visit)
        : filter_(filter), children_(children), visit_(visit) {}

    void Descend(const Node& category, const Path& path) {
        // A faulty description can put a category below itself.
        if (!open_.insert(category.Name()).second) return;
        for (const Node& node : children_(category)) {
            const Feature feature = read_feature(node);
            if (!IsWanted(feature)) continue;
            visit_(feature, path);
            if (feature.kind != Kind::kCategory) continue;
            Path below = path;
            below.push_back(feature.name);
            Descend(node, below);
        }
        open_.erase(category.Name());
    }

private:
    bool IsWanted(const Feature& feature) const {
        return feature.visibility <= filter_.level && (filter_.all || feature.access != 0 || !feature.error.empty());
    }

    const FeatureFilter& filter_;
    const ChildrenOf& children_;
    const FeatureVisitor& visit_;
    std::set<std::string> open_;
};

std::size_t line_width() {
    const char* columns = std::getenv("COLUMNS");
    const long width = columns != nullptr ? std::strtol(columns, nullptr, 10) : 0;
    return width >= 60 ? static_cast<std::size_t>(width) : 120;
}

constexpr std::size_t kNameWidth = 40;
constexpr std::size_t kValueWidth = 24;
constexpr std::size_t kIndent = 2;

/// What may be set: the range, or the entries in as many lines as they need.
std::vector<std::string> choices(const Feature& feature, bool all) {
    const std::size_t used = kNameWidth + kValueWidth + 8;
    const bool is_settable = feature.access == 2 || feature.access == 4;
    if (!is_settable && !all) return {""};
    std::vector<std::string> names;
    for (const EnumEntry& entry : feature.entries)
        if (entry.available || all) names.push_back(printable(entry.name) + (entry.available ? "" : " (not available)"));
    if (names.empty()) return {range_for_reading(feature)};
    return wrapped(names, " | ", line_width() > used + 20 ? line_width() - used : 20);
}

}  // namespace

void print_feature(const Feature& feature, std::size_t depth, bool all) {
    const std::string indent(kIndent * depth, ' ');
    if (feature.kind == Kind::kCategory) {
        std::printf("%s%s\n", indent.c_str(), printable(feature.name).c_str());
        return;
    }
    const std::vector<std::string> lines = choices(feature, all);
    const std::string head = padded(indent + printable(feature.name), kNameWidth) + "  " + access_name(feature.access) + "  ";
    const std::string value = value_for_reading(feature);
    std::printf("%s%s\n", head.c_str(),
                lines[0].empty() ? value.c_str() : (padded(value, kValueWidth) + "  " + lines[0]).c_str());
    for (std::size_t i = 1; i < lines.size(); ++i)
        std::printf("%s%s\n", std::string(head.size() + kValueWidth + 2, ' ').c_str(), lines[i].c_str());
}

void walk_features(const Node& category, const FeatureFilter& filter, const ChildrenOf& children, const FeatureVisitor& visit) {
    TreeWalk(filter, children, visit).Descend(category, {});
}

nlohmann::json to_json(const Feature& feature, const Path& path) {
    nlohmann::json json = to_json(feature);
    json["category"] = path;
    return json;
}
