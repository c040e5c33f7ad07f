/// How a failure travels to main(): as an exception that carries the text for the person and the exit code for the script.
#pragma once

#include <kiv/types.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "exit_code.h"

class ToolError : public std::runtime_error {
public:
    ToolError(ExitCode exit, const std::string& message) : std::runtime_error(message), exit_(exit) {}
    ExitCode Exit() const { return exit_; }

private:
    ExitCode exit_;
};

/// A failed call of the library.
class ApiError : public ToolError {
public:
    ApiError(ExitCode exit, const std::string& message, K_STATUS_CODES status) : ToolError(exit, message), status_(status) {}
    K_STATUS_CODES Status() const { return status_; }

private:
    K_STATUS_CODES status_;
};

/// `K_ST_GC_ERROR (-10002): Value = 9 must be ... [node Width]`: the status, and what it means or what the error record tells.
/// The record is process-wide: ask right after the call that failed.
std::string explain(K_STATUS_CODES status);

/// `K_Camera_SetValueString("Width") failed: ` and the explanation.
std::string failure_text(K_STATUS_CODES status, std::string_view call, std::string_view argument);

/// Throws an ApiError unless the status is success. `argument` is what the call was about; it may be empty.
void check(K_STATUS_CODES status, std::string_view call, std::string_view argument = {}, ExitCode exit = ExitCode::kFailed);
