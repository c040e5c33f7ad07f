#include "diagnostics/logging.h"

#include <GenICam/gcstring.h>
#include <kiv/log/log.h>
#include <kiv/platform/environment.h>

#include <algorithm>
#include <atomic>

namespace kiv {

namespace {

std::atomic<bool> logging_configured = false;

constexpr const char* variables[] = {"KIV_GENTL_LOGGING", "KIV_LIBUSB_LOGGING", "KIV_LOG_LEVEL"};

struct LevelNumber {
    std::string_view text;
    const char* number;
};

// As producers know them: 5 is nobody's, and NOTSET wants everything.
constexpr LevelNumber level_numbers[] = {{"EMERG", "1"}, {"FATAL", "1"},  {"ALERT", "1"}, {"CRIT", "1"},  {"ERROR", "2"},
                                         {"WARN", "3"},  {"NOTICE", "3"}, {"INFO", "4"},  {"DEBUG", "6"}, {"NOTSET", "6"}};

const char* number_of(std::string_view level) {
    auto found = std::ranges::find(level_numbers, level, &LevelNumber::text);
    return found == std::end(level_numbers) ? "1" : found->number;
}

std::string properties_of(const LogRequest& request, const std::string& file) {
    const std::string appender = file.empty() ? "win32debug" : "File";
    std::string text = "log4j.rootCategory=ERROR\n";
    auto category = [&](bool wanted, const char* name) {
        if (wanted) text += std::string("log4j.category.") + name + "=" + request.level + ", " + appender + "\n";
    };
    category(request.gen_api, "GenApi");
    category(request.gen_tl, "GenTL");
    category(request.cl_protocol, "CLProtocol");
    text += "log4j.appender." + appender + "=org.apache.log4j." + (file.empty() ? "Win32DebugAppender" : "FileAppender") + "\n";
    text += "log4j.appender." + appender + ".layout=org.apache.log4j.PatternLayout\n";
    text += "log4j.appender." + appender + ".layout.ConversionPattern=" + request.pattern + "\n";
    if (!file.empty()) text += "log4j.appender.File.fileName=" + file + "\n";
    return text;
}

std::string expanded(const char* text) { return GenICam::ReplaceEnvironmentVariables(std::string_view(text)); }

void remove_variables() noexcept {
    for (auto* name : variables) platform::unset_environment(name);
}

}  // namespace

void enable_logging(const LogRequest& request) {
    logging_configured = false;
    if (request.gen_api || request.gen_tl || request.cl_protocol) {
        if (request.file_name)
            log::configure_from_string(properties_of(request, expanded(request.file_name)));
        else
            log::configure_default();
        logging_configured = true;
    }
    if (!request.producers) return remove_variables();
    platform::set_environment(variables[0], "TRUE");
    platform::set_environment(variables[1], "TRUE");
    platform::set_environment(variables[2], number_of(request.level));
}

void enable_logging_from_file(const char* file_name) {
    logging_configured = false;
    if (!file_name) return;
    log::configure_from_file(expanded(file_name));
    logging_configured = true;
}

void disable_logging() noexcept {
    if (logging_configured.exchange(false)) log::shut_down();
    remove_variables();
}

}  // namespace kiv
