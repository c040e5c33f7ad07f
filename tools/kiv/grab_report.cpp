#include "grab_report.h"

#include <array>
#include <cstdio>
#include <fstream>

#include "feature.h"
#include "progress.h"
#include "text.h"

namespace {

constexpr std::array kEndings{"complete", "interrupted", "timeout", "failed"};

std::string hexadecimal(uint64_t value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "0x%08llX", static_cast<unsigned long long>(value));
    return text.data();
}

nlohmann::json frame_json(const WrittenFrame& frame) {
    nlohmann::json json{{"file", frame.file},
                        {"frame_id", frame.info.frame_id},
                        {"timestamp", frame.info.timestamp},
                        {"width", frame.info.width},
                        {"height", frame.info.height},
                        {"offset_x", frame.info.offset_x},
                        {"offset_y", frame.info.offset_y},
                        {"pixel_type", hexadecimal(frame.info.pixel_type)},
                        {"bytes", frame.info.image_size},
                        {"incomplete", frame.incomplete}};
    if (!frame.chunk_file.empty()) json["chunks"] = frame.chunk_file;
    return json;
}

void print_line(const char* label, const std::string& text) { std::printf("  %-14s %s\n", label, text.c_str()); }

std::string rates(const GrabReport& report) {
    return fixed_number(frame_rate(report.reception), 2) + " fps, " + fixed_number(megabytes_per_second(report.reception), 1) +
           " MB/s";
}

std::string losses(const GrabReport& report) {
    const std::string underrun = report.underrun ? std::to_string(*report.underrun) : "unknown number";
    return std::to_string(report.reception.missing) + " by frame id; " + underrun +
           " lost by the producer for lack of a free buffer";
}

std::string queue_text(const QueueStatistics& queue) {
    return std::to_string(queue.capacity) + " frames, at most " + std::to_string(queue.peak) + " used; full " +
           counted(queue.times_full, "time") + ", held the stream up for " + fixed_number(queue.waited.count(), 2) + " s";
}

}  // namespace

uint64_t frame_count(const GrabReport& report) { return report.folder.empty() ? report.reception.frames : report.written.size(); }

nlohmann::json to_json(const GrabReport& report) {
    const Reception& reception = report.reception;
    nlohmann::json json{{"camera", report.camera.id},
                        {"requested", report.wanted},
                        {"frames", frame_count(report)},
                        {"ending", kEndings[static_cast<std::size_t>(report.ending)]},
                        {"width", reception.width},
                        {"height", reception.height},
                        {"pixel_format", report.pixel_format},
                        {"pixel_type", hexadecimal(reception.pixel_type)},
                        {"missing", reception.missing},
                        {"incomplete", reception.incomplete},
                        {"failed", report.failed},
                        {"fps", frame_rate(reception)},
                        {"mb_per_s", megabytes_per_second(reception)},
                        {"bytes", reception.bytes},
                        {"seconds", report.seconds},
                        {"leftovers", report.leftovers}};
    const bool writes = !report.folder.empty();
    json["folder"] = writes ? nlohmann::json(report.folder.string()) : nlohmann::json();
    json["format"] = writes ? nlohmann::json(file_kind_name(report.kind)) : nlohmann::json();
    if (report.statistics) json["statistics"] = to_json(*report.statistics);
    json["underrun"] = report.underrun ? nlohmann::json(*report.underrun) : nlohmann::json();
    json["first_frame_s"] = reception.first ? nlohmann::json(report.first_frame_s) : nlohmann::json();
    json["queue"] = {{"capacity", report.queue.capacity},
                     {"peak", report.queue.peak},
                     {"times_full", report.queue.times_full},
                     {"waited_s", report.queue.waited.count()}};
    if (!report.failure.empty()) json["error"] = report.failure;
    return json;
}

void print_summary(const GrabReport& report) {
    const Reception& reception = report.reception;
    const std::string of = report.wanted != 0 ? " of " + std::to_string(report.wanted) : "";
    const bool writes = !report.folder.empty();
    std::printf("%llu%s frames of camera %zu (%s, SN %s)%s%s\n", static_cast<unsigned long long>(frame_count(report)), of.c_str(),
                report.camera.index, printable(report.camera.model).c_str(), printable(report.camera.serial).c_str(),
                writes ? (" in " + report.folder.string()).c_str() : ", none written",
                report.ending == Ending::kInterrupted ? " (interrupted)" : "");
    if (reception.first) {
        print_line("images", std::to_string(reception.width) + " x " + std::to_string(reception.height) + " " +
                                 printable(report.pixel_format) +
                                 (writes ? std::string(", written as ") + file_kind_name(report.kind) : ""));
        print_line("rate", rates(report));
        print_line("first frame", "after " + fixed_number(report.first_frame_s, 3) + " s; all " + (writes ? "written" : "there") +
                                      " after " + fixed_number(report.seconds, 3) + " s");
    }
    print_line("missing", losses(report));
    print_line("bad", std::to_string(reception.incomplete) + " incomplete, " + std::to_string(report.failed) + " not written");
    if (writes) print_line("queue", queue_text(report.queue));
    if (report.leftovers != 0) print_line("note", counted(report.leftovers, "image") + " of an earlier grab still in the folder");
}

void write_manifest(const GrabReport& report) {
    nlohmann::json json{
        {"camera", to_json(report.camera)}, {"pixel_format", report.pixel_format}, {"frames", nlohmann::json::array()}};
    for (const WrittenFrame& frame : report.written) json["frames"].push_back(frame_json(frame));
    const std::filesystem::path path = report.folder / "frames.json";
    std::ofstream file(path, std::ios::binary);
    file << json_text(json);
    file.close();
    if (!file) throw ToolError(ExitCode::kFailed, "\"" + path.string() + "\" could not be written");
}
