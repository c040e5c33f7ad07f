// kiv save and kiv load: the settings of a camera in a file.

#include <cstdio>
#include <map>
#include <mutex>
#include <vector>

#include "camera_list.h"
#include "options.h"
#include "session.h"

namespace {

constexpr const char* kSaveFooter =
    "Selectors are stepped through their values and get their former value back.\n"
    "\n"
    "Examples:\n"
    "  kiv save 0 line3.xml\n"
    "  kiv save 0 everything.xml --mode all";

constexpr const char* kLoadFooter =
    "Without a choice the file is checked first, nothing is written if it has errors, and the first\n"
    "setting that the camera refuses ends it. Exit code 1 when there were errors or refusals.\n"
    "\n"
    "Examples:\n"
    "  kiv load 0 line3.xml\n"
    "  kiv load 0 line3.xml --validate\n"
    "  kiv load 0 line3.xml --load-only";

struct SaveArguments {
    std::string camera;
    std::string file;
    uint32_t mode = K_SAVE_AUTO;
};

struct LoadArguments {
    std::string camera;
    std::string file;
    bool validate = false;
    bool load_only = false;
};

/// What the library tells about single settings while it loads: there is no other way to hear of a refusal.
class Refusals {
public:
    Refusals() { K_SetDebugOutput(&Refusals::Receive, this); }
    ~Refusals() { K_SetDebugOutput(nullptr, nullptr); }
    Refusals(const Refusals&) = delete;
    Refusals& operator=(const Refusals&) = delete;

    std::vector<std::string> Take() {
        std::lock_guard guard(lock_);
        return std::move(lines_);
    }

private:
    static void K_CALL Receive(void* context, const char* text) {
        auto& self = *static_cast<Refusals*>(context);
        const std::string line(text);
        if (line.rfind("Node '", 0) != 0) return;
        std::lock_guard guard(self.lock_);
        self.lines_.push_back(line);
    }

    std::mutex lock_;
    std::vector<std::string> lines_;
};

ExitCode save(const Options& options, const SaveArguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    check(K_Camera_SaveSettings(camera.Get(), arguments.file.c_str(), arguments.mode), "K_Camera_SaveSettings", arguments.file);
    return ExitCode::kOk;
}

std::string findings_of(const Camera& camera) {
    uint32_t size = 0;
    check(K_Camera_GetSettingsValidationErrorInfo(camera.Get(), nullptr, &size), "K_Camera_GetSettingsValidationErrorInfo");
    std::string text(size, '\0');
    check(K_Camera_GetSettingsValidationErrorInfo(camera.Get(), text.data(), &size), "K_Camera_GetSettingsValidationErrorInfo");
    text.resize(text.find('\0'));
    return text;
}

ExitCode load(const Options& options, const LoadArguments& arguments) {
    Factory factory(options.registry);
    const Camera camera(factory, find_camera(factory, arguments.camera).id);
    const uint32_t mode = arguments.validate ? K_VALIDATE_ONLY : arguments.load_only ? K_LOAD_ONLY : K_LOAD_AUTO;
    Refusals refusals;
    const K_STATUS_CODES status = K_Camera_LoadSettings(camera.Get(), arguments.file.c_str(), mode);
    if (mode != K_LOAD_ONLY) std::fputs(findings_of(camera).c_str(), stdout);
    const auto refused = refusals.Take();
    for (const std::string& line : refused) std::fputs(line.c_str(), stdout);
    if (status != K_ST_VALIDATION_WARNING) check(status, "K_Camera_LoadSettings", arguments.file);
    return refused.empty() ? ExitCode::kOk : ExitCode::kFailed;
}

}  // namespace

void add_save_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("save", "Save the settings of a camera to a file");
    command->footer(kSaveFooter);
    auto arguments = std::make_shared<SaveArguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("file", arguments->file, "File to write")->required();
    const std::map<std::string, uint32_t> modes{
        {"auto", K_SAVE_AUTO}, {"streamable", K_SAVE_STREAMABLE_ONLY}, {"all", K_SAVE_ALL}};
    command
        ->add_option("--mode", arguments->mode,
                     "Which features: streamable (marked as settings), all, or auto: whichever suits the camera")
        ->type_name("MODE")
        ->transform(CLI::CheckedTransformer(modes, CLI::ignore_case).description(""))
        ->default_str("auto");
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kRegistry));
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return save(invocation.options, *arguments); }; });
}

void add_load_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("load", "Load the settings of a camera from a file");
    command->footer(kLoadFooter);
    auto arguments = std::make_shared<LoadArguments>();
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_option("file", arguments->file, "File to read")->required();
    auto* validate = command->add_flag("--validate", arguments->validate, "Only check the file against the camera");
    command->add_flag("--load-only", arguments->load_only, "Do not check, and go on after a setting that is refused")
        ->excludes(validate);
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kRegistry));
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return load(invocation.options, *arguments); }; });
}
