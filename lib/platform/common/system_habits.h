/// What differs between systems by a constant only.
#pragma once

#include <string_view>

namespace kiv::platform {

/// The characters that separate the folders of a list in an environment variable.
extern const std::string_view list_separators;
/// Whether "\" separates the parts of a path here, as it does in the configurations of all systems.
extern const bool backslash_separates;

/// Whether anybody may be listening there.
bool system_debug_output_is_heard() noexcept;
/// Where a text for the debugger goes on this system.
void write_system_debug_output(std::string_view text) noexcept;

}  // namespace kiv::platform
