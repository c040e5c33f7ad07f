// kiv grab: images of a camera into a folder.

#include <algorithm>
#include <cstdio>
#include <set>

#include "camera_list.h"
#include "feature.h"
#include "files.h"
#include "grab_chunks.h"
#include "grab_plot.h"
#include "grab_report.h"
#include "grab_run.h"
#include "interrupt.h"
#include "options.h"
#include "progress.h"
#include "temporary_settings.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Files are named frame_000001 and so on; files of the same name are replaced. Compression runs beside the stream: when\n"
    "it falls behind, the stream is held up, and what the camera then loses is counted in the summary.\n"
    "Raw files begin with an 80-byte header that tells format and size, then hold the bytes as the camera sent them.\n"
    "Statistics of frames that are only counted, not written, need no -o. How the figures are meant is told in "
    "docs/kiv-tool.md.\n"
    "--chunks switches chunk mode on for the time of the grab; all chunks are on for it where the camera has none on.\n"
    "Ends after N images, on Ctrl-C (130), or when no image comes for --timeout seconds (5).\n"
    "\n"
    "Examples:\n"
    "  kiv grab 0 -n 50 -o shots\n"
    "  kiv grab 0 -n 500 -o shots --format tiff --manifest\n"
    "  kiv grab 0 -n 1000 --stats --plot rate.png\n"
    "  kiv grab 0 -n 10 -o shots --format jpeg --quality best --chunks=Timestamp,FrameID,Gain\n"
    "  kiv set 0 Width=640 && kiv grab 0 -n 50 -o small";

/// --chunks without a value.
constexpr const char* kPresentChunks = "on";

struct Arguments {
    std::string camera;
    GrabSettings grab;
    bool manifest = false;
    std::string statistics;  ///< "text", "json", or empty
    std::string plot;        ///< file, or empty
    PlotSize plot_size;
    std::string chunks;  ///< empty for none, else kPresentChunks or as switch_chunks_on() takes it
};

uint64_t count_leftovers(const GrabReport& report) {
    std::set<std::string> ours;
    if (report.folder.empty()) return 0;
    for (const WrittenFrame& frame : report.written) ours.insert(frame.file);
    std::error_code error;
    uint64_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(report.folder, error)) {
        const std::string name = entry.path().filename().string();
        const bool is_image = name.rfind("frame_", 0) == 0 && entry.path().extension() != ".json";
        if (is_image && ours.count(name) == 0) ++count;
    }
    return count;
}

ExitCode exit_of(const GrabReport& report) {
    // Without a number of images Ctrl-C is the way to end.
    const bool is_wanted = report.ending == Ending::kInterrupted && report.wanted == 0;
    if (report.ending == Ending::kInterrupted) return is_wanted ? ExitCode::kOk : ExitCode::kInterrupted;
    return report.ending == Ending::kComplete ? ExitCode::kOk : ExitCode::kIncompleteGrab;
}

void require_meaning(const Arguments& arguments) {
    const bool writes = !arguments.grab.folder.empty();
    const bool measures = !arguments.statistics.empty() || !arguments.plot.empty();
    if (!writes && !measures)
        throw ToolError(ExitCode::kUsage, "where to? -o DIR writes images, --stats and --plot tell about them without");
    if (!writes && !arguments.chunks.empty())
        throw ToolError(ExitCode::kUsage, "--chunks writes beside the images: -o DIR is missing");
    if (!writes && arguments.manifest)
        throw ToolError(ExitCode::kUsage, "--manifest writes beside the images: -o DIR is missing");
}

std::string plot_title(const GrabReport& report) {
    return printable(report.camera.model) + " SN " + printable(report.camera.serial) + ", " +
           counted(report.statistics->frames.size(), "frame") + ", " + fixed_number(frame_rate(report.reception), 1) + " per s";
}

void print(const GrabReport& report, bool as_json, bool with_statistics) {
    if (as_json) return void(std::fputs(json_text(to_json(report)).c_str(), stdout));
    if (with_statistics) print_statistics(*report.statistics);
    print_summary(report);
}

ExitCode grab(const Options& options, const Arguments& arguments) {
    require_meaning(arguments);
    GrabReport report;
    Factory factory(options.registry);
    report.camera = find_camera(factory, arguments.camera);
    const Camera camera(factory, report.camera.id);
    GrabSettings settings = arguments.grab;
    if (!settings.folder.empty()) report.folder = made_folder(settings.folder);
    report.kind = settings.style.kind;
    report.wanted = settings.receiver.wanted;
    report.pixel_format = camera.Text("PixelFormat").value_or("unknown");
    settings.timeout_s = options.timeout_s;
    settings.receiver.writes = !settings.folder.empty();
    settings.receiver.keep_timings = !arguments.statistics.empty() || !arguments.plot.empty();
    if (settings.receiver.keep_timings) settings.receiver.tick_ns = nanoseconds_per_tick(camera);
    catch_interrupts();
    // Given back when the stream is closed: chunk mode is locked while one is open.
    TemporarySettings changed(camera);
    if (!arguments.chunks.empty()) switch_chunks_on(camera, arguments.chunks == kPresentChunks ? "" : arguments.chunks, changed);
    std::optional<ChunkFeatures> chunks;
    if (!arguments.chunks.empty()) settings.receiver.chunks = &chunks.emplace(camera);
    Grab(camera, settings).Run(report);
    changed.Restore();
    report.leftovers = count_leftovers(report);
    if (arguments.manifest) write_manifest(report);
    if (!arguments.plot.empty()) write_plot(*report.statistics, plot_title(report), arguments.plot_size, arguments.plot);
    print(report, options.json || arguments.statistics == "json", !arguments.statistics.empty());
    std::fflush(stdout);
    if (!report.failure.empty()) std::fprintf(stderr, "kiv: %s\n", report.failure.c_str());
    return exit_of(report);
}

/// "1280x860"
std::string read_plot_size(PlotSize& size, const std::string& text) {
    int end = 0;
    const bool is_read = std::sscanf(text.c_str(), "%5dx%5d%n", &size.width, &size.height, &end) == 2;
    const bool is_good = is_read && static_cast<std::size_t>(end) == text.size() && size.width >= 480 && size.width <= 8192 &&
                         size.height >= 320 && size.height <= 8192;
    return is_good ? "" : "no size like 1280x860, from 480x320 to 8192x8192";
}

void add_file_group(CLI::App& command, Arguments& arguments) {
    GrabSettings& grab = arguments.grab;
    command.add_option("-o,--output", grab.folder, "Folder for the images; made if it is not there")->type_name("DIR");
    add_file_options(command, grab.style);
    command.add_flag("--manifest", arguments.manifest, "Write frames.json, which tells frame id and time stamp of each file");
    command.add_flag("--keep-incomplete", grab.receiver.keep_incomplete,
                     "Count and write images of which a part did not come, too");
    command.add_option("--writers", grab.writers, "Threads that compress and write")
        ->type_name("N")
        ->check(CLI::Range(1, 64).description(""))
        ->capture_default_str();
    command.add_option("--queue", grab.queue, "Frames that may wait for the writers; 0: as many as take 256 MB")
        ->type_name("N")
        ->check(CLI::Range(0, 100000).description(""))
        ->capture_default_str();
}

void add_measuring_group(CLI::App& command, Arguments& arguments) {
    command
        .add_flag("--stats{text}", arguments.statistics,
                  "Tell interval, jitter, latencies and gaps of each frame and of all: --stats or --stats=json")
        ->check(CLI::IsMember(std::set<std::string>{"text", "json"}).description(""));
    command.add_option("--plot", arguments.plot, "Draw interval and latencies over time into a PNG file")->type_name("FILE");
    command
        .add_option_function<std::string>(
            "--plot-size",
            [&arguments](const std::string& text) {
                const std::string wrong = read_plot_size(arguments.plot_size, text);
                if (!wrong.empty()) throw CLI::ValidationError("--plot-size", text + " is " + wrong);
            },
            "Size of the plot in pixels")
        ->type_name("WxH")
        ->default_str("1280x860");
}

void add_options(CLI::App& command, Arguments& arguments) {
    GrabSettings& grab = arguments.grab;
    command.add_option("camera", arguments.camera, kCameraHelp)->required();
    grab.receiver.wanted = 1;
    command.add_option("-n,--count", grab.receiver.wanted, "How many images; 0: until Ctrl-C")
        ->type_name("N")
        ->capture_default_str();
    add_file_group(command, arguments);
    add_measuring_group(command, arguments);
    command.add_flag(
        "--chunks{on}", arguments.chunks,
        "Write the values of chunk data beside each image, as JSON; --chunks=all, --chunks=NAME,NAME: with these switched on");
    command.add_option("--buffer-size", grab.buffer_size, "Bytes of a stream buffer; 0: the camera's PayloadSize")
        ->type_name("BYTES")
        ->capture_default_str();
}

}  // namespace

void add_grab_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("grab", "Grab images into files");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    add_options(*command, *arguments);
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson | Takes::kTimeout);
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return grab(invocation.options, *arguments); }; });
}
