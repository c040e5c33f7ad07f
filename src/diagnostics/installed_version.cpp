#include "diagnostics/installed_version.h"

#include <kiv/platform/installer_records.h>

namespace kiv {

namespace {

std::string product_key(const std::string& product_code) { return "SOFTWARE\\Classes\\Installer\\Products\\" + product_code; }

}  // namespace

std::optional<std::string> installed_product_code(const std::string& upgrade_code) {
    return platform::first_installer_value_name("SOFTWARE\\Classes\\Installer\\UpgradeCodes\\" + upgrade_code);
}

bool product_is_registered(const std::string& product_code) { return platform::installer_key_exists(product_key(product_code)); }

std::optional<std::string> installed_version(const InstalledPackage& package) {
    auto number = platform::installer_number(product_key(package.product_code), "Version");
    if (!number) return std::nullopt;
    std::string text;
    // The installer packs major, minor and a build of two bytes; the build is told as two numbers.
    for (int shift = 24; shift >= 0; shift -= 8) text += std::to_string(*number >> shift & 0xFF) + (shift ? "." : " ");
    return text + (package.platform / 64 > 0 ? "(x64)" : "(i32)");
}

}  // namespace kiv
