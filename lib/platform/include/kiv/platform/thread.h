/// What std::thread cannot say about the current thread: its priority and its name in a debugger.
///
/// Both are wishes. A system that does not grant them changes nothing about what the program does.
#pragma once

#include <string_view>

namespace kiv::platform {

/// Raises the calling thread one step above normal. Answers whether the system granted it.
bool raise_thread_priority() noexcept;

/// Names the calling thread for debuggers and system monitors; a long name is cut to what the system keeps.
void set_thread_name(std::string_view name) noexcept;

}  // namespace kiv::platform
