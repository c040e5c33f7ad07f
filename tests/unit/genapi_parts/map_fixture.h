// What the tests of the adapters share: a node map from the nodes of a description, and a device of plain memory.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

#include "GenApi/GenApi.h"
#include "kiv/genapi/load_node_map.h"

namespace kiv::test {

inline std::unique_ptr<GenApi::INodeMap> node_map(const std::string& nodes) {
    return genapi::load_node_map(
        R"(<RegisterDescription ModelName="M" VendorName="V" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1" )"
        R"(SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0" )"
        R"(ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-555555555555" )"
        R"(xmlns="http://www.genicam.org/GenApi/Version_1_1">)" +
        nodes + "</RegisterDescription>");
}

template <class Interface>
Interface& get(const GenApi::INodeMap& map, const char* name) {
    GenApi::CPointer<Interface> pointer(map.GetNode(name));
    if (!pointer.IsValid()) throw std::runtime_error(std::string("no such node: ") + name);
    return *pointer;
}

inline int64_t integer(const GenApi::INodeMap& map, const char* name) { return get<GenApi::IInteger>(map, name).GetValue(); }

inline GenApi::EAccessMode mode(const GenApi::INodeMap& map, const char* name) { return map.GetNode(name)->GetAccessMode(); }

/// Counts how often the callbacks of a node fire.
inline std::shared_ptr<int> count_callbacks(const GenApi::INodeMap& map, const char* name) {
    auto count = std::make_shared<int>(0);
    GenApi::Register(map.GetNode(name), [count](GenApi::INode*) { ++*count; });
    return count;
}

/// 4 KiB of memory behind a port.
class MemoryPort : public GenApi::IPort {
public:
    std::array<uint8_t, 4096> bytes{};
    std::function<void(int64_t address)> onWrite = [](int64_t) {};

    void Read(void* buffer, int64_t address, int64_t length) override {
        std::memcpy(buffer, &bytes.at(static_cast<size_t>(address)), static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        std::memcpy(&bytes.at(static_cast<size_t>(address)), buffer, static_cast<size_t>(length));
        onWrite(address);
    }
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }
};

}  // namespace kiv::test
