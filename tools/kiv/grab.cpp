// kiv grab: images of a camera into a folder.

#include <algorithm>
#include <cstdio>
#include <set>

#include "camera_list.h"
#include "feature.h"
#include "files.h"
#include "frame_receiver.h"
#include "frame_writer.h"
#include "grab_report.h"
#include "interrupt.h"
#include "options.h"
#include "progress.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "Files are named frame_000001 and so on; files of the same name are replaced. Compression runs beside the stream: when\n"
    "it falls behind, the stream is held up, and what the camera then loses is counted in the summary.\n"
    "Raw files begin with an 80-byte header that tells format and size, then hold the bytes as the camera sent them.\n"
    "Ends after N images, on Ctrl-C (130), or when no image comes for --timeout seconds (5).\n"
    "\n"
    "Examples:\n"
    "  kiv grab 0 -n 50 -o shots\n"
    "  kiv grab 0 -n 500 -o shots --format tiff --manifest\n"
    "  kiv set 0 Width=640 && kiv grab 0 -n 50 -o small";

struct Arguments {
    std::string camera;
    std::string folder;
    uint64_t count = 1;
    FileStyle style;
    unsigned writers = 2;
    std::size_t queue = 0;
    uint32_t buffer_size = 0;
    bool manifest = false;
};

constexpr std::chrono::milliseconds kShowInterval{50};
constexpr int32_t kStreamNumUnderrun = 2;  // STREAM_INFO_NUM_UNDERRUN of GenTL
constexpr std::size_t kDefaultQueueBytes = 256u << 20;

uint32_t payload_size(const Camera& camera, uint32_t given) {
    if (given != 0) return given;
    const std::optional<int64_t> payload = camera.Integer("PayloadSize");
    if (!payload || *payload <= 0 || *payload > INT64_C(0xFFFFFFFF))
        throw ToolError(ExitCode::kFailed,
                        "the camera tells no usable PayloadSize; say how large its images are with --buffer-size");
    return static_cast<uint32_t>(*payload);
}

/// As many frames as fit into a quarter of a gigabyte, in reasonable bounds: enough to bridge a pause of the disk.
std::size_t queue_capacity(std::size_t given, uint32_t payload) {
    return given != 0 ? given : std::clamp<std::size_t>(kDefaultQueueBytes / payload, 4, 256);
}

/// Why a camera that works may send nothing.
std::string hints(const Camera& camera) {
    std::string text;
    if (camera.Text("TriggerMode") == "On")
        text += "\n  TriggerMode is On: the camera waits for a trigger (TriggerSource " +
                printable(camera.Text("TriggerSource").value_or("unknown")) + ").";
    const std::optional<std::string> mode = camera.Text("AcquisitionMode");
    if (mode && *mode != "Continuous") text += "\n  AcquisitionMode is " + printable(*mode) + ": the camera stops by itself.";
    return text;
}

uint64_t count_leftovers(const GrabReport& report) {
    std::set<std::string> ours;
    for (const WrittenFrame& frame : report.written) ours.insert(frame.file);
    std::error_code error;
    uint64_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(report.folder, error)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("frame_", 0) == 0 && ours.count(name) == 0) ++count;
    }
    return count;
}

/// One grab from start to end. The members are closed in reverse order: the stream first, so that nothing comes any more.
class Grab {
public:
    Grab(const Camera& camera, const Arguments& arguments, double timeout_s, uint32_t payload)
        : camera_(camera),
          timeout_(timeout_s),
          queue_(queue_capacity(arguments.queue, payload)),
          writer_(queue_, arguments.folder, arguments.style, arguments.writers),
          receiver_(queue_, arguments.count),
          progress_(arguments.count),
          stream_(camera, payload, &receiver_, FrameReceiver::OnImage) {}

    void Run(GrabReport& report) {
        const Clock::time_point start = Clock::now();
        receiver_.Expect();
        camera_.Execute("AcquisitionStart");
        Wait(report);
        report.underrun = stream_.Counter(kStreamNumUnderrun);
        StopCamera();
        // A callback that waits for room in the queue would keep the stream from closing.
        queue_.Close();
        stream_.Close();
        writer_.Finish();
        Collect(report, start);
    }

private:
    void Wait(GrabReport& report) {
        bool ended = false;
        while (!ended) {
            ended = receiver_.WaitForEnd(kShowInterval);
            const Reception state = receiver_.State();
            progress_.Show(state, queue_.Size(), queue_.Statistics().capacity);
            if (ended || !state.failure.empty() || !writer_.Failure().empty()) return;
            if (is_interrupted()) {
                report.ending = Ending::kInterrupted;
                return;
            }
            if (Clock::now() - state.last_image <= timeout_) continue;
            report.ending = Ending::kTimeout;
            report.failure = "no image came for " + short_number(timeout_.count()) + " s";
            if (state.incomplete != 0) report.failure += ", only " + counted(state.incomplete, "incomplete one");
            report.failure += hints(camera_);
            return;
        }
    }

    void StopCamera() const {
        try {
            camera_.Execute("AcquisitionStop");
        } catch (const ToolError& failure) {
            // An unplugged camera cannot be stopped; its images are worth writing all the same.
            std::fprintf(stderr, "kiv: warning: %s\n", failure.what());
        }
    }

    void Collect(GrabReport& report, Clock::time_point start) const {
        const auto since_start = [start](Clock::time_point time) { return std::chrono::duration<double>(time - start).count(); };
        report.reception = receiver_.State();
        report.queue = queue_.Statistics();
        report.written = writer_.Written();
        report.failed = writer_.Failed();
        report.seconds = since_start(Clock::now());
        if (report.reception.first) report.first_frame_s = since_start(*report.reception.first);
        const std::string failure = !writer_.Failure().empty() ? writer_.Failure() : report.reception.failure;
        if (failure.empty()) return;
        report.ending = Ending::kFailed;
        report.failure = failure;
    }

    const Camera& camera_;
    const std::chrono::duration<double> timeout_;
    FrameQueue queue_;
    FrameWriter writer_;
    FrameReceiver receiver_;
    Progress progress_;
    Stream stream_;
};

ExitCode exit_of(const GrabReport& report) {
    // Without a number of images Ctrl-C is the way to end.
    const bool is_wanted = report.ending == Ending::kInterrupted && report.wanted == 0;
    if (report.ending == Ending::kInterrupted) return is_wanted ? ExitCode::kOk : ExitCode::kInterrupted;
    return report.ending == Ending::kComplete ? ExitCode::kOk : ExitCode::kIncompleteGrab;
}

ExitCode grab(const Options& options, const Arguments& arguments) {
    GrabReport report;
    Factory factory(options.registry);
    report.camera = find_camera(factory, arguments.camera);
    const Camera camera(factory, report.camera.id);
    report.folder = made_folder(arguments.folder);
    report.kind = arguments.style.kind;
    report.wanted = arguments.count;
    report.pixel_format = camera.Text("PixelFormat").value_or("unknown");
    const uint32_t payload = payload_size(camera, arguments.buffer_size);
    catch_interrupts();
    Grab(camera, arguments, options.timeout_s, payload).Run(report);
    report.leftovers = count_leftovers(report);
    if (arguments.manifest) write_manifest(report);
    if (options.json) {
        std::fputs(json_text(to_json(report)).c_str(), stdout);
    } else {
        print_summary(report);
    }
    std::fflush(stdout);
    if (!report.failure.empty()) std::fprintf(stderr, "kiv: %s\n", report.failure.c_str());
    return exit_of(report);
}

void add_options(CLI::App& command, Arguments& arguments) {
    command.add_option("camera", arguments.camera, kCameraHelp)->required();
    command.add_option("-n,--count", arguments.count, "How many images; 0: until Ctrl-C")->type_name("N")->capture_default_str();
    command.add_option("-o,--output", arguments.folder, "Folder for the images; made if it is not there")
        ->type_name("DIR")
        ->required();
    add_file_options(command, arguments.style);
    command.add_flag("--manifest", arguments.manifest, "Write frames.json, which tells frame id and time stamp of each file");
    command.add_option("--writers", arguments.writers, "Threads that compress and write")
        ->type_name("N")
        ->check(CLI::Range(1, 64).description(""))
        ->capture_default_str();
    command.add_option("--queue", arguments.queue, "Frames that may wait for the writers; 0: as many as take 256 MB")
        ->type_name("N")
        ->check(CLI::Range(0, 100000).description(""))
        ->capture_default_str();
    command.add_option("--buffer-size", arguments.buffer_size, "Bytes of a stream buffer; 0: the camera's PayloadSize")
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
