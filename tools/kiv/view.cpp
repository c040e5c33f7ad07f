// kiv view: a live window on a camera.

#include <cstdio>

#include "camera_list.h"
#include "feature.h"
#include "files.h"
#include "interrupt.h"
#include "options.h"
#include "text.h"
#include "view_live.h"

namespace {

constexpr const char* kFooter =
    "Keys: F all of the image, 1 one to one, + - zoom, B blend pixels, H histogram, Space pause, N next image,\n"
    "      W white balance, O original colours, S save the image, C save what the window shows, F1 help, Q quit.\n"
    "The left button drags, the wheel zooms. The bar tells the pixel under the mouse as the camera sent it and, of\n"
    "colour images, as it is shown. Images that come faster than the screen can show them are skipped and counted.\n"
    "Ends with Q, Ctrl-C, or when the window is closed.\n"
    "\n"
    "Examples:\n"
    "  kiv view 0\n"
    "  kiv view 0 --histogram --white-balance --quality edge\n"
    "  kiv view 0 --zoom 100 -o shots --format tiff\n"
    "  kiv view 0 -n 100 --screenshot window.png";

struct Arguments {
    std::string camera;
    ViewSettings view;
};

struct EndingRow {
    const char* name;
    const char* text;
    ExitCode exit;
};

/// In the order of ViewEnding.
constexpr EndingRow kEndings[]{
    {"closed", "", ExitCode::kOk},
    {"complete", "", ExitCode::kOk},
    {"interrupted", "interrupted: ", ExitCode::kInterrupted},
    {"timeout", "no image came any more: ", ExitCode::kIncompleteGrab},
};

/// Without a count Ctrl-C is a way to end like any other.
ExitCode exit_of(const ViewReport& report, uint64_t wanted) {
    if (report.ending == ViewEnding::kInterrupted && wanted == 0) return ExitCode::kOk;
    return kEndings[static_cast<std::size_t>(report.ending)].exit;
}

void print(const CameraEntry& camera, const ViewReport& report, uint64_t wanted, bool as_json) {
    const EndingRow& ending = kEndings[static_cast<std::size_t>(report.ending)];
    if (as_json) {
        const nlohmann::json json{{"camera", to_json(camera)},
                                  {"ending", ending.name},
                                  {"received", report.frames.received},
                                  {"incomplete", report.frames.incomplete},
                                  {"shown", report.shown},
                                  {"skipped", report.skipped},
                                  {"lost", report.lost},
                                  {"fps", report.frames.rate},
                                  {"seconds", report.seconds}};
        return void(std::fputs(json_text(json).c_str(), stdout));
    }
    std::printf("%s%s in %s s, %llu shown, %llu skipped, %llu lost\n",
                exit_of(report, wanted) == ExitCode::kOk ? "" : ending.text, counted(report.frames.received, "image").c_str(),
                fixed_number(report.seconds, 1).c_str(), static_cast<unsigned long long>(report.shown),
                static_cast<unsigned long long>(report.skipped), static_cast<unsigned long long>(report.lost));
}

ExitCode view(const Options& options, const Arguments& arguments) {
    Factory factory(options.registry);
    const CameraEntry entry = find_camera(factory, arguments.camera);
    const Camera camera(factory, entry.id);
    ViewSettings settings = arguments.view;
    settings.timeout_s = options.timeout_s;
    made_folder(settings.folder);
    catch_interrupts();
    const ViewReport report = LiveView(camera, entry, settings).Run();
    print(entry, report, settings.count, options.json);
    return exit_of(report, settings.count);
}

void read_zoom(ViewSettings& settings, const std::string& text) {
    double percent = 0;
    if (text == "fit") {
        settings.zoom = 0;
    } else if (!CLI::detail::lexical_cast(text, percent) || !(percent >= 2 && percent <= 6400)) {
        throw CLI::ValidationError("--zoom", "\"" + text + "\" is neither fit nor a number from 2 to 6400");
    } else {
        settings.zoom = percent / 100;
    }
}

void read_size(ViewSettings& settings, const std::string& text) {
    int width = 0, height = 0;
    char end = 0;
    const bool is_size = std::sscanf(text.c_str(), "%5dx%5d%c", &width, &height, &end) == 2;
    if (!is_size || width < 100 || height < 100 || width > 16000 || height > 16000)
        throw CLI::ValidationError("--size", "\"" + text + "\" is no size such as 1200x700");
    settings.largest = {width, height};
}

}  // namespace

void add_view_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("view", "Show the images of a camera in a window");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    ViewSettings& settings = arguments->view;
    command->add_option("camera", arguments->camera, kCameraHelp)->required();
    command->add_flag("--histogram", settings.histogram, "Begin with the histogram shown");
    command->add_flag("--white-balance", settings.balance_white, "Make the middle of the first image white");
    command
        ->add_option_function<std::string>(
            "--zoom", [&settings](const std::string& text) { read_zoom(settings, text); },
            "Begin with fit, or with so many percent")
        ->type_name("PERCENT")
        ->default_str("fit");
    command
        ->add_option_function<std::string>(
            "--size", [&settings](const std::string& text) { read_size(settings, text); },
            "The window is opened no larger than this")
        ->type_name("WxH")
        ->default_str("1200x700");
    command->add_option("-n,--count", settings.count, "End when so many images were shown; 0: never")
        ->type_name("N")
        ->capture_default_str();
    command->add_option("--screenshot", settings.screenshot, "Store what the window shows at the end, by the file's extension")
        ->type_name("FILE");
    command->add_option("-o,--output", settings.folder, "Folder of saved images")->type_name("DIR")->capture_default_str();
    add_file_options(*command, settings.style);
    command->add_option("--buffer-size", settings.buffer_size, "Bytes of a stream buffer; 0: the camera's PayloadSize")
        ->type_name("BYTES")
        ->capture_default_str();
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson | Takes::kTimeout);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return view(invocation.options, *arguments); }; });
}
