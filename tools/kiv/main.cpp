// kiv: cameras from the command line. This file reads the command line and turns failures into messages and exit codes.

#include <cstdio>
#include <exception>

#include "error.h"
#include "log_option.h"
#include "options.h"
#include "session.h"

namespace {

constexpr const char* kFooter =
    "Examples:\n"
    "  kiv list\n"
    "  kiv features 0\n"
    "  kiv set 0 ExposureTime=5000 PixelFormat=BayerRG12p\n"
    "  kiv grab 0 -n 50 -o shots --format tiff\n"
    "\n"
    "Exit codes: 0 ok, 1 an operation failed, 2 wrong command line, 3 no registry, producer or camera,\n"
    "            4 camera not found, ambiguous or in use, 5 incomplete grab, 6 faulty description, 7 no display,\n"
    "            130 interrupted";

std::string version_text() { return std::string("kiv ") + KIV_VERSION + " (library " + library_info(0) + ")"; }

using AddCommand = void (*)(CLI::App&, Invocation&);
constexpr AddCommand kCommands[]{
    add_list_command,  add_info_command,   add_features_command, add_get_command,  add_set_command,  add_exec_command,
    add_watch_command, add_events_command, add_grab_command,     add_xml_command,  add_tree_command, add_producers_command,
    add_probe_command, add_lint_command,   add_save_command,     add_load_command, add_view_command, add_convert_command};

/// What ends up on the error stream starts with the program's name, like the messages of any tool in a script.
int report(ExitCode exit, const char* message) {
    std::fflush(stdout);
    std::fprintf(stderr, "kiv: %s\n", message);
    return static_cast<int>(exit);
}

int run(int argc, char** argv) {
    CLI::App app("Cameras from the command line: list them, read and set their features, grab images.", "kiv");
    app.set_version_flag("--version", version_text);
    app.footer(kFooter);
    app.require_subcommand(1);
    LogOption log;
    Invocation invocation;
    for (const AddCommand add : kCommands) add(app, invocation);
    for (CLI::App* command : app.get_subcommands({})) log.AddTo(*command);
    if (argc < 2) return report(ExitCode::kUsage, ("which command?\n\n" + app.help()).c_str());
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& wrong) {
        if (wrong.get_exit_code() == 0) return app.exit(wrong);  // --help or --version: printed, and done
        return report(ExitCode::kUsage,
                      (std::string(wrong.what()) + "\n  \"kiv --help\" and \"kiv COMMAND --help\" tell more.").c_str());
    }
    log.Begin();
    return static_cast<int>(invocation.run());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int exit = run(argc, argv);
        // A full disk behind a redirection shows only here.
        return std::fflush(stdout) == 0 ? exit : report(ExitCode::kFailed, "the output could not be written");
    } catch (const ToolError& failure) {
        return report(failure.Exit(), failure.what());
    } catch (const std::exception& failure) {
        return report(ExitCode::kFailed, failure.what());
    }
}
