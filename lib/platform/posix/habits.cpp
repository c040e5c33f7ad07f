#include <cstdio>

#include "common/system_habits.h"
#include "kiv/platform/environment.h"
#include "kiv/platform/paths.h"

namespace kiv::platform {

const char path_separator = '/';
const std::string_view list_separators = ";:";
const bool backslash_separates = false;

void write_system_debug_output(std::string_view text) noexcept try {
    if (get_environment("KIV_DEBUG_OUTPUT") != "1") return;
    std::fwrite(text.data(), 1, text.size(), stderr);
} catch (...) {  // no memory: the diagnostic is lost
}

}  // namespace kiv::platform
