// kiv features: the tree of a camera's features with their values and limits, or one feature with all that is known about it.

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>

#include "camera_list.h"
#include "feature.h"
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
    uint32_t level = 2;  // guru: all that is meant for people
    bool all = false;
};

const std::map<std::string, uint32_t> kLevels{{"beginner", 0}, {"expert", 1}, {"guru", 2}, {"invisible", 3}};

using Path = std::vector<std::string>;

/// Goes through the categories in the description's order and hands each feature that the arguments ask for to a visitor.
template <class Visitor>
class TreeWalk {
public:
    TreeWalk(const Camera& camera, const Arguments& arguments, Visitor visit)
        : camera_(camera), arguments_(arguments), visit_(visit) {}

    void Run(const Node& category) { Descend(category, {}); }

private:
    bool IsWanted(const Feature& feature) const {
        return feature.visibility <= arguments_.level && (arguments_.all || feature.access != 0 || !feature.error.empty());
    }

    void Descend(const Node& category, const Path& path) {
        // A faulty description can put a category below itself.
        if (!open_.insert(category.Name()).second) return;
        for (const Node& node : category.SubFeatures(camera_.Get())) {
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

    const Camera& camera_;
    const Arguments& arguments_;
    Visitor visit_;
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

void print_feature(const Feature& feature, const Path& path, bool all) {
    const std::string indent(kIndent * path.size(), ' ');
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

void print_fact(const char* label, const std::string& text) {
    if (!text.empty()) std::printf("  %-14s %s\n", label, text.c_str());
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
    print_fact("selected by", printable(joined(feature.selected_by, ", ")));
    std::vector<std::string> selected;
    for (const Node& target : node.Selected()) selected.push_back(target.Name());
    print_fact("selects", printable(joined(selected, ", ")));
    print_fact("tool tip", printable(node.ToolTip()));
    print_fact("description", printable(node.Description()));
    for (const EnumEntry& entry : feature.entries) {
        if (!entry.available && !all) continue;
        const std::string name = entry.display_name == entry.name ? "" : "  \"" + printable(entry.display_name) + "\"";
        std::printf("    %s %10lld%s%s\n", padded(printable(entry.name), 30).c_str(), static_cast<long long>(entry.value),
                    name.c_str(), entry.available ? "" : "  (not available)");
    }
}

void print_json(const Camera& camera, const Node& top, bool is_category, const Arguments& arguments) {
    nlohmann::json json{{"camera", camera.Id()}, {"features", nlohmann::json::array()}};
    const auto add = [&json](const Feature& feature, const Path& path) {
        nlohmann::json one = to_json(feature);
        one["category"] = path;
        json["features"].push_back(std::move(one));
    };
    if (is_category) {
        TreeWalk(camera, arguments, add).Run(top);
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
    if (options.json) {
        print_json(camera, top, is_category, arguments);
    } else if (is_category) {
        TreeWalk(camera, arguments, [&](const Feature& feature, const Path& path) {
            print_feature(feature, path, arguments.all);
        }).Run(top);
    } else {
        explain_feature(top, arguments.all);
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
    command
        ->add_option("--level", arguments->level, "Hide what is above this visibility level: beginner, expert, guru, invisible")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(kLevels, CLI::ignore_case).description(""))
        ->default_str("guru");
    command->add_flag("--all", arguments->all,
                      "Show features that the camera does not implement, and entries that are not available");
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation, arguments] {
        invocation.run = [&invocation, arguments] { return features(invocation.options, *arguments); };
    });
}
