// This project's node map, in the form in which the benchmarks use a node map.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "GenApi/GenApi.h"
#include "bench_memory.h"
#include "kiv/genapi/load_node_map.h"

namespace kiv::bench {

class KivSubject {
public:
    static constexpr const char* name = "kiv";
    using Integer = GenApi::IInteger*;
    using Float = GenApi::IFloat*;
    using Enumeration = GenApi::IEnumeration*;
    using Boolean = GenApi::IBoolean*;
    using String = GenApi::IString*;
    using Command = GenApi::ICommand*;
    using Register = GenApi::IRegister*;

    explicit KivSubject(std::string xml) : map_(genapi::load_node_map(std::move(xml))) { map_->Connect(&port_); }

    Integer FindInteger(const std::string& node) const { return Find<GenApi::IInteger>(node); }
    Float FindFloat(const std::string& node) const { return Find<GenApi::IFloat>(node); }
    Enumeration FindEnumeration(const std::string& node) const { return Find<GenApi::IEnumeration>(node); }
    Boolean FindBoolean(const std::string& node) const { return Find<GenApi::IBoolean>(node); }
    String FindString(const std::string& node) const { return Find<GenApi::IString>(node); }
    Command FindCommand(const std::string& node) const { return Find<GenApi::ICommand>(node); }
    Register FindRegister(const std::string& node) const { return Find<GenApi::IRegister>(node); }

    static int64_t Read(Integer node) { return node->GetValue(); }
    static double Read(Float node) { return node->GetValue(); }
    static int64_t Read(Enumeration node) { return node->GetIntValue(); }
    static bool Read(Boolean node) { return node->GetValue(); }
    static std::string Read(String node) { return std::string(node->GetValue()); }
    static void Read(Register node, uint8_t* bytes, size_t count) { node->Get(bytes, static_cast<int64_t>(count)); }
    static bool IsLocked(Integer node) { return !IsWritable(node->GetAccessMode()); }
    static void Set(Integer node, int64_t value) { node->SetValue(value); }
    static void Set(Float node, double value) { node->SetValue(value); }
    static void Set(Boolean node, bool value) { node->SetValue(value); }
    static void Set(String node, const char* value) { node->SetValue(value); }
    static void Set(Register node, const uint8_t* bytes, size_t count) { node->Set(bytes, static_cast<int64_t>(count)); }
    static void Execute(Command node) { node->Execute(); }
    static void Set(Enumeration node, const char* symbolic) { node->FromString(symbolic); }

    void InvalidateAll() const { map_->InvalidateNodes(); }
    GenApi::INodeMap& Map() const { return *map_; }

private:
    class Port final : public GenApi::IPort {
    public:
        void Read(void* buffer, int64_t address, int64_t length) override {
            if (!memory_.Read(static_cast<uint64_t>(address), buffer, static_cast<uint64_t>(length)))
                throw GenICam::RuntimeException("no such address");
        }
        void Write(const void* buffer, int64_t address, int64_t length) override {
            if (!memory_.Write(static_cast<uint64_t>(address), buffer, static_cast<uint64_t>(length)))
                throw GenICam::RuntimeException("no such address");
        }
        GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
        GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }

    private:
        BenchMemory memory_;
    };

    template <class Interface>
    Interface* Find(const std::string& node) const {
        return &*GenApi::CPointer<Interface>(map_->GetNode(node));
    }

    Port port_;
    std::unique_ptr<GenApi::INodeMap> map_;
};

}  // namespace kiv::bench
