// kiv exec: runs command features and waits until the camera has done them.

#include <chrono>
#include <cstdio>
#include <thread>

#include "camera_list.h"
#include "node.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Commands run in the order given; each is waited for, up to --timeout.\n"
    "\n"
    "Examples:\n"
    "  kiv exec 0 TriggerSoftware\n"
    "  kiv exec 0 UserSetLoad --timeout 10";

struct Arguments {
    std::string camera;
    std::vector<std::string> names;
};

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollInterval{10};

bool is_done(const Node& node, const std::string& name) {
    uint32_t done = 0;
    const K_STATUS_CODES status = K_Node_GetCommandIsDone(node.Handle(), &done);
    check(status, "K_Node_GetCommandIsDone", name);
    return done != 0;
}

void execute(const Camera& camera, const std::string& name, double timeout_s) {
    const Node node(camera.NodeByName(name));
    if (node.GetKind() != Kind::kCommand)
        throw ToolError(ExitCode::kFailed,
                        "\"" + name + "\" is a feature of type " + kind_name(node.GetKind()) + ", not a command");
    camera.Execute(name);
    // A command that switches itself off, or that is written only, has no state that could be asked.
    if (!node.IsReadable()) return;
    const auto deadline = Clock::now() + std::chrono::duration<double>(timeout_s);
    while (!is_done(node, name)) {
        if (Clock::now() > deadline)
            throw ToolError(ExitCode::kFailed, "command \"" + name + "\" is not done after " + short_number(timeout_s) + " s");
        std::this_thread::sleep_for(kPollInterval);
    }
}

ExitCode exec(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    for (const std::string& name : arguments.names) execute(camera, name, options.timeout_s);
    return ExitCode::kOk;
}

}  // namespace

void add_exec_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("exec", "Execute commands of the camera");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("commands", arguments->names, "Command features")->required();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kTimeout);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return exec(invocation.options, *arguments); }; });
}
