// kiv list: the cameras that are there.

#include <algorithm>
#include <cstdio>

#include "camera_list.h"
#include "feature.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Prints index, model, serial number, identifier, state (free, busy ...) and user name of each camera.\n"
    "\n"
    "Examples:\n"
    "  kiv list\n"
    "  kiv list --json | jq -r '.cameras[].id'";

std::size_t widest(const std::vector<CameraEntry>& cameras, std::string CameraEntry::*field) {
    std::size_t width = 0;
    for (const CameraEntry& camera : cameras) width = std::max(width, character_count(camera.*field));
    return width;
}

void print(const std::vector<CameraEntry>& cameras) {
    const std::size_t model = widest(cameras, &CameraEntry::model);
    const std::size_t serial = widest(cameras, &CameraEntry::serial);
    const std::size_t id = widest(cameras, &CameraEntry::id);
    for (const CameraEntry& camera : cameras) {
        const std::string name = camera.user_name.empty() ? "" : "  \"" + printable(camera.user_name) + "\"";
        std::printf("%3zu  %s   SN %s   %s    %s%s\n", camera.index, padded(printable(camera.model), model).c_str(),
                    padded(printable(camera.serial), serial).c_str(), padded(printable(camera.id), id).c_str(),
                    camera.state.c_str(), name.c_str());
    }
}

ExitCode list(const Options& options) {
    Factory factory(options.registry);
    const std::vector<CameraEntry> cameras = list_cameras(factory);
    if (options.json) {
        nlohmann::json json{{"cameras", nlohmann::json::array()}};
        for (const CameraEntry& camera : cameras) json["cameras"].push_back(to_json(camera));
        std::fputs(json_text(json).c_str(), stdout);
    } else {
        print(cameras);
    }
    if (!cameras.empty()) return ExitCode::kOk;
    std::fputs("kiv: no camera found; \"kiv producers\" shows what became of each producer\n", stderr);
    return ExitCode::kNothingFound;
}

}  // namespace

void add_list_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("list", "List the cameras");
    command->footer(kFooter);
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation] { invocation.run = [&invocation] { return list(invocation.options); }; });
}
