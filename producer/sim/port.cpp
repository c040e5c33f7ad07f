#include "port.h"

#include <algorithm>
#include <charconv>

namespace kivsim {
namespace {

/// "local:name;address;length" (hexadecimal) or "file:///path".
struct UrlParts {
    bool local = false;
    std::string file_name;
    uint64_t address = 0, size = 0;
};

uint64_t hexadecimal(std::string_view text) {
    uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return value;
}

UrlParts take_apart(const std::string& url) {
    UrlParts parts;
    std::string_view rest = url;
    parts.local = rest[0] == 'l' || rest[0] == 'L';
    rest = rest.substr(rest.find(':') + 1);
    if (parts.local) {
        const size_t first = rest.find(';'), second = rest.find(';', first + 1);
        parts.address = hexadecimal(rest.substr(first + 1, second - first - 1));
        parts.size = hexadecimal(rest.substr(second + 1));
        rest = rest.substr(0, first);
    }
    parts.file_name = rest.substr(rest.find_last_of('/') + 1);
    return parts;
}

Info only_local(const UrlParts& parts, uint64_t value) {
    if (!parts.local) fail(GenTL::GC_ERR_NOT_AVAILABLE, "The description is a file, not in the register space");
    return Info::Uint64(value);
}

}  // namespace

Info port_info(const PortIdentity& identity, GenTL::PORT_INFO_CMD command) {
    switch (command) {
        case GenTL::PORT_INFO_ID:
            return Info::Text(identity.id);
        case GenTL::PORT_INFO_VENDOR:
            return Info::Text(identity.vendor);
        case GenTL::PORT_INFO_MODEL:
            return Info::Text(identity.model);
        case GenTL::PORT_INFO_TLTYPE:
            return Info::Text(identity.tl_type);
        case GenTL::PORT_INFO_MODULE:
            return Info::Text(identity.module);
        case GenTL::PORT_INFO_LITTLE_ENDIAN:
            return Info::Bool(true);
        case GenTL::PORT_INFO_BIG_ENDIAN:
            return Info::Bool(false);
        case GenTL::PORT_INFO_ACCESS_READ:
            return Info::Bool(identity.reachable);
        case GenTL::PORT_INFO_ACCESS_WRITE:
            return Info::Bool(identity.reachable && identity.writable);
        case GenTL::PORT_INFO_ACCESS_NA:
            return Info::Bool(!identity.reachable);
        case GenTL::PORT_INFO_ACCESS_NI:
            return Info::Bool(false);
        case GenTL::PORT_INFO_VERSION:
            return Info::Text(identity.version);
        case GenTL::PORT_INFO_PORTNAME:
            return Info::Text(identity.name);
        default:
            fail_unknown_command("GCGetPortInfo", command);
    }
}

Info url_info(const DescriptionInfo& description, GenTL::URL_INFO_CMD command) {
    const UrlParts parts = take_apart(description.url);
    switch (command) {
        case GenTL::URL_INFO_URL:
            return Info::Text(description.url);
        case GenTL::URL_INFO_SCHEMA_VER_MAJOR:
            return Info::Int32(description.schema_major);
        case GenTL::URL_INFO_SCHEMA_VER_MINOR:
            return Info::Int32(description.schema_minor);
        case GenTL::URL_INFO_FILE_VER_MAJOR:
            return Info::Int32(description.file_major);
        case GenTL::URL_INFO_FILE_VER_MINOR:
            return Info::Int32(description.file_minor);
        case GenTL::URL_INFO_FILE_VER_SUBMINOR:
            return Info::Int32(description.file_subminor);
        case GenTL::URL_INFO_FILE_SHA1_HASH:
            if (description.sha1.empty()) fail(GenTL::GC_ERR_NOT_AVAILABLE, "The hash of this description is not known");
            return Info::Bytes(description.sha1);
        case GenTL::URL_INFO_FILE_REGISTER_ADDRESS:
            return only_local(parts, parts.address);
        case GenTL::URL_INFO_FILE_SIZE:
            return only_local(parts, parts.size);
        case GenTL::URL_INFO_SCHEME:
            return Info::Int32(parts.local ? GenTL::URL_SCHEME_LOCAL : GenTL::URL_SCHEME_FILE);
        case GenTL::URL_INFO_FILENAME:
            return Info::Text(parts.file_name);
        default:
            fail_unknown_command("GCGetPortURLInfo", command);
    }
}

}  // namespace kivsim
