// kiv set: writes features, in the order of the command line.

#include <algorithm>
#include <array>
#include <cstdio>

#include "camera_list.h"
#include "feature.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Features are set in the order given; the first failure ends it. An unknown name or a word that is no boolean\n"
    "is found before anything is set. Prints what each feature holds afterwards.\n"
    "Enumerations take the entry's name or its display name; booleans true, 1, on or false, 0, off.\n"
    "\n"
    "Examples:\n"
    "  kiv set 0 ExposureTime=5000 PixelFormat=BayerRG12p\n"
    "  kiv set 0 GainSelector=DigitalAll Gain=3.5";

struct Arguments {
    std::string camera;
    std::vector<std::string> assignments;
};

struct Assignment {
    std::string name;
    std::string value;
};

std::vector<Assignment> parsed(const std::vector<std::string>& words) {
    std::vector<Assignment> assignments;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos || equals == 0)
            throw ToolError(ExitCode::kUsage, "\"" + printable(word) + "\" is not of the form NAME=VALUE");
        assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
    }
    return assignments;
}

/// The library takes every word that it does not know for false; someone who types "yes" means the contrary.
void require_boolean(const Assignment& assignment) {
    constexpr std::array kWords{"true",  "True",  "TRUE",  "1", "on",  "On",  "ON",
                                "false", "False", "FALSE", "0", "off", "Off", "OFF"};
    if (std::find(kWords.begin(), kWords.end(), assignment.value) == kWords.end())
        throw ToolError(ExitCode::kUsage, "\"" + printable(assignment.value) + "\" is no value for the boolean " +
                                              assignment.name + ": say true, 1, on or false, 0, off");
}

ExitCode set(const Options& options, const Arguments& arguments) {
    const std::vector<Assignment> assignments = parsed(arguments.assignments);
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    for (const Assignment& assignment : assignments)
        if (Node(camera.NodeByName(assignment.name)).GetKind() == Kind::kBoolean) require_boolean(assignment);
    nlohmann::json json{{"camera", camera.Id()}, {"features", nlohmann::json::array()}};
    for (const Assignment& assignment : assignments) {
        camera.Set(assignment.name, assignment.value);
        const Feature feature = read_feature(Node(camera.NodeByName(assignment.name)));
        json["features"].push_back(to_json(feature));
        if (!options.json)
            std::printf("%s=%s\n", assignment.name.c_str(),
                        printable(feature.value.is_null() ? assignment.value : feature.text).c_str());
    }
    if (options.json) std::fputs(json_text(json).c_str(), stdout);
    return ExitCode::kOk;
}

}  // namespace

void add_set_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("set", "Set features");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("assignments", arguments->assignments, "NAME=VALUE pairs")->required();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return set(invocation.options, *arguments); }; });
}
