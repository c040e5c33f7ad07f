#include "support/system/habits.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace kiv_test {

std::string no_such_file() { return "No such file"; }
std::string no_such_library() { return "No such file"; }
void give_second_name(const std::string& file, const std::string& name) { std::filesystem::create_symlink(file, name); }

std::vector<std::string> exported_names(const std::string& library) {
    struct Close {
        void operator()(FILE* pipe) const { pclose(pipe); }
    };
    const std::unique_ptr<FILE, Close> table(popen(("nm -D --defined-only '" + library + "'").c_str(), "r"));
    std::vector<std::string> names;
    char name[1024];
    while (table && std::fscanf(table.get(), "%*s %*s %1023s", name) == 1) names.emplace_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

BlockingFile::BlockingFile(const std::string& folder) : path_(folder + "/pipe.xml") {
    if (mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
}
BlockingFile::~BlockingFile() = default;
void BlockingFile::LetGo() { close(open(path_.c_str(), O_WRONLY | O_NONBLOCK)); }

std::string url_path(const std::string& path) { return path; }
const std::string list_separator = ":";
const char* const library_suffix = ".so";
const char* const cache_variable = "XDG_CACHE_HOME";

}  // namespace kiv_test
