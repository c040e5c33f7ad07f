/// A node map of the producer in the node map engine, as applications use it.
#pragma once

#include "GenApi/GenApi.h"
#include "kiv/genapi/load_node_map.h"
#include "producer_fixture.h"

namespace kiv::test {

/// A port of the producer as the engine wants it.
class ProducerPort : public GenApi::IPort {
public:
    ProducerPort(const EntryPoints& gentl, PORT_HANDLE handle) : gentl_(gentl), handle_(handle) {}

    void Read(void* buffer, int64_t address, int64_t length) override {
        auto size = static_cast<size_t>(length);
        Check(gentl_.GCReadPort(handle_, static_cast<uint64_t>(address), buffer, &size), address);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        auto size = static_cast<size_t>(length);
        Check(gentl_.GCWritePort(handle_, static_cast<uint64_t>(address), buffer, &size), address);
    }
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }

private:
    static void Check(GC_ERROR status, int64_t address) {
        if (status != GC_ERR_SUCCESS) throw std::runtime_error(std::to_string(status) + " at " + std::to_string(address));
    }
    const EntryPoints& gentl_;
    PORT_HANDLE handle_;
};

class EngineMap : public ProducerTest {
protected:
    using ProducerTest::ProducerTest;

    void Load(PORT_HANDLE handle, const char* port_name) {
        const auto number = [&](URL_INFO_CMD command) {
            return ask_value<uint64_t>([&](auto... out) { return gentl.GCGetPortURLInfo(handle, 0, command, out...); },
                                       INFO_DATATYPE_UINT64);
        };
        std::string text(number(URL_INFO_FILE_SIZE), '\0');
        size_t size = text.size();
        ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(handle, number(URL_INFO_FILE_REGISTER_ADDRESS), text.data(), &size));
        port = std::make_unique<ProducerPort>(gentl, handle);
        map = genapi::load_node_map(text);
        ASSERT_TRUE(map->Connect(port.get(), port_name));
    }
    template <typename Interface>
    Interface& Node(const char* name) {
        GenApi::CPointer<Interface> pointer(map->GetNode(name));
        if (!pointer.IsValid()) throw std::runtime_error(std::string("no such node: ") + name);
        return *pointer;
    }
    std::string Text(const char* name) { return Node<GenApi::IValue>(name).ToString().c_str(); }
    GenApi::EAccessMode Access(const char* name) { return map->GetNode(name)->GetAccessMode(); }

    std::unique_ptr<ProducerPort> port;
    std::unique_ptr<GenApi::INodeMap> map;
};

}  // namespace kiv::test
