#include "core/error.h"

#include <kiv/platform/paths.h>

#include <cstdio>
#include <new>

namespace kiv::vl {
namespace {

// Plain data without a destructor: threads that outlive the library must find nothing to run.
thread_local char last_error[1024];

VL_STATUS remember(const char* function, VL_STATUS status, const char* text) noexcept {
    set_last_error(function, text);
    return status;
}

}  // namespace

std::string size_text(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string code_text(std::uint64_t code) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(code));
    return text;
}

void set_last_error(const char* function, const char* text) noexcept {
    std::snprintf(last_error, sizeof last_error, "%s: %s", function, text);
}

const char* last_error_text() noexcept { return last_error; }

VL_STATUS status_of_current_exception(const char* function) noexcept {
    try {
        throw;
    } catch (const Error& error) {
        return remember(function, error.Status(), error.what());
    } catch (const platform::FileError& error) {
        return remember(function, VL_ST_IO, error.what());
    } catch (const std::bad_alloc&) {
        return remember(function, VL_ST_OUT_OF_MEMORY, "out of memory");
    } catch (const std::exception& error) {
        return remember(function, VL_ST_ERROR, error.what());
    } catch (...) {
        return remember(function, VL_ST_ERROR, "unknown failure");
    }
}

}  // namespace kiv::vl
