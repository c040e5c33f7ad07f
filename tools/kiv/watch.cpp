// kiv watch: the values of features as they change.

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "camera_list.h"
#include "change_signal.h"
#include "feature.h"
#include "interrupt.h"
#include "options.h"
#include "text.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kFooter =
    "Prints the values, and then a line with the time (UTC) whenever one has changed. A camera does not tell by itself that a\n"
    "value changed, unless it sends an event for it: the features are read anew every --interval milliseconds, and what\n"
    "changes and changes back in between is not seen. The camera is open meanwhile, so no other program can set it.\n"
    "Ends on Ctrl-C (130), after --count changes (0), or when nothing changes for --timeout seconds (0; 1 when --count asked\n"
    "for more changes), or when no feature can be read any more (1).\n"
    "\n"
    "Examples:\n"
    "  kiv watch 0 DeviceTemperature --interval 1000\n"
    "  kiv watch 0 LineStatus --count 1 --timeout 30\n"
    "  kiv watch 0 ExposureTime Gain --json | jq -r .value";

struct Arguments {
    std::string camera;
    std::vector<std::string> names;
    unsigned interval_ms = 200;
    uint64_t count = 0;
    double timeout_s = 0;
};

/// How soon Ctrl-C is noticed.
constexpr std::chrono::milliseconds kLongestWait{50};

struct Watched {
    Node node;
    Feature last;
};

bool is_same(const Feature& a, const Feature& b) {
    return a.text == b.text && a.access == b.access && a.error.empty() == b.error.empty();
}

class Watch {
public:
    Watch(const Camera& camera, const Arguments& arguments, bool as_json) : arguments_(arguments), as_json_(as_json) {
        for (const std::string& name : arguments.names) {
            const Node node(camera.NodeByName(name));
            Feature feature = read_feature(node);
            if (feature.kind == Kind::kCategory || feature.kind == Kind::kCommand)
                throw ToolError(ExitCode::kFailed, "\"" + name + "\" is a " + kind_name(feature.kind) + " and has no value");
            watched_.push_back({node, std::move(feature)});
        }
        for (const Watched& one : watched_) notice_changes(one.node);
    }

    ExitCode Run() {
        for (const Watched& one : watched_) Print(one.last, true);
        Flush();
        Clock::time_point next_poll = Clock::now() + std::chrono::milliseconds(arguments_.interval_ms);
        while (!is_interrupted()) {
            if (wait_for_change(std::min(next_poll, Clock::now() + kLongestWait))) LookAtAll();
            if (IsComplete()) return ExitCode::kOk;
            if (IsTimeUp()) return EndOfTime();
            if (Clock::now() < next_poll) continue;
            // What the library remembers is forgotten, and the callbacks ask for a look at what the camera has now.
            for (const Watched& one : watched_) check(K_Node_Invalidate(one.node.Handle()), "K_Node_Invalidate", one.last.name);
            next_poll = Clock::now() + std::chrono::milliseconds(arguments_.interval_ms);
        }
        return ExitCode::kInterrupted;
    }

private:
    void LookAtAll() {
        for (Watched& one : watched_) {
            Feature now = read_feature(one.node);
            if (is_same(now, one.last)) continue;
            one.last = std::move(now);
            last_change_ = Clock::now();
            ++changes_;
            Print(one.last, false);
            if (IsComplete()) break;
        }
        Flush();
        const auto fails = [](const Watched& one) { return !one.last.error.empty(); };
        if (std::all_of(watched_.begin(), watched_.end(), fails)) throw ToolError(ExitCode::kFailed, watched_[0].last.error);
    }

    void Print(const Feature& feature, bool is_first) const {
        const std::string time = time_text(std::chrono::system_clock::now());
        if (as_json_) {
            nlohmann::json json{{"time", time},           {"name", feature.name}, {"access", access_name(feature.access)},
                                {"value", feature.value}, {"text", feature.text}, {"first", is_first}};
            if (!feature.error.empty()) json["error"] = feature.error;
            std::fputs(json_line(json).c_str(), stdout);
            return;
        }
        const bool has_value = feature.error.empty() && !feature.value.is_null();
        const std::string value = has_value ? "=" + printable(feature.text) : " " + value_for_reading(feature);
        std::printf("%s %s%s\n", time.c_str(), printable(feature.name).c_str(), value.c_str());
    }

    /// Whoever reads the lines in a pipe wants them now.
    static void Flush() {
        if (std::fflush(stdout) != 0) throw ToolError(ExitCode::kFailed, "the output could not be written");
    }

    bool IsComplete() const { return arguments_.count != 0 && changes_ >= arguments_.count; }
    bool IsTimeUp() const {
        return arguments_.timeout_s > 0 && Clock::now() - last_change_ > std::chrono::duration<double>(arguments_.timeout_s);
    }
    ExitCode EndOfTime() const {
        if (arguments_.count == 0) return ExitCode::kOk;
        throw ToolError(ExitCode::kFailed, "nothing changed for " + short_number(arguments_.timeout_s) + " s; " +
                                               std::to_string(changes_) + " of " + counted(arguments_.count, "change") + " came");
    }

    const Arguments& arguments_;
    const bool as_json_;
    std::vector<Watched> watched_;
    uint64_t changes_ = 0;
    Clock::time_point last_change_ = Clock::now();
};

ExitCode watch(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    catch_interrupts();
    return Watch(camera, arguments, options.json).Run();
}

}  // namespace

void add_watch_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("watch", "Print values of features whenever they change");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("names", arguments->names, "Features")->required();
    command->add_option("--interval", arguments->interval_ms, "How often the features are read anew")
        ->type_name("MS")
        ->check(CLI::Range(1u, 86400000u).description(""))
        ->capture_default_str();
    command->add_option("--count", arguments->count, "End after so many changes; 0: never")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--timeout", arguments->timeout_s, "End when nothing changes for so long; 0: never")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86400.0).description(""))
        ->capture_default_str();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation, arguments] {
        invocation.run = [&invocation, arguments] { return watch(invocation.options, *arguments); };
    });
}
