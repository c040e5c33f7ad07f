/// A description in a file of this machine.
#pragma once

#include "camera/url_parser.h"

namespace GenICam::Registry::Impl {

class CFileParser {
public:
    /// Throws InvalidArgumentException for another scheme, AccessException when the file cannot be opened.
    explicit CFileParser(const CURLParser& url);

    /// The file's path on this system.
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace GenICam::Registry::Impl
