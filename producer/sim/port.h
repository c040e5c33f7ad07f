/// A register space with a description, as GCReadPort and its relatives see it: one behind every module, and the camera itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "info.h"

namespace kivsim {

struct PortIdentity {
    std::string id;
    std::string vendor;
    std::string model;
    std::string tl_type;
    std::string module;  ///< "TLSystem" ... "Device"
    std::string version;
    std::string name;  ///< of the Port node in the description
    bool writable = true;
    bool reachable = true;
};

/// Where a description is and which versions it states.
struct DescriptionInfo {
    std::string url;
    int32_t schema_major = 1, schema_minor = 1;
    int32_t file_major = 1, file_minor = 0, file_subminor = 0;
    std::string sha1;  ///< 20 bytes; empty when the port does not know it
};

class Port {
public:
    virtual ~Port() = default;

    /// All or nothing. Throw INVALID_ADDRESS, ACCESS_DENIED, INVALID_VALUE, IO.
    virtual void Read(uint64_t address, std::span<std::byte> out) = 0;
    virtual void Write(uint64_t address, std::span<const std::byte> in) = 0;

    virtual PortIdentity Identity() = 0;
    virtual DescriptionInfo Description() = 0;
};

Info port_info(const PortIdentity& identity, GenTL::PORT_INFO_CMD command);
Info url_info(const DescriptionInfo& description, GenTL::URL_INFO_CMD command);

}  // namespace kivsim
