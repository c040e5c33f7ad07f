// The usual table of a benchmark, and under it how two subjects compare that did the same work.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace kiv::bench {

/// Benchmarks are named "<work>/<subject>" or "<work>/<subject>/<size>".
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter(std::string subject, std::string other)
        : ConsoleReporter(OO_Tabular), subject_("/" + subject), other_("/" + other) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            // With repetitions the median stands for all of them; it comes behind them.
            if (run.error_occurred || (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median")) continue;
            times_[run.run_name.str()] = run.GetAdjustedCPUTime();
            order_.push_back(run.run_name.str());
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void PrintRatios() const {
        std::map<std::string, bool> printed;
        for (const std::string& name : order_) {
            const size_t at = name.find(subject_);
            if (at == name.npos || printed[name]) continue;
            printed[name] = true;
            std::string rest = name.substr(at + subject_.size());
            const auto other = times_.find(name.substr(0, at) + other_ + rest);
            if (other == times_.end()) continue;
            std::printf("%-36s %8.2f times as fast as %s\n", (name.substr(0, at) + rest).c_str(), other->second / times_.at(name),
                        other_.c_str() + 1);
        }
    }

private:
    std::string subject_, other_;
    std::map<std::string, double> times_;
    std::vector<std::string> order_;
};

}  // namespace kiv::bench
