/// The environment of the process. Texts are UTF-8.
///
/// These functions may be called from any thread. Code that changes the environment behind their back (another library's
/// setenv) is outside their guard.
#pragma once

#include <optional>
#include <string>

namespace kiv::platform {

/// A copy of the value; nothing when the variable is not set. A set variable may be empty where the system knows that.
std::optional<std::string> get_environment(const std::string& name);

/// False when the name is empty, holds "=" or a NUL, or the system refuses.
bool set_environment(const std::string& name, const std::string& value) noexcept;
bool unset_environment(const std::string& name) noexcept;

}  // namespace kiv::platform
