// kiv tree: the modules of the producers, with their own features and descriptions.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <set>

#include "files.h"
#include "module_tree.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Each producer is a transport layer with interfaces, on which there are devices. Transport layers and interfaces tell their\n"
    "features and descriptions at any time, a device (the producer's view of a camera, not the camera itself) only while it is\n"
    "open: --open opens each camera that is free, for as long as it is read.\n"
    "\n"
    "Examples:\n"
    "  kiv tree\n"
    "  kiv tree --features --open\n"
    "  kiv tree --xml -o descriptions\n"
    "  kiv tree --json | jq '.transport_layers[].interfaces[].devices[].id'";

struct Arguments {
    TreeWishes wishes;
    std::string folder;
};

struct KindWords {
    const char* name;
    const char* below;  ///< the JSON key of the modules below
};
constexpr std::array kKindWords{KindWords{"transport layer", "interfaces"}, KindWords{"interface", "devices"},
                                KindWords{"device", ""}};
const KindWords& words_of(const Module& module) { return kKindWords[static_cast<std::size_t>(module.kind)]; }

nlohmann::json to_json(const Module& module, const TreeWishes& wishes) {
    nlohmann::json json{{"id", module.id}};
    for (const auto& [key, value] : module.facts) json[key] = value;
    if (!module.state.empty()) json["state"] = module.state;
    if (!module.camera_id.empty()) json["camera"] = module.camera_id;
    if (wishes.features && module.has_features) {
        json["features"] = nlohmann::json::array();
        for (const auto& [feature, path] : module.features) json["features"].push_back(to_json(feature, path));
    }
    if (!module.description.empty()) json["description"] = module.description;
    if (!module.errors.empty()) json["error"] = joined(module.errors, "\n");
    if (module.kind == ModuleKind::kDevice) return json;
    json[words_of(module).below] = nlohmann::json::array();
    for (const Module& below : module.below) json[words_of(module).below].push_back(to_json(below, wishes));
    return json;
}

std::string fact(const Module& module, const char* key, const std::string& before = "  ") {
    const auto found = module.facts.find(key);
    return found == module.facts.end() || found->second.empty() ? "" : before + printable(found->second);
}

std::string line_of(const Module& module) {
    const std::string id = module.id.empty() ? "(identifier not known)" : printable(module.id);
    std::string line = id + "  " + words_of(module).name;
    line += fact(module, "vendor") + fact(module, "model") + fact(module, "type") + fact(module, "version", "  version ");
    line += fact(module, "serial", "  SN ");
    const std::string name = fact(module, "user_name", "");
    if (!name.empty()) line += "  \"" + name + "\"";
    const bool is_worth_telling = module.kind == ModuleKind::kDevice || module.state == "not open";
    return is_worth_telling ? line + "  " + module.state : line;
}

/// Why there are no features, or that there are none.
std::string without_features(const Module& module, const TreeWishes& wishes) {
    if (!module.errors.empty() || module.state == "not open") return {};
    if (module.kind != ModuleKind::kDevice) return "(no features of its own)";
    if (!wishes.open) return "(features only with --open)";
    return module.state == "free" ? "(no features of its own)" : "(features only of a camera that is free)";
}

void print(const Module& module, const TreeWishes& wishes, bool with_description, std::size_t depth) {
    const std::string indent(2 * depth, ' ');
    std::printf("%s%s\n", indent.c_str(), line_of(module).c_str());
    for (const auto& [feature, path] : module.features) print_feature(feature, depth + 1 + path.size(), wishes.filter.all);
    const std::string none = wishes.features && !module.has_features ? without_features(module, wishes) : "";
    if (!none.empty()) std::printf("%s  %s\n", indent.c_str(), none.c_str());
    if (with_description && !module.description.empty())
        std::printf("%s%s", module.description.c_str(), module.description.back() == '\n' ? "" : "\n");
    for (const Module& below : module.below) print(below, wishes, with_description, depth + 1);
}

/// Identifiers hold whatever a producer likes; file names do not.
std::string file_name(const std::string& id, std::set<std::string>& used) {
    std::string name = id.empty() ? "module" : id;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c != '_' && c != '.'; }, '_');
    if (name.front() == '.') name.front() = '_';
    std::string unique = name;
    for (int i = 2; !used.insert(unique).second; ++i) unique = name + "_" + std::to_string(i);
    return unique + ".xml";
}

void save_descriptions(const std::vector<Module>& modules, const std::filesystem::path& folder, std::set<std::string>& used) {
    for (const Module& module : modules) {
        if (!module.description.empty()) write_text_file(folder / file_name(module.id, used), module.description);
        save_descriptions(module.below, folder, used);
    }
}

bool tell_errors(const std::vector<Module>& modules) {
    bool any = false;
    for (const Module& module : modules) {
        for (const std::string& error : module.errors)
            std::fprintf(stderr, "kiv: %s \"%s\": %s\n", words_of(module).name, printable(module.id).c_str(), error.c_str());
        const bool any_below = tell_errors(module.below);
        any = any || any_below || !module.errors.empty();
    }
    return any;
}

ExitCode tree(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const std::vector<Module> layers = read_modules(factory, arguments.wishes);
    if (!arguments.folder.empty()) {
        std::set<std::string> used;
        save_descriptions(layers, made_folder(arguments.folder), used);
    }
    if (options.json) {
        nlohmann::json json{{"transport_layers", nlohmann::json::array()}};
        for (const Module& layer : layers) json["transport_layers"].push_back(to_json(layer, arguments.wishes));
        std::fputs(json_text(json).c_str(), stdout);
    } else {
        for (const Module& layer : layers) print(layer, arguments.wishes, arguments.folder.empty(), 0);
    }
    std::fflush(stdout);
    if (tell_errors(layers)) return ExitCode::kFailed;
    if (!layers.empty()) return ExitCode::kOk;
    std::fputs("kiv: no producer could be bound; \"kiv producers\" shows why\n", stderr);
    return ExitCode::kNothingFound;
}

}  // namespace

void add_tree_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("tree", "Show transport layers, interfaces and devices, with their own features");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_flag("--features", arguments->wishes.features, "Show the modules' own features with their values");
    CLI::Option* xml = command->add_flag("--xml", arguments->wishes.descriptions, "Print the modules' descriptions");
    command->add_option("-o,--output", arguments->folder, "Save the descriptions in a folder instead, one file for each module")
        ->type_name("DIR")
        ->needs(xml);
    command->add_flag("--open", arguments->wishes.open, "Open each free camera to show its device, too");
    add_level_options(*command, arguments->wishes.filter.level, arguments->wishes.filter.all);
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return tree(invocation.options, *arguments); }; });
}
