/// Settings into a script file.
#pragma once

#include <string>

#include "settings/setting.h"

namespace kiv {

/// Writes the script, whole or not at all; without settings no file. UTF-8, lines ended by CR LF. `file`: UTF-8. False when the
/// file cannot be written. A character that XML cannot hold is told to the debugger output, counts as success, and leaves no
/// file.
bool write_script(const std::string& file, const Settings& settings);

}  // namespace kiv
