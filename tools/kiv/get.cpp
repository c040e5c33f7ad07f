// kiv get: the values of features.

#include <cstdio>

#include "camera_list.h"
#include "feature.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Prints NAME=VALUE lines, as \"kiv set\" takes them. --json adds type, unit and range.\n"
    "\n"
    "Examples:\n"
    "  kiv get 0 ExposureTime Gain\n"
    "  width=$(kiv get 0 Width --value)";

struct Arguments {
    std::string camera;
    std::vector<std::string> names;
    bool value_only = false;
};

/// The value alone or the reason why there is none.
Feature readable_feature(const Camera& camera, const std::string& name) {
    const Node node(camera.NodeByName(name));
    Feature feature = read_feature(node);
    if (!feature.error.empty()) throw ToolError(ExitCode::kFailed, feature.error);
    if (feature.kind == Kind::kCategory || feature.kind == Kind::kCommand)
        throw ToolError(ExitCode::kFailed, "\"" + name + "\" is a " + kind_name(feature.kind) + " and has no value");
    // Asking for the value of what cannot be read yields the library's own words for it.
    if (feature.value.is_null()) node.Text();
    return feature;
}

ExitCode get(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    nlohmann::json json{{"camera", camera.Id()}, {"features", nlohmann::json::array()}};
    for (const std::string& name : arguments.names) {
        const Feature feature = readable_feature(camera, name);
        json["features"].push_back(to_json(feature));
        const std::string head = arguments.value_only ? "" : name + "=";
        if (!options.json) std::printf("%s%s\n", head.c_str(), printable(feature.text).c_str());
    }
    if (options.json) std::fputs(json_text(json).c_str(), stdout);
    return ExitCode::kOk;
}

}  // namespace

void add_get_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("get", "Print values of features");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("names", arguments->names, "Features")->required();
    command->add_flag("--value", arguments->value_only, "Print the values alone");
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return get(invocation.options, *arguments); }; });
}
