// kiv lint: looks over a description without a camera, for those who write one.

#include <GenApi/GenApi.h>
#include <GenApi/description_check.h>
#include <GenICam/exceptions.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "error.h"
#include "feature.h"
#include "lint_reading.h"
#include "options.h"
#include "text.h"

namespace {

constexpr const char* kFooter =
    "The exit code is 6 when there are errors or warnings; notes alone do not count.\n"
    "\n"
    "Examples:\n"
    "  kiv lint camera.xml\n"
    "  kiv xml 0 -o camera.xml && kiv lint camera.xml --read\n"
    "  kiv lint camera.zip --json";

struct Arguments {
    std::string file;
    bool read = false;
};

constexpr std::array<const char*, 3> kSeverities{"note", "warning", "error"};

struct Report {
    std::vector<GenApi::DescriptionFinding> findings;
    std::array<std::size_t, 3> counts{};
    nlohmann::json identity;
    std::map<std::string, std::size_t> kinds;
    std::size_t nodes = 0;
    double build_ms = 0;
    std::optional<Reading> reading;
};

std::string version_text(const GenApi::Version_t& version) {
    return std::to_string(version.Major) + "." + std::to_string(version.Minor) + "." + std::to_string(version.SubMinor);
}

nlohmann::json identity_of(const GenApi::CNodeMapRef& map) {
    GenApi::Version_t schema, device;
    map._GetSchemaVersion(schema);
    map._GetDeviceVersion(device);
    return {{"vendor", map._GetVendorName().str()},        {"model", map._GetModelName().str()},
            {"tool_tip", map._GetToolTip().str()},         {"name_space", map._GetStandardNameSpace().str()},
            {"schema_version", version_text(schema)},      {"device_version", version_text(device)},
            {"product_guid", map._GetProductGuid().str()}, {"version_guid", map._GetVersionGuid().str()}};
}

/// A text that is no description has findings and nothing else.
Report examine(const Arguments& arguments) {
    Report report;
    const GenApi::gcstring text = GenApi::ReadDescriptionFile(arguments.file);
    report.findings = GenApi::CheckDescription(text);
    for (const GenApi::DescriptionFinding& finding : report.findings) ++report.counts[static_cast<std::size_t>(finding.severity)];
    GenApi::CNodeMapRef map;
    const auto start = std::chrono::steady_clock::now();
    try {
        map._LoadXMLFromString(text);
    } catch (const GenICam::RuntimeException&) {
        return report;
    }
    report.build_ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    report.identity = identity_of(map);
    GenApi::NodeList_t nodes;
    map._GetNodes(nodes);
    report.nodes = nodes.size();
    for (const GenApi::INode* node : nodes) ++report.kinds[kind_of(*node)];
    if (arguments.read) report.reading = read_all_features(*map._Ptr());
    return report;
}

// ---- for programs ----

nlohmann::json json_of(const Reading& reading) {
    nlohmann::json json{{"kinds", nlohmann::json::object()}, {"failures", nlohmann::json::array()}};
    for (const auto& [name, kind] : reading.kinds)
        json["kinds"][name] = {{"values", kind.values}, {"not_readable", kind.not_readable}, {"failed", kind.failed}};
    for (const auto& [type, failures] : reading.failures)
        for (const ReadFailure& failure : failures)
            json["failures"].push_back({{"type", type}, {"node", failure.node}, {"text", failure.text}});
    return json;
}

void print_json(const std::string& file, const Report& report) {
    nlohmann::json json{{"file", file},
                        {"errors", report.counts[GenApi::fsError]},
                        {"warnings", report.counts[GenApi::fsWarning]},
                        {"notes", report.counts[GenApi::fsNote]},
                        {"findings", nlohmann::json::array()}};
    for (const GenApi::DescriptionFinding& finding : report.findings)
        json["findings"].push_back({{"line", finding.line},
                                    {"severity", kSeverities[static_cast<std::size_t>(finding.severity)]},
                                    {"node", finding.nodeName.str()},
                                    {"text", finding.text.str()}});
    if (!report.identity.is_null()) {
        json["description"] = report.identity;
        json["nodes"] = report.nodes;
        json["kinds"] = report.kinds;
        json["build_ms"] = report.build_ms;
    }
    if (report.reading) json["reading"] = json_of(*report.reading);
    std::fputs(json_text(json).c_str(), stdout);
}

// ---- for people ----

/// As compilers print what they find, so that editors can jump to the place.
void print_findings(const std::string& file, const Report& report) {
    for (const GenApi::DescriptionFinding& finding : report.findings) {
        const std::string node = finding.nodeName.empty() ? "" : finding.nodeName.str() + ": ";
        std::printf("%s:%lld: %s: %s%s\n", printable(file).c_str(), static_cast<long long>(finding.line),
                    kSeverities[static_cast<std::size_t>(finding.severity)], printable(node).c_str(),
                    printable(std::string_view(finding.text)).c_str());
    }
}

void print_identity(const Report& report) {
    constexpr std::size_t width = 16;
    for (const auto& [key, value] : report.identity.items())
        if (!value.get<std::string>().empty())
            std::printf("  %s %s\n", padded(key, width).c_str(), printable(value.get<std::string>()).c_str());
    std::printf("  %s %zu (built in %s ms)\n", padded("nodes", width).c_str(), report.nodes,
                fixed_number(report.build_ms, 1).c_str());
    for (const auto& [kind, count] : report.kinds) std::printf("    %s %zu\n", padded(kind, width - 2).c_str(), count);
}

void print_reading(const Reading& reading) {
    constexpr std::size_t width = 16, examples = 3;
    std::printf("  %s %10s %14s %8s\n", padded("read over zeros", width).c_str(), "values", "not readable", "failed");
    for (const auto& [name, kind] : reading.kinds)
        std::printf("    %s %10zu %14zu %8zu\n", padded(name, width - 2).c_str(), kind.values, kind.not_readable, kind.failed);
    for (const auto& [type, failures] : reading.failures) {
        std::printf("  %s: %zu\n", type.c_str(), failures.size());
        for (std::size_t i = 0; i < std::min(examples, failures.size()); ++i)
            std::printf("    %s: %s\n", printable(failures[i].node).c_str(), printable(failures[i].text).c_str());
        if (failures.size() > examples) std::printf("    ... and %zu more\n", failures.size() - examples);
    }
}

ExitCode lint(const Options& options, const Arguments& arguments) {
    Report report;
    try {
        report = examine(arguments);
    } catch (const GenICam::RuntimeException& failure) {
        throw ToolError(ExitCode::kFailed, failure.GetDescription());
    }
    if (options.json) {
        print_json(arguments.file, report);
    } else {
        print_findings(arguments.file, report);
        std::printf(
            "%s: %s, %s, %s\n", printable(arguments.file).c_str(), counted(report.counts[GenApi::fsError], "error").c_str(),
            counted(report.counts[GenApi::fsWarning], "warning").c_str(), counted(report.counts[GenApi::fsNote], "note").c_str());
        if (!report.identity.is_null()) print_identity(report);
        if (report.reading) print_reading(*report.reading);
    }
    return report.counts[GenApi::fsError] + report.counts[GenApi::fsWarning] == 0 ? ExitCode::kOk : ExitCode::kFaultyDescription;
}

}  // namespace

void add_lint_command(CLI::App& app, Invocation& invocation) {
    CLI::App* command = app.add_subcommand("lint", "Look for faults in a description file");
    command->footer(kFooter);
    auto arguments = std::make_shared<Arguments>();
    command->add_option("file", arguments->file, "Description: XML, or a zip archive with it")->type_name("FILE")->required();
    command->add_flag("--read", arguments->read, "Also read every feature over a memory of zeros");
    add_shared_options(*command, invocation.options, static_cast<unsigned>(Takes::kJson));
    command->callback(
        [&invocation, arguments] { invocation.run = [&invocation, arguments] { return lint(invocation.options, *arguments); }; });
}
