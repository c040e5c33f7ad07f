/// Diagnostics that no status can carry, for whoever debugs: the system's debugger output and one callback of the process.
///
/// Where the system has no debugger output the texts go to standard error when KIV_DEBUG_OUTPUT is 1, and are dropped otherwise.
#pragma once

#include <string_view>

namespace kiv::platform {

/// Writes the text as it is: lines carry their own "\n". From any thread; never throws.
void debug_print(std::string_view text) noexcept;
void debug_print(std::wstring_view text) noexcept;

/// Whether a text would reach anybody now; debug_print() does nothing where it would not. Cheap enough for every frame.
bool debug_output_is_heard() noexcept;

/// Receives every text as UTF-8, on the thread that printed it, several threads at a time.
using DebugSink = void (*)(const char* text, void* context);

/// Replaces the callback; null removes it. On return the former one is no longer running on any other thread, so that its
/// context may go, except when called from inside a callback, which is allowed and does not wait.
void set_debug_sink(DebugSink sink, void* context) noexcept;

}  // namespace kiv::platform
