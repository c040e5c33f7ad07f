// The same node maps in the node map engine, as applications use them.

#include "GenApi/GenApi.h"
#include "kiv/genapi/load_node_map.h"
#include "producer_fixture.h"

namespace kiv::test {
namespace {

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

TEST_F(EngineMap, EveryReadableValueCanBeRead) {
    Configure(R"({"interfaces": [{"cameras": [{"serial": "E1", "color": true, "width": 128, "height": 96, "url": "plain"}]}]})");
    ASSERT_NO_FATAL_FAILURE(Open("SIM0_E1"));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, nullptr, 100));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    const std::pair<PORT_HANDLE, const char*> ports[] = {
        {system, "TLPort"}, {interface, "InterfacePort"}, {device, "DevicePort"}, {stream, "StreamPort"}, {camera, "Device"}};
    for (const auto& [handle, name] : ports) {
        ASSERT_NO_FATAL_FAILURE(Load(handle, name));
        GenApi::NodeList_t nodes;
        map->GetNodes(nodes);
        int read = 0;
        for (GenApi::INode* node : nodes) {
            GenApi::CPointer<GenApi::IValue> value(node);
            if (!value.IsValid() || !GenApi::IsReadable(node)) continue;
            EXPECT_NO_THROW(value->ToString()) << name << " " << node->GetName().c_str();
            ++read;
        }
        EXPECT_GT(read, 10) << name;
    }
}

TEST_F(EngineMap, ListsFollowTheirCommandAndSelector) {
    ASSERT_NO_FATAL_FAILURE(OpenSystem());
    ASSERT_NO_FATAL_FAILURE(Load(system, "TLPort"));
    EXPECT_EQ(GenApi::NA, Access("InterfaceID")) << "the list is empty";
    Node<GenApi::ICommand>("InterfaceUpdateList").Execute();
    EXPECT_EQ(GenApi::RO, Access("InterfaceID"));
    auto& selector = Node<GenApi::IInteger>("InterfaceSelector");
    EXPECT_EQ(1, selector.GetMax());
    EXPECT_EQ("SIM0", Text("InterfaceID"));
    selector.SetValue(1);
    EXPECT_EQ("SIM1", Text("InterfaceID"));
    EXPECT_ANY_THROW(selector.SetValue(2));
    EXPECT_EQ("Custom", Text("TLType"));
    EXPECT_EQ(GenApi::RO, Access("TLType"));
}

TEST_F(EngineMap, ValuesAreNotRemembered) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(Load(stream, "StreamPort"));
    EXPECT_EQ("0", Text("StreamAnnouncedBufferCount"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(2));
    EXPECT_EQ("2", Text("StreamAnnouncedBufferCount"));
    EXPECT_FALSE(Node<GenApi::IBoolean>("StreamIsGrabbing").GetValue());
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1));
    EXPECT_TRUE(Node<GenApi::IBoolean>("StreamIsGrabbing").GetValue());
}

TEST_F(EngineMap, ErrorEventsCanBeSwitchedOff) {
    ASSERT_NO_FATAL_FAILURE(Open());
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(stream, EVENT_ERROR, &error));
    const EVENT_HANDLE event = RegisterNewBuffer();
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(1, 16));
    ASSERT_NO_FATAL_FAILURE(Load(stream, "StreamPort"));
    Node<GenApi::IEnumeration>("EventNotification").FromString("Off");
    ASSERT_NO_FATAL_FAILURE(QueueAll());
    ASSERT_NO_FATAL_FAILURE(StartAcquisition());
    const auto errors = [&] {
        return ask_value<size_t>([&](auto... out) { return gentl.EventGetInfo(error, EVENT_NUM_IN_QUEUE, out...); },
                                 INFO_DATATYPE_SIZET);
    };
    Trigger();
    const BUFFER_HANDLE buffer = NextBuffer(event).BufferHandle;
    EXPECT_EQ(0u, errors()) << "a frame that is too large";
    Node<GenApi::IEnumeration>("EventNotification").FromString("On");
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.DSQueueBuffer(stream, buffer));
    Trigger();
    NextBuffer(event);
    EXPECT_EQ(1u, errors());
}

}  // namespace
}  // namespace kiv::test
