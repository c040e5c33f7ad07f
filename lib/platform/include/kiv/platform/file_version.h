/// The product version that a library file carries.
///
/// Libraries of this project get it from the build (kiv_embed_product_version in the build files): a version resource where
/// the system has such, otherwise a tagged text among the constants of the file.
#pragma once

#include <optional>
#include <string_view>

namespace kiv::platform {

struct ProductVersion {
    unsigned major_number = 0;
    unsigned minor_number = 0;
    unsigned build_number = 0;
};

/// Nothing when the file (UTF-8 path) cannot be read or carries no version.
std::optional<ProductVersion> product_version_of(std::string_view path);

}  // namespace kiv::platform
