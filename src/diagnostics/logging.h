/// The caller's side of logging: from the switches of K_EnableLogging to a configuration of the log, and the environment through
/// which producers are asked to log.
#pragma once

#include <string>

namespace kiv {

struct LogRequest {
    bool gen_api = false;
    bool gen_tl = false;
    bool cl_protocol = false;
    bool producers = false;
    const char* file_name = nullptr;  ///< null: the default configuration; empty once expanded: the debugger output
    std::string level;
    std::string pattern;
};

/// Throws log::ConfigurationError; the environment is as it was then.
void enable_logging(const LogRequest& request);
/// Null configures nothing; the log counts as not configured then. Throws log::ConfigurationError.
void enable_logging_from_file(const char* file_name);
void disable_logging() noexcept;

}  // namespace kiv
