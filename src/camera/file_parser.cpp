#include "camera/file_parser.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/paths.h>

#include <filesystem>
#include <fstream>

namespace GenICam::Registry::Impl {

namespace {

constexpr const char* source = "FileParser";

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// "/C|/x", "/C:/x" and (wrong, but written) "//C:/x" are "C:/x"; "//host-less/x" keeps one slash; what has none is relative.
std::string local_path(std::string path) {
    if (path.starts_with("///")) path.erase(0, 2);
    if (path.starts_with("//localhost/")) path.erase(0, 11);
    if (path.size() > 3 && path.starts_with("//") && is_letter(path[2]) && (path[3] == ':' || path[3] == '|')) path.erase(0, 1);
    if (path.size() > 2 && path[0] == '/' && is_letter(path[1]) && (path[2] == ':' || path[2] == '|')) path.erase(0, 1);
    if (path.size() > 1 && is_letter(path[0]) && path[1] == '|') path[1] = ':';
    return path;
}

}  // namespace

CFileParser::CFileParser(const CURLParser& url) {
    if (!url.HasScheme("file"))
        throw InvalidArgumentException("Given URL type is not of file scheme: " + url.Url(), source, __LINE__);
    path_ = local_path(url.Path());
    auto native = kiv::platform::path_from_utf8(path_);
    std::error_code ignored;
    // Only a file: opening a pipe would wait for somebody to write into it.
    if (!std::filesystem::is_regular_file(native, ignored) || !std::ifstream(native).is_open())
        throw AccessException("Given file path and name could not be opened, scheme: " + url.Url(), source, __LINE__);
}

}  // namespace GenICam::Registry::Impl
