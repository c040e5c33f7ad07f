// The figures of a grab as a text: a line for each frame, and the summary.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "grab_statistics.h"
#include "text.h"

namespace {

constexpr int kColumn = 10;

/// A value that is rounded to 0 has no sign.
std::string figure(double value, int digits) {
    return fixed_number(std::abs(value) < 0.5 * std::pow(10, -digits) ? 0 : value, digits);
}

std::string cell(const std::optional<double>& value, int digits) { return value ? figure(*value, digits) : "-"; }

/// What is not as it should be.
std::string remark(const FrameTiming& timing) {
    std::string text;
    if (timing.missing != 0) text += "  " + counted(timing.missing, "frame") + " missing before it";
    if (timing.repeated) text += "  repeated";
    if (timing.incomplete) text += "  incomplete";
    return text;
}

void print_header(const char* first, const char* second) {
    std::printf("%9s %9s", first, second);
    for (const FigureKind& kind : figure_kinds()) std::printf("%*s", kColumn, kind.title);
    std::printf("\n%9s %9s", "", "s");
    for (const FigureKind& kind : figure_kinds()) std::printf("%*s", kColumn, kind.unit);
    std::printf("\n");
}

void print_frames(const GrabStatistics& statistics) {
    print_header("frame id", "time");
    for (const FrameFigures& frame : statistics.frames) {
        std::printf("%9llu %9.4f", static_cast<unsigned long long>(frame.timing.frame_id), frame.time_s);
        for (const FigureKind& kind : figure_kinds()) std::printf("%*s", kColumn, cell(kind.of(frame), kind.digits).c_str());
        std::printf("%s\n", remark(frame.timing).c_str());
    }
}

void print_spreads(const GrabStatistics& statistics) {
    struct Row {
        const char* name;
        double Spread::*value;
    };
    constexpr Row kRows[]{{"mean", &Spread::mean}, {"stdev", &Spread::stdev}, {"min", &Spread::min},
                          {"p50", &Spread::p50},   {"p99", &Spread::p99},     {"max", &Spread::max}};
    for (const Row& row : kRows) {
        std::printf("%19s", row.name);
        for (std::size_t i = 0; i < statistics.spreads.size(); ++i) {
            const Spread& spread = statistics.spreads[i];
            // Means of whole numbers are none.
            const int digits =
                std::max(figure_kinds()[i].digits, row.value == &Spread::mean || row.value == &Spread::stdev ? 1 : 0);
            const std::string text = spread.count != 0 ? figure(spread.*row.value, digits) : "-";
            std::printf("%*s", kColumn, text.c_str());
        }
        std::printf("\n");
    }
}

std::string clock_text(const GrabStatistics& statistics) {
    switch (statistics.clock) {
        case DeviceClock::Kind::kRead:
            return "latencies are absolute: the camera's clock was read, to within " +
                   fixed_number(statistics.clock_uncertainty_us, 1) + " us";
        case DeviceClock::Kind::kSmallest:
            return "latencies are beyond that of the fastest frame: the camera's clock cannot be read";
        default:
            return "no latencies: the frames have no time stamps, or of an unknown unit";
    }
}

}  // namespace

void print_statistics(const GrabStatistics& statistics) {
    if (statistics.frames.empty()) return void(std::printf("no frames, no figures\n"));
    print_frames(statistics);
    std::printf("\n");
    print_spreads(statistics);
    std::printf("\n%s: %s in %s, %llu repeated, %llu incomplete", counted(statistics.frames.size(), "frame").c_str(),
                (std::to_string(statistics.missing) + " missing").c_str(), counted(statistics.gaps, "gap").c_str(),
                static_cast<unsigned long long>(statistics.repeated), static_cast<unsigned long long>(statistics.incomplete));
    if (statistics.stream)
        std::printf("; %llu lost by the producer, %llu unusable", static_cast<unsigned long long>(statistics.stream->lost),
                    static_cast<unsigned long long>(statistics.stream->skipped));
    std::printf("\n%s\n\n", clock_text(statistics).c_str());
}
