#include "transport/sdk_paths.h"

#include <GenICam/gcstring.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>

namespace kiv {

namespace {

std::string data_folder() { return platform::join_path(platform::folder_of(library_file()), "kiv"); }

std::string program_folder() {
    auto beside = platform::folder_of(library_file());
    auto programs = platform::join_path(platform::folder_of(beside), "bin");
    return platform::path_exists(programs) ? programs : beside;
}

std::string cache_folder() { return platform::join_path(platform::user_cache_root(), "kiv"); }

struct DefaultedMacro {
    std::string_view name;
    std::string (*value)();
};
constexpr DefaultedMacro defaulted_macros[] = {
    {"KIV_SDK_DATA", data_folder},
    {"KIV_SDK_BIN_64", program_folder},
    {"KIVSDK_ROOT", cache_folder},
};

}  // namespace

std::string library_file() {
    static const char inside = 0;
    return platform::module_file(&inside);
}

std::string expand_path(std::string_view configured) {
    std::string path(configured);
    for (auto& macro : defaulted_macros) {
        auto reference = "$(" + std::string(macro.name) + ")";
        auto at = path.find(reference);
        if (at == path.npos || platform::get_environment(std::string(macro.name))) continue;
        path.replace(at, reference.size(), macro.value());
    }
    return platform::normalise_path(GenICam::ReplaceEnvironmentVariables(path));
}

}  // namespace kiv
