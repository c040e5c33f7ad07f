// kiv features: the tree of a camera's features with their values and limits, or one feature with all that is known about it.

#include <cstdio>

#include "camera_list.h"
#include "feature_tree.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "NAME is a category, of which the features are shown, or a feature, which is explained.\n"
    "Columns: name, access (RO read only, RW, WO write only, NA not available at present), value, and of what can be set\n"
    "the range or the entries.\n"
    "\n"
    "Examples:\n"
    "  kiv features 0\n"
    "  kiv features 0 --level beginner\n"
    "  kiv features 0 ImageFormatControl\n"
    "  kiv features 0 PixelFormat\n"
    "  kiv features 0 --json | jq '.features[] | select(.access == \"RW\") | .name'";

struct Arguments {
    std::string camera;
    std::string name = "Root";
    FeatureFilter filter;
};

void print_fact(const char* label, const std::string& text) {
    if (!text.empty()) std::printf("  %-14s %s\n", label, text.c_str());
}

/// With the values that they have at present, because it is for these that the feature's value holds.
std::string selectors_for_reading(const Node& node) {
    std::vector<std::string> texts;
    for (const Node& selector : node.Selecting())
        texts.push_back(selector.Name() + (selector.IsReadable() ? "=" + selector.Text() : ""));
    return joined(texts, ", ");
}

void explain_feature(const Node& node, bool all) {
    const Feature feature = read_feature(node);
    std::printf("%s\n", printable(feature.name).c_str());
    print_fact("display name", printable(feature.display_name));
    print_fact("type", kind_name(feature.kind));
    print_fact("access", access_name(feature.access));
    print_fact("visibility", visibility_name(feature.visibility));
    print_fact("value", value_for_reading(feature));
    print_fact("range", range_for_reading(feature));
    print_fact("selected by", printable(selectors_for_reading(node)));
    print_fact("selects", printable(joined(feature.selects, ", ")));
    print_fact("tool tip", printable(node.ToolTip()));
    print_fact("description", printable(node.Description()));
    for (const EnumEntry& entry : feature.entries) {
        if (!entry.available && !all) continue;
        const std::string name = entry.display_name == entry.name ? "" : "  \"" + printable(entry.display_name) + "\"";
        std::printf("    %s %10lld%s%s\n", padded(printable(entry.name), 30).c_str(), static_cast<long long>(entry.value),
                    name.c_str(), entry.available ? "" : "  (not available)");
    }
}

void walk(const Camera& camera, const Node& top, const FeatureFilter& filter, const FeatureVisitor& visit) {
    walk_features(
        top, filter, [&camera](const Node& category) { return category.SubFeatures(camera.Get()); }, visit);
}

void print_json(const Camera& camera, const Node& top, bool is_category, const FeatureFilter& filter) {
    nlohmann::json json{{"camera", camera.Id()}, {"features", nlohmann::json::array()}};
    if (is_category) {
        walk(camera, top, filter,
             [&json](const Feature& feature, const Path& path) { json["features"].push_back(to_json(feature, path)); });
    } else {
        nlohmann::json one = to_json(read_feature(top));
        one["tool_tip"] = top.ToolTip();
        one["description"] = top.Description();
        json["features"].push_back(std::move(one));
    }
    std::fputs(json_text(json).c_str(), stdout);
}

ExitCode features(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    const Node top(camera.NodeByName(arguments.name));
    const bool is_category = top.GetKind() == Kind::kCategory;
    const FeatureFilter& filter = arguments.filter;
    if (options.json) {
        print_json(camera, top, is_category, filter);
    } else if (is_category) {
        walk(camera, top, filter,
             [&filter](const Feature& feature, const Path& path) { print_feature(feature, path.size(), filter.all); });
    } else {
        explain_feature(top, filter.all);
    }
    return ExitCode::kOk;
}

}  // namespace

void add_features_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("features", "Show the features as a tree, with values, units and ranges");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("name", arguments->name, "Category or feature")->capture_default_str();
    add_level_options(*command, arguments->filter.level, arguments->filter.all);
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation, arguments] {
        invocation.run = [&invocation, arguments] { return features(invocation.options, *arguments); };
    });
}
