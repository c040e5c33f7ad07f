/// The version of an installed package, out of the system's installer records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kiv {

struct InstalledPackage {
    std::string product_code;
    std::int32_t platform = 0;
};

/// Nothing when no package of that upgrade code is installed.
std::optional<std::string> installed_product_code(const std::string& upgrade_code);
bool product_is_registered(const std::string& product_code);
/// "1.2.3.4 (x64)"; nothing when the product has no version.
std::optional<std::string> installed_version(const InstalledPackage& package);

}  // namespace kiv
