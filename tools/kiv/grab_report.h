/// What a grab says when it is over: the summary for people, the same as JSON, and the list of the files.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "camera_list.h"
#include "frame_queue.h"
#include "frame_receiver.h"
#include "frame_writer.h"
#include "grab_statistics.h"

enum class Ending { kComplete, kInterrupted, kTimeout, kFailed };

struct GrabReport {
    CameraEntry camera;
    std::string pixel_format;      ///< its name as the camera tells it
    std::filesystem::path folder;  ///< empty when nothing is written
    FileKind kind = FileKind::kPng;
    uint64_t wanted = 0;
    Ending ending = Ending::kComplete;
    std::string failure;  ///< for kTimeout and kFailed: what happened
    Reception reception;
    QueueStatistics queue;
    std::vector<WrittenFrame> written;
    uint64_t failed = 0;               ///< frames that could not be written
    std::optional<uint64_t> underrun;  ///< frames that the producer lost for lack of a buffer
    std::optional<K_STREAM_STATISTICS> stream;
    std::optional<GrabStatistics> statistics;  ///< when figures of the frames were asked for
    double first_frame_s = 0;                  ///< from the start of the acquisition
    double seconds = 0;                        ///< from the start of the acquisition until the last file is written
    uint64_t leftovers = 0;                    ///< images of an earlier grab that are still in the folder
};

/// Images that are written; where none are, those that came.
uint64_t frame_count(const GrabReport& report);
nlohmann::json to_json(const GrabReport& report);
void print_summary(const GrabReport& report);
/// frames.json in the folder: which file holds which frame.
void write_manifest(const GrabReport& report);
