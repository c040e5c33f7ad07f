/// A description in the register space of its module: name, address, length.
#pragma once

#include <cstdint>

#include "camera/url_parser.h"

namespace GenICam::Registry::Impl {

class CLocalParser {
public:
    /// Throws InvalidArgumentException or RuntimeException that names what is missing or unreadable, and the URL.
    explicit CLocalParser(const CURLParser& url);

    /// A name, not a path; nobody has checked yet that it is a harmless one.
    const std::string& FileName() const { return file_name_; }
    std::uint64_t Address() const { return address_; }
    std::uint64_t Length() const { return length_; }

private:
    std::string file_name_;
    std::uint64_t address_ = 0;
    std::uint64_t length_ = 0;
};

}  // namespace GenICam::Registry::Impl
