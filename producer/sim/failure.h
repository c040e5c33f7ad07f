/// How the producer fails: classes throw a Failure, the exported functions turn it into a GC_ERROR and remember it for
/// GCGetLastError. No exception leaves an exported function.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "GenTL/GenTL.h"
#include "call_log.h"

namespace kivsim {

using GenTL::GC_ERROR;

class Failure : public std::runtime_error {
public:
    Failure(GC_ERROR code, const std::string& text) : std::runtime_error(text), code_(code) {}
    GC_ERROR Code() const noexcept { return code_; }

private:
    GC_ERROR code_;
};

[[noreturn]] void fail(GC_ERROR code, const std::string& text);

/// The status of the exception that is being handled, without and with remembering it as the thread's last error.
GC_ERROR status_of_current_exception() noexcept;
GC_ERROR record_current_exception() noexcept;

/// Throws when that function was asked to fail for the camera behind the handle, or for all. Waits when it shall be late.
void meet_faults(const char* entry, const void* handle);

struct LastError {
    GC_ERROR code;
    std::string_view text;  ///< terminated; valid on this thread until its next failure
};
LastError last_error() noexcept;

/// The body of every exported function but GCGetLastError, whose own failures are not remembered. `handle`: its first argument,
/// when that is one.
template <typename Body>
GC_ERROR guarded(const char* entry, const void* handle, Body&& body) noexcept {
    const auto run = [&]() noexcept -> GC_ERROR {
        try {
            meet_faults(entry, handle);
            body();
            return GenTL::GC_ERR_SUCCESS;
        } catch (...) {
            return record_current_exception();
        }
    };
    if (!CallLog::TellsCalls()) [[likely]]
        return run();
    const auto begin = std::chrono::steady_clock::now();
    const GC_ERROR status = run();
    CallLog::Call(entry, handle, status, last_error().text.data(), std::chrono::steady_clock::now() - begin);
    return status;
}

}  // namespace kivsim
