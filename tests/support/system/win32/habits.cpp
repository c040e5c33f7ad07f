#include "support/system/habits.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <kiv/platform/text.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "support/system/process.h"

namespace kiv_test {

// The texts are in the user's language, the numbers are not.
std::string no_such_file() { return "(2)"; }
std::string no_such_library() { return "(126)"; }
void give_second_name(const std::string& file, const std::string& name) { std::filesystem::copy_file(file, name); }

std::vector<std::string> exported_names(const std::string& library) {
    struct Free {
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, Free> module(
        LoadLibraryExW(kiv::platform::wide_from_utf8(library).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
    if (!module) throw std::runtime_error("cannot load " + library);
    const auto* image = reinterpret_cast<const std::byte*>(module.get());
    const auto at = [image](DWORD offset) { return image + offset; };
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(
        at(static_cast<DWORD>(reinterpret_cast<const IMAGE_DOS_HEADER*>(image)->e_lfanew)));
    const auto& table = *reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        at(headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress));
    const auto* offsets = reinterpret_cast<const DWORD*>(at(table.AddressOfNames));
    std::vector<std::string> names;
    for (DWORD i = 0; i < table.NumberOfNames; ++i) names.emplace_back(reinterpret_cast<const char*>(at(offsets[i])));
    std::sort(names.begin(), names.end());
    return names;
}

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
const std::string list_separator = ";";
const char* const library_suffix = ".dll";
const char* const cache_variable = "LOCALAPPDATA";

}  // namespace kiv_test
