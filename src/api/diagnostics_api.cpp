// Diagnostics: the debugger output.
#include <kiv/diagnostics.h>
#include <kiv/platform/debug_output.h>

#include <atomic>

#include "api/guard.h"

namespace {

// The platform's sink and the C callback differ in the order of their arguments.
std::atomic<K_DEBUG_OUTPUT_CALLBACK> debug_callback = nullptr;

void forward(const char* text, void* context) {
    if (auto callback = debug_callback.load()) callback(context, text);
}

}  // namespace

K_API K_STATUS_CODES K_CALL K_SetDebugOutput(K_DEBUG_OUTPUT_CALLBACK callback, void* context) {
    return kiv::api::guarded([&] {
        kiv::platform::set_debug_sink(nullptr, nullptr);
        debug_callback = callback;
        if (callback) kiv::platform::set_debug_sink(forward, context);
        return K_ST_SUCCESS;
    });
}
