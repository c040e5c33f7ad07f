/// The options that commands share, and how a command registers itself.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "exit_code.h"

struct Options {
    std::string registry;
    double timeout_s = 5.0;
    bool json = false;
};

/// What main() runs once the command line is read: the callback of the chosen command leaves it here.
struct Invocation {
    Options options;
    std::function<ExitCode()> run;
};

/// Which of the shared options a command understands.
enum class Takes : unsigned { kRegistry = 1, kJson = 2, kTimeout = 4 };
constexpr unsigned operator|(Takes a, Takes b) { return static_cast<unsigned>(a) | static_cast<unsigned>(b); }
constexpr unsigned operator|(unsigned a, Takes b) { return a | static_cast<unsigned>(b); }

/// A word out of a table, in any case of letters.
template <class Value>
CLI::Validator one_of(const std::map<std::string, Value>& words) {
    const auto translate = [words](std::string& word) -> std::string {
        const auto found = words.find(CLI::detail::to_lower(word));
        if (found == words.end()) {
            std::string choice;
            for (const auto& entry : words) choice += (choice.empty() ? "" : ", ") + entry.first;
            return "\"" + word + "\" is none of " + choice;
        }
        word = std::to_string(static_cast<long long>(found->second));
        return "";
    };
    return CLI::Validator(translate, "");
}

inline void add_shared_options(CLI::App& command, Options& options, unsigned takes) {
    const auto has = [takes](Takes which) { return (takes & static_cast<unsigned>(which)) != 0; };
    if (has(Takes::kRegistry))
        command.add_option("--registry", options.registry, "Registry file that lists the producers")->type_name("FILE");
    if (has(Takes::kJson)) command.add_flag("--json", options.json, "Print JSON instead of a text for reading");
    if (has(Takes::kTimeout))
        command.add_option("--timeout", options.timeout_s, "How long to wait for the camera")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.001, 86400.0).description(""))
            ->capture_default_str();
}

/// Which features a tree of features shows.
inline void add_level_options(CLI::App& command, uint32_t& level, bool& all) {
    const std::map<std::string, uint32_t> levels{{"beginner", 0}, {"expert", 1}, {"guru", 2}, {"invisible", 3}};
    command.add_option("--level", level, "Hide what is above this visibility level: beginner, expert, guru, invisible")
        ->type_name("LEVEL")
        ->transform(one_of(levels))
        ->default_str("guru");
    command.add_flag("--all", all, "Show features that are not implemented, and entries that are not available");
}

constexpr const char* kCameraHelp = "Camera: index, identifier, serial number or user name";

// One file per command; each adds its sub-command with its options.
void add_list_command(CLI::App& app, Invocation& invocation);
void add_info_command(CLI::App& app, Invocation& invocation);
void add_features_command(CLI::App& app, Invocation& invocation);
void add_get_command(CLI::App& app, Invocation& invocation);
void add_set_command(CLI::App& app, Invocation& invocation);
void add_exec_command(CLI::App& app, Invocation& invocation);
void add_xml_command(CLI::App& app, Invocation& invocation);
void add_producers_command(CLI::App& app, Invocation& invocation);
void add_grab_command(CLI::App& app, Invocation& invocation);
void add_tree_command(CLI::App& app, Invocation& invocation);
void add_probe_command(CLI::App& app, Invocation& invocation);
void add_watch_command(CLI::App& app, Invocation& invocation);
void add_save_command(CLI::App& app, Invocation& invocation);
void add_load_command(CLI::App& app, Invocation& invocation);
void add_events_command(CLI::App& app, Invocation& invocation);
void add_lint_command(CLI::App& app, Invocation& invocation);
void add_view_command(CLI::App& app, Invocation& invocation);
void add_convert_command(CLI::App& app, Invocation& invocation);
