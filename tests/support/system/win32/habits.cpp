#include "support/system/habits.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "support/system/process.h"

namespace kiv_test {

// The texts are in the user's language, the numbers are not.
std::string no_such_file() { return "(2)"; }
std::string no_such_library() { return "(126)"; }
void give_second_name(const std::string& file, const std::string& name) { std::filesystem::copy_file(file, name); }

BlockingFile::BlockingFile(const std::string&) : path_("//./pipe/kiv-test-" + std::to_string(own_process_number()) + ".xml") {
    handle_ = CreateNamedPipeA(path_.c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 64, 64, 0, nullptr);
    if (handle_ == INVALID_HANDLE_VALUE) throw std::runtime_error("no pipe");
}
BlockingFile::~BlockingFile() { LetGo(); }
void BlockingFile::LetGo() {
    if (handle_) CloseHandle(handle_);
    handle_ = nullptr;
}

std::string url_path(const std::string& path) { return "/" + std::filesystem::path(path).generic_string(); }
const char* const library_suffix = ".dll";
const char* const cache_variable = "LOCALAPPDATA";

}  // namespace kiv_test
