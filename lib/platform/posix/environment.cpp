#include "kiv/platform/environment.h"

#include <cstdlib>
#include <mutex>

namespace kiv::platform {
namespace {

std::mutex& environment_lock() {
    static std::mutex only;
    return only;
}

}  // namespace

std::optional<std::string> get_environment(const std::string& name) {
    std::lock_guard guard(environment_lock());
    const char* value = std::getenv(name.c_str());
    if (!value) return std::nullopt;
    return value;
}

bool set_environment(const std::string& name, const std::string& value) noexcept {
    if (name.find('\0') != name.npos || value.find('\0') != value.npos) return false;
    std::lock_guard guard(environment_lock());
    return setenv(name.c_str(), value.c_str(), 1) == 0;
}

bool unset_environment(const std::string& name) noexcept {
    if (name.find('\0') != name.npos) return false;
    std::lock_guard guard(environment_lock());
    return unsetenv(name.c_str()) == 0;
}

}  // namespace kiv::platform
