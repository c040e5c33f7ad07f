#include "grab_run.h"

#include <algorithm>
#include <cstdio>

#include "interrupt.h"
#include "text.h"

namespace {

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

}  // namespace

Grab::Grab(const Camera& camera, const GrabSettings& settings)
    : Grab(camera, settings, payload_size(camera, settings.buffer_size)) {}

Grab::Grab(const Camera& camera, const GrabSettings& settings, uint32_t payload)
    : camera_(camera),
      timeout_(settings.timeout_s),
      keep_timings_(settings.receiver.keep_timings),
      queue_(queue_capacity(settings.queue, payload)),
      receiver_(queue_, settings.receiver),
      progress_(settings.receiver.wanted),
      stream_(camera, payload, &receiver_, FrameReceiver::OnImage) {
    receiver_.Attach(stream_.Handle());
    if (!settings.folder.empty()) writer_.emplace(queue_, settings.folder, settings.style, settings.writers);
}

void Grab::Run(GrabReport& report) {
    ReadClock();
    const Clock::time_point start = Clock::now();
    receiver_.Expect();
    camera_.Execute("AcquisitionStart");
    Wait(report);
    report.underrun = stream_.Counter(kStreamNumUnderrun);
    if (keep_timings_) report.stream = stream_.Statistics();
    StopCamera();
    ReadClock();
    // A callback that waits for room in the queue would keep the stream from closing.
    queue_.Close();
    stream_.Close();
    if (writer_) writer_->Finish();
    Collect(report, start);
}

void Grab::Wait(GrabReport& report) {
    bool ended = false;
    while (!ended) {
        ended = receiver_.WaitForEnd(kShowInterval);
        const Reception state = receiver_.State();
        progress_.Show(state, queue_.Size(), queue_.Statistics().capacity);
        if (ended || !state.failure.empty() || !WriterFailure().empty()) return;
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

void Grab::StopCamera() const {
    try {
        camera_.Execute("AcquisitionStop");
    } catch (const ToolError& failure) {
        // An unplugged camera cannot be stopped; its images are worth writing all the same.
        std::fprintf(stderr, "kiv: warning: %s\n", failure.what());
    }
}

void Grab::ReadClock() {
    if (!keep_timings_) return;
    if (const std::optional<ClockReading> reading = read_device_clock(camera_)) clock_.push_back(*reading);
}

void Grab::Collect(GrabReport& report, Clock::time_point start) const {
    const auto since_start = [start](Clock::time_point time) { return std::chrono::duration<double>(time - start).count(); };
    report.reception = receiver_.State();
    report.queue = queue_.Statistics();
    if (writer_) report.written = writer_->Written();
    if (writer_) report.failed = writer_->Failed();
    if (keep_timings_) report.statistics = make_statistics(receiver_.Timings(), clock_, report.stream);
    report.seconds = since_start(Clock::now());
    if (report.reception.first) report.first_frame_s = since_start(*report.reception.first);
    const std::string failure = !WriterFailure().empty() ? WriterFailure() : report.reception.failure;
    if (failure.empty()) return;
    report.ending = Ending::kFailed;
    report.failure = failure;
}
