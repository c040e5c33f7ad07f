/// Where the files of an installation are, when the environment does not say.
///
/// Configured paths name the macros $(KIV_SDK_DATA), $(KIV_SDK_BIN_64) and $(KIVSDK_ROOT). Unset, they mean: the folder "kiv"
/// beside this library, the program folder beside the library's, and the user's cache folder. So a build tree and an installation
/// work without any variable.
#pragma once

#include <string>
#include <string_view>

namespace kiv {

/// Expands the macros (these three with their defaults, others from the environment; unknown ones stay) and gives the path this
/// system's separators.
std::string expand_path(std::string_view configured);

/// The file of this library.
std::string library_file();

}  // namespace kiv
