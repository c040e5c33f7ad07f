#include <cstdio>
#include <memory>
#include <string>

#include "common/system_habits.h"
#include "kiv/platform/environment.h"
#include "kiv/platform/paths.h"

namespace kiv::platform {

const char path_separator = '/';
const std::string_view list_separators = ";:";
const bool backslash_separates = false;

bool system_debug_output_is_heard() noexcept try {
    // Never destroyed, and not made anew for each question: threads of ours ask once a frame.
    static const std::string& name = *std::make_unique<std::string>("KIV_DEBUG_OUTPUT").release();
    return get_environment(name) == "1";
} catch (...) {  // no memory: nobody would be reached
    return false;
}

void write_system_debug_output(std::string_view text) noexcept try {
    if (!system_debug_output_is_heard()) return;
    std::fwrite(text.data(), 1, text.size(), stderr);
} catch (...) {  // no memory: the diagnostic is lost
}

}  // namespace kiv::platform
