#include "support/temp_folder.h"

#include <kiv/platform/environment.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <system_error>

namespace kiv_test {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    static std::random_device random;
    do path_ = fs::temp_directory_path() / ("kiv_test_" + std::to_string(random()));
    while (!fs::create_directory(path_));
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TempFolder::Write(const std::string& name, const std::string& content) const {
    auto path = kiv::platform::path_from_utf8(In(name));
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return In(name);
}

std::string TempFolder::MakeFolder(const std::string& name) const {
    fs::create_directories(kiv::platform::path_from_utf8(In(name)));
    return In(name);
}

std::string read_file(const std::string& path) {
    std::ifstream file(kiv::platform::path_from_utf8(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string write_registry(const TempFolder& folder, const std::string& name, const std::vector<RegistryEntry>& entries) {
    std::ostringstream text;
    text << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KivRegistry version=\"1\">\n  <Producers>\n";
    for (const auto& entry : entries)
        text << "    <Producer key=\"" << entry.key << "\" path=\"" << entry.path << "\" enabled=\"" << entry.enabled
             << "\" flag=\"" << entry.flag << "\"/>\n";
    text << "  </Producers>\n</KivRegistry>\n";
    return folder.Write(name, text.str());
}

ScopedEnvironment::ScopedEnvironment(std::string name, const std::string& value) : name_(std::move(name)) {
    auto former = kiv::platform::get_environment(name_);
    was_set_ = former.has_value();
    former_ = former.value_or("");
    kiv::platform::set_environment(name_, value);
}

ScopedEnvironment::~ScopedEnvironment() {
    was_set_ ? kiv::platform::set_environment(name_, former_) : kiv::platform::unset_environment(name_);
}

}  // namespace kiv_test
