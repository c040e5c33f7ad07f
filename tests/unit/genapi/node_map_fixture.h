/// A node map over a memory, from the few lines of XML that a test is about.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "GenApi/node_callback.h"
#include "GenApi/pointer.h"
#include "GenICam/exceptions.h"
#include "kiv/genapi/load_node_map.h"

namespace kiv::genapi::testing {

/// The device: bytes at addresses from 0, and a count of what was transferred.
class Memory : public GenApi::IPort {
public:
    GenApi::EAccessMode GetAccessMode() const override { return mode; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        Require(address, length);
        ++reads;
        std::copy_n(bytes.begin() + address, length, static_cast<uint8_t*>(buffer));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        Require(address, length);
        ++writes;
        std::copy_n(static_cast<const uint8_t*>(buffer), length, bytes.begin() + address);
    }

    /// Puts bytes there without anybody noticing, as a device does.
    void Put(size_t address, std::initializer_list<int> values) {
        for (const int value : values) bytes.at(address++) = static_cast<uint8_t>(value);
    }
    std::vector<int> At(size_t address, size_t count) const { return {bytes.begin() + address, bytes.begin() + address + count}; }

    std::vector<uint8_t> bytes = std::vector<uint8_t>(4096);
    GenApi::EAccessMode mode = GenApi::RW;
    bool isBroken = false;
    int reads = 0;
    int writes = 0;

private:
    void Require(int64_t address, int64_t length) const {
        if (isBroken) throw GenICam::RuntimeException("The wire is cut.", "memory.cpp", 1);
        if (address < 0 || length < 0 || address + length > static_cast<int64_t>(bytes.size()))
            throw GenICam::RuntimeException("There is no address " + std::to_string(address) + ".");
    }
};

/// `nodes` inside a complete description.
inline std::string description_of(std::string_view nodes) {
    return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Model" VendorName="Vendor" ToolTip="Tip" StandardNameSpace="GEV" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="3" MinorVersion="2" SubMinorVersion="1" ProductGuid="P" VersionGuid="V"
  xmlns="http://www.genicam.org/GenApi/Version_1_1"><Port Name="Device"/>)" +
           std::string(nodes) + "</RegisterDescription>";
}

/// What a register that is not itself the subject of a test needs beside its address.
inline std::string int_reg(std::string_view name, int address, std::string_view more = "", int length = 4) {
    std::string body(more);
    const auto add = [&](std::string_view element, std::string_view text) {
        if (body.find("<" + std::string(element) + ">") == body.npos)
            body.append("<").append(element).append(">").append(text).append("</").append(element).append(">");
    };
    add("AccessMode", "RW");
    add("Endianess", "LittleEndian");
    return "<IntReg Name=\"" + std::string(name) + "\"><Address>" + std::to_string(address) + "</Address><Length>" +
           std::to_string(length) + "</Length><pPort>Device</pPort>" + body + "</IntReg>";
}

class DescribedCamera {
public:
    explicit DescribedCamera(std::string_view nodes) : map_(load_node_map(description_of(nodes))) { map_->Connect(&memory); }

    GenApi::INodeMap& Map() { return *map_; }
    std::vector<std::string> Faults() const { return description_faults(*map_); }
    GenApi::INode& Node(std::string_view name) {
        auto* node = map_->GetNode(name);
        if (!node) throw std::invalid_argument("no node " + std::string(name));
        return *node;
    }
    template <class Interface>
    Interface& As(std::string_view name) {
        return dynamic_cast<Interface&>(Node(name));
    }
    GenApi::IInteger& Integer(std::string_view name) { return As<GenApi::IInteger>(name); }
    GenApi::IFloat& Float(std::string_view name) { return As<GenApi::IFloat>(name); }
    GenApi::IBoolean& Boolean(std::string_view name) { return As<GenApi::IBoolean>(name); }
    GenApi::IString& String(std::string_view name) { return As<GenApi::IString>(name); }
    GenApi::IEnumeration& Enumeration(std::string_view name) { return As<GenApi::IEnumeration>(name); }
    GenApi::ICommand& Command(std::string_view name) { return As<GenApi::ICommand>(name); }
    GenApi::IRegister& Register(std::string_view name) { return As<GenApi::IRegister>(name); }
    GenApi::IValue& Value(std::string_view name) { return As<GenApi::IValue>(name); }
    GenApi::EAccessMode Mode(std::string_view name) { return Node(name).GetAccessMode(); }

    Memory memory;

private:
    std::unique_ptr<GenApi::INodeMap> map_;
};

}  // namespace kiv::genapi::testing

/// The statement throws `Type` for the node of that name, and says `text`.
#define EXPECT_NODE_ERROR(Type, statement, node, text)                                                          \
    try {                                                                                                       \
        (void)(statement);                                                                                      \
        ADD_FAILURE() << #statement " does not throw";                                                          \
    } catch (const GenICam::Type& error) {                                                                      \
        EXPECT_STREQ(node, error.GetNodeName());                                                                \
        EXPECT_NE(std::string(error.GetDescription()).find(text), std::string::npos) << error.GetDescription(); \
    }
