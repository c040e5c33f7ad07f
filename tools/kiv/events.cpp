// kiv events: what a camera tells of its own accord, as it comes.

#include <algorithm>
#include <array>
#include <cstdio>

#include "camera_list.h"
#include "events_feed.h"
#include "events_listener.h"
#include "feature.h"
#include "interrupt.h"
#include "options.h"
#include "temporary_settings.h"
#include "text.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kSelector = "EventSelector";
constexpr const char* kNotification = "EventNotification";

constexpr const char* kFooter =
    "Switches the notification of events on (all that the camera has, or those of --select), prints each event with the time at\n"
    "which it came here (UTC), its name, its number and its data, and gives the settings back at the end. The camera is open\n"
    "meanwhile. Events about images come while it acquires: --acquire starts it and throws the images away. What it tells only\n"
    "when asked to can be asked for with --exec.\n"
    "Ends on Ctrl-C (130), after -n events (0), or when none comes for --timeout seconds (0; 1 when -n asked for more), or when\n"
    "the camera is gone (1).\n"
    "\n"
    "Examples:\n"
    "  kiv events 0\n"
    "  kiv events 0 --select ExposureStart ExposureEnd --acquire -n 20\n"
    "  kiv events 0 --select Test --exec TestEventGenerate -n 1 --json | jq .values";

struct Arguments {
    std::string camera;
    std::vector<std::string> names;
    std::vector<std::string> commands;
    bool acquire = false;
    uint64_t count = 0;
    double timeout_s = 0;
};

std::vector<std::string> available_entries(const Camera& camera, const char* enumeration) {
    std::vector<std::string> names;
    for (const Node& entry : Node(camera.NodeByName(enumeration)).Entries())
        if (entry.IsAvailable()) names.push_back(entry.Symbolic(enumeration));
    return names;
}

std::vector<std::string> wanted_events(const Camera& camera, const std::vector<std::string>& asked) {
    if (camera.FindNode(kSelector) == nullptr || camera.FindNode(kNotification) == nullptr)
        throw ToolError(ExitCode::kFailed,
                        std::string("the camera tells of no events: it has no ") + kSelector + " and " + kNotification);
    const std::vector<std::string> offered = available_entries(camera, kSelector);
    for (const std::string& name : asked) {
        if (std::find(offered.begin(), offered.end(), name) != offered.end()) continue;
        const std::vector<std::string> near = similar_names(name, offered);
        throw ToolError(ExitCode::kFailed, "the camera has no event \"" + printable(name) + "\"; it has " +
                                               printable(joined(offered, ", ")) +
                                               (near.empty() ? "" : ". Did you mean " + printable(joined(near, " or ")) + "?"));
    }
    return asked.empty() ? offered : asked;
}

/// What "on" is called: cameras of before 2011 name the way in which they tell.
std::string word_for_on(const Camera& camera) {
    const std::vector<std::string> words = available_entries(camera, kNotification);
    for (const char* word : {"On", "GigEVisionEvent", "GenICamEvent"})
        if (std::find(words.begin(), words.end(), word) != words.end()) return word;
    throw ToolError(ExitCode::kFailed, std::string(kNotification) + " cannot be switched on; it has " + joined(words, ", "));
}

void ignore_image(void*, K_IMAGE_INFO*) {}

/// A camera that acquires into nowhere.
class Acquisition {
public:
    explicit Acquisition(const Camera& camera)
        : camera_(camera), stream_(camera, static_cast<uint32_t>(camera.Integer("PayloadSize").value_or(0)), this, ignore_image) {
        camera.Execute("AcquisitionStart");
    }
    ~Acquisition() { K_Camera_ExecuteCommand(camera_.Get(), "AcquisitionStop"); }
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

private:
    const Camera& camera_;
    Stream stream_;
};

std::string value_text(const nlohmann::json& value) { return value.is_string() ? value.get<std::string>() : value.dump(); }

void print(const DeviceEvent& event, bool as_json) {
    const std::string time = time_text(event.time);
    if (as_json) {
        nlohmann::json json{{"time", time}, {"event", event.name}, {"values", event.values}};
        json["id"] = event.id ? nlohmann::json(*event.id) : nlohmann::json();
        std::fputs(json_line(json).c_str(), stdout);
        return;
    }
    std::string line = time + " " + (event.name.empty() ? "?" : printable(event.name));
    std::array<char, 24> id{};
    if (event.id) std::snprintf(id.data(), id.size(), " 0x%llX", static_cast<unsigned long long>(*event.id));
    line += id.data();
    const std::string prefix = "Event" + event.name;
    for (const auto& [name, value] : event.values.items()) {
        const bool is_ours = name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0;
        line += " " + printable(is_ours ? name.substr(prefix.size()) : name) + "=" + printable(value_text(value));
    }
    std::printf("%s\n", line.c_str());
}

/// Prints until there is a reason to end.
class EventPrinter {
public:
    EventPrinter(EventFeed& feed, const Arguments& arguments, bool as_json)
        : feed_(feed), arguments_(arguments), as_json_(as_json) {}

    ExitCode Run() {
        while (!is_interrupted()) {
            feed_.Poll();
            PrintAll();
            if (IsComplete()) return ExitCode::kOk;
            const bool waits_for_ever = arguments_.timeout_s <= 0;
            if (waits_for_ever || Clock::now() - last_ <= std::chrono::duration<double>(arguments_.timeout_s)) continue;
            if (arguments_.count == 0) return ExitCode::kOk;
            throw ToolError(ExitCode::kFailed, "no event came for " + short_number(arguments_.timeout_s) + " s; " +
                                                   std::to_string(printed_) + " of " + counted(arguments_.count, "event") +
                                                   " came" +
                                                   (arguments_.acquire ? "" : "\n  Events about images need --acquire."));
        }
        return ExitCode::kInterrupted;
    }

private:
    bool IsComplete() const { return arguments_.count != 0 && printed_ >= arguments_.count; }

    void PrintAll() {
        while (!IsComplete()) {
            const std::optional<DeviceEvent> event = take_event(std::chrono::milliseconds(1));
            if (!event) break;
            print(*event, as_json_);
            ++printed_;
            last_ = Clock::now();
        }
        // Whoever reads the lines in a pipe wants them now.
        if (std::fflush(stdout) != 0) throw ToolError(ExitCode::kFailed, "the output could not be written");
    }

    EventFeed& feed_;
    const Arguments& arguments_;
    const bool as_json_;
    uint64_t printed_ = 0;
    Clock::time_point last_ = Clock::now();
};

ExitCode events(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    const std::vector<std::string> names = wanted_events(camera, arguments.names);
    const std::string on = word_for_on(camera);
    catch_interrupts();
    for (const std::string& name : names) listen_to(camera, name);
    EventFeed feed(camera);
    TemporarySettings changed(camera);
    for (const std::string& name : names) changed.SetSelected(kSelector, name, kNotification, on);
    std::optional<Acquisition> acquisition;
    if (arguments.acquire) acquisition.emplace(camera);
    for (const std::string& command : arguments.commands) camera.Execute(command);
    return EventPrinter(feed, arguments, options.json).Run();
}

}  // namespace

void add_events_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("events", "Print what a camera tells of its own accord, as it comes");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("--select", arguments->names, "Events, by the entries of EventSelector; all if not said")
        ->type_name("NAME");
    command->add_flag("--acquire", arguments->acquire, "Let the camera acquire images meanwhile");
    command->add_option("--exec", arguments->commands, "Commands to execute when the events are on")->type_name("COMMAND");
    command->add_option("-n,--count", arguments->count, "End after so many events; 0: never")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--timeout", arguments->timeout_s, "End when no event comes for so long; 0: never")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86400.0).description(""))
        ->capture_default_str();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation, arguments] {
        invocation.run = [&invocation, arguments] { return events(invocation.options, *arguments); };
    });
}
