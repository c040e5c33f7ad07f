// kiv producers: which producers the registry lists, and what became of each.

#include <algorithm>
#include <cstdio>

#include "feature.h"
#include "options.h"
#include "session.h"
#include "status_names.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "A producer is bound (its cameras are listed), disabled (switched off in the registry), or refused with a reason.\n"
    "\n"
    "Examples:\n"
    "  kiv producers\n"
    "  kiv producers --registry my-cameras.xml --json";

const char* state_of(const K_PRODUCER_REPORT& report) {
    if (report.disabled != 0) return "disabled";
    return report.status == K_ST_SUCCESS ? "bound" : "refused";
}

nlohmann::json report_json(const K_PRODUCER_REPORT& report) {
    nlohmann::json json{{"key", report.sKey},      {"path", report.sPath},     {"state", state_of(report)},
                        {"status", report.status}, {"vendor", report.sVendor}, {"type", report.sTLType},
                        {"reason", report.sReason}};
    json["status_name"] = status_name(report.status).name;
    return json;
}

void print_if(const char* label, const std::string& text) {
    if (!text.empty()) std::printf("    %-8s %s\n", label, printable(text).c_str());
}

void print(const K_PRODUCER_REPORT& report) {
    std::printf("%s  %s\n", padded(printable(report.sKey), 20).c_str(), state_of(report));
    print_if("file", report.sPath);
    print_if("vendor", report.sVendor);
    print_if("type", report.sTLType);
    if (report.status != K_ST_SUCCESS) print_if("status", status_text(report.status));
    print_if("reason", report.sReason);
}

ExitCode producers(const Options& options) {
    Factory factory(options.registry);
    factory.FindCameras();
    const std::vector<K_PRODUCER_REPORT> reports = factory.Producers();
    if (options.json) {
        nlohmann::json json{{"producers", nlohmann::json::array()}};
        for (const K_PRODUCER_REPORT& report : reports) json["producers"].push_back(report_json(report));
        std::fputs(json_text(json).c_str(), stdout);
    } else {
        std::for_each(reports.begin(), reports.end(), print);
    }
    const auto bound = [](const K_PRODUCER_REPORT& report) { return report.disabled == 0 && report.status == K_ST_SUCCESS; };
    if (std::any_of(reports.begin(), reports.end(), bound)) return ExitCode::kOk;
    std::fputs("kiv: no producer could be bound\n", stderr);
    return ExitCode::kNothingFound;
}

}  // namespace

void add_producers_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("producers", "Show which producers were found, bound or refused, and why");
    command->footer(kFooter);
    add_shared_options(*command, invocation.options, Takes::kRegistry | Takes::kJson);
    command->callback([&invocation] { invocation.run = [&invocation] { return producers(invocation.options); }; });
}
