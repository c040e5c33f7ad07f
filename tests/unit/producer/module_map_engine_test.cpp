// The node maps of the modules in the node map engine, as applications use them.

#include "engine_map.h"

namespace kiv::test {
namespace {

TEST_F(EngineMap, EveryReadableValueCanBeRead) {
    Configure(R"({"interfaces": [{"cameras": [{"serial": "E1", "color": true, "width": 128, "height": 96, "url": "plain"}]}]})");
    ASSERT_NO_FATAL_FAILURE(Open("SIM0_E1"));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, nullptr, 100));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    const std::pair<PORT_HANDLE, const char*> ports[] = {
        {system, "TLPort"}, {interface, "InterfacePort"}, {device, "DevicePort"}, {stream, "StreamPort"}, {camera, "Device"}};
    for (const auto& [handle, name] : ports) {
        ASSERT_NO_FATAL_FAILURE(Load(handle, name));
        EXPECT_THAT(genapi::description_faults(*map), testing::IsEmpty()) << name;
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

TEST_F(EngineMap, TheDeviceIsKnownToItsInterfaceAndRemembersItsName) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ASSERT_NO_FATAL_FAILURE(Load(interface, "InterfacePort"));
    Node<GenApi::ICommand>("DeviceUpdateList").Execute();
    Node<GenApi::IInteger>("DeviceSelector").SetValue(1);
    EXPECT_EQ("SIM0_SLOW", Text("DeviceID"));
    EXPECT_EQ("ReadWrite", Text("DeviceAccessStatus"));
    ASSERT_NO_FATAL_FAILURE(OpenDevice("SIM0_SLOW"));
    EXPECT_EQ("OpenReadWrite", Text("DeviceAccessStatus")) << "values are live";
    ASSERT_NO_FATAL_FAILURE(Load(device, "DevicePort"));
    Node<GenApi::IString>("DeviceUserID").SetValue("on the lathe");
    char name[64];
    size_t size = sizeof name;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::user_name, name, &size));
    EXPECT_STREQ("on the lathe", name);
}

TEST_F(EngineMap, AnInterfaceTellsThatItsListChanged) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ASSERT_NO_FATAL_FAILURE(Load(interface, "InterfacePort"));
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.GCRegisterEvent(interface, EVENT_MODULE, &event));
    Node<GenApi::IEnumeration>("EventSelector").FromString("DeviceListChanged");
    EXPECT_EQ("Off", Text("EventNotification"));
    Node<GenApi::IEnumeration>("EventNotification").FromString("On");
    Node<GenApi::ICommand>("DeviceUpdateList").Execute();
    Node<GenApi::ICommand>("DeviceUpdateList").Execute();
    uint64_t data = 0;
    size_t size = sizeof data;
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.EventGetData(event, &data, &size, 20000));
    EXPECT_EQ(GC_ERR_TIMEOUT, gentl.EventGetData(event, &data, &size, 0)) << "the second update found nothing new";
    const auto id =
        ask_text([&](auto... out) { return gentl.EventGetDataInfo(event, &data, sizeof data, EVENT_DATA_ID, out...); });
    EXPECT_EQ(id, map->GetNode("EventDeviceListChanged")->GetEventID().c_str());
    EXPECT_EQ(0x9101, Node<GenApi::IInteger>("EventDeviceListChanged").GetValue());
    Node<GenApi::IEnumeration>("EventSelector").FromString("Error");
    EXPECT_EQ("On", Text("EventNotification")) << "each kind has a switch of its own";
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
