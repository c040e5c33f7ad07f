/// One grab from start to end: the camera streams, images are written, figures are taken.
#pragma once

#include <string>
#include <vector>

#include "frame_receiver.h"
#include "frame_writer.h"
#include "grab_report.h"
#include "progress.h"
#include "session.h"

struct GrabSettings {
    std::string folder;  ///< empty: nothing is written
    FileStyle style;
    unsigned writers = 2;
    std::size_t queue = 0;     ///< frames that may wait for the writers; 0: as many as take 256 MB
    uint32_t buffer_size = 0;  ///< 0: the camera's PayloadSize
    double timeout_s = 5;
    ReceiverSettings receiver;
};

/// The members are closed in reverse order: the stream first, so that nothing comes any more.
class Grab {
public:
    /// Opens the stream. The camera must outlive the grab.
    Grab(const Camera& camera, const GrabSettings& settings);

    /// Returns when the images are there, on Ctrl-C, or when none comes any more. Fills the report.
    void Run(GrabReport& report);

private:
    Grab(const Camera& camera, const GrabSettings& settings, uint32_t payload);
    void Wait(GrabReport& report);
    void StopCamera() const;
    void ReadClock();
    void Collect(GrabReport& report, Clock::time_point start) const;
    std::string WriterFailure() const { return writer_ ? writer_->Failure() : std::string(); }

    const Camera& camera_;
    const std::chrono::duration<double> timeout_;
    const bool keep_timings_;
    std::vector<ClockReading> clock_;
    FrameQueue queue_;
    std::optional<FrameWriter> writer_;
    FrameReceiver receiver_;
    Progress progress_;
    Stream stream_;
};
