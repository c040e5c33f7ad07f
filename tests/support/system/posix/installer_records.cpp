#include "support/system/installer_records.h"

#include <kiv/platform/environment.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace kiv_test {

InstallerRecords::InstallerRecords(const std::string& text) {
    const auto name = "kiv_test_records_" + std::to_string(std::random_device()()) + ".reg";
    made_.push_back((std::filesystem::temp_directory_path() / name).string());
    std::ofstream(made_.front()) << text;
    kiv::platform::set_environment("KIV_INSTALLER_REGISTRY", made_.front());
}

InstallerRecords::~InstallerRecords() {
    kiv::platform::unset_environment("KIV_INSTALLER_REGISTRY");
    std::filesystem::remove(made_.front());
}

}  // namespace kiv_test
