// The node maps of the producer's own modules: the descriptions hold together, and the registers show what the C functions say.

#include <pugixml.hpp>
#include <set>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class ModuleMap : public ProducerTest {
protected:
    /// In one read over the whole length.
    std::string ReadDescription(PORT_HANDLE port) {
        const auto number = [&](URL_INFO_CMD command) {
            return ask_value<uint64_t>([&](auto... out) { return gentl.GCGetPortURLInfo(port, 0, command, out...); },
                                       INFO_DATATYPE_UINT64);
        };
        std::string text(number(URL_INFO_FILE_SIZE), '\0');
        size_t size = text.size();
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(port, number(URL_INFO_FILE_REGISTER_ADDRESS), text.data(), &size));
        return text;
    }
    void Load(PORT_HANDLE port) {
        port_ = port;
        const std::string text = ReadDescription(port);
        ASSERT_TRUE(document_.load_buffer(text.data(), text.size()));
        nodes_.clear();
        for (const pugi::xml_node node : document_.first_child().children())
            ASSERT_TRUE(nodes_.emplace(node.attribute("Name").value(), node).second) << node.attribute("Name").value();
    }
    pugi::xml_node Register(const std::string& feature) {
        const auto node = nodes_.at(feature);
        return node.child("pValue") ? nodes_.at(node.child_value("pValue")) : node;
    }
    GC_ERROR Read(const std::string& feature, std::string& bytes) {
        const auto reg = Register(feature);
        bytes.assign(reg.child("Length").text().as_uint(), '\0');
        size_t size = bytes.size();
        return gentl.GCReadPort(port_, std::stoull(reg.child_value("Address"), nullptr, 16), bytes.data(), &size);
    }
    std::string Text(const std::string& feature) {
        std::string bytes;
        EXPECT_EQ(GC_ERR_SUCCESS, Read(feature, bytes)) << feature;
        return bytes.c_str();
    }
    int64_t Number(const std::string& feature) {
        std::string bytes;
        EXPECT_EQ(GC_ERR_SUCCESS, Read(feature, bytes)) << feature;
        int64_t value = 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    std::string Word(const std::string& feature) {
        const int64_t value = Number(feature);
        for (const auto entry : nodes_.at(feature).children("EnumEntry"))
            if (entry.child("Value").text().as_llong() == value) return entry.attribute("Name").value();
        return "no entry " + std::to_string(value);
    }
    GC_ERROR Write(const std::string& feature, int64_t value) {
        size_t size = sizeof value;
        return gentl.GCWritePort(port_, std::stoull(Register(feature).child_value("Address"), nullptr, 16), &value, &size);
    }

    PORT_HANDLE port_ = nullptr;
    pugi::xml_document document_;
    std::map<std::string, pugi::xml_node> nodes_;
};

TEST_F(ModuleMap, DescriptionsHoldTogether) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.TLUpdateInterfaceList(system, nullptr, 100));
    ASSERT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
    const std::pair<PORT_HANDLE, std::string> modules[] = {
        {system, "TLPort"}, {interface, "InterfacePort"}, {device, "DevicePort"}, {stream, "StreamPort"}};
    const std::set<std::string> references = {"pFeature", "pValue", "pMax", "pIsAvailable", "pInvalidator", "pSelected", "pPort"};
    for (const auto& [handle, port_name] : modules) {
        ASSERT_NO_FATAL_FAILURE(Load(handle));
        EXPECT_STREQ("Port", nodes_.at(port_name).name());
        EXPECT_STREQ("Category", nodes_.at("Root").name());
        for (const auto& [name, node] : nodes_) {
            for (const auto child : node.children())
                if (references.contains(child.name())) {
                    EXPECT_TRUE(nodes_.contains(child.child_value())) << name << " refers to " << child.child_value();
                }
            if (!node.child("Address")) continue;
            std::string bytes;
            EXPECT_EQ(GC_ERR_SUCCESS, Read(name, bytes)) << name;
            EXPECT_STREQ("NoCache", node.child_value("Cachable")) << name;
        }
    }
}

TEST_F(ModuleMap, TheSystemListsItsInterfaces) {
    ASSERT_NO_FATAL_FAILURE(OpenSystem());
    ASSERT_NO_FATAL_FAILURE(Load(system));
    EXPECT_EQ("KIV_SIM", Text("TLID"));
    EXPECT_EQ("Kivotek", Text("TLVendorName"));
    EXPECT_EQ("Custom", Word("TLType"));
    EXPECT_EQ(5, Number("GenTLVersionMinor"));
    std::string bytes;
    EXPECT_EQ(GC_ERR_NOT_AVAILABLE, Read("InterfaceID", bytes)) << "the list is empty";
    EXPECT_EQ(GC_ERR_INVALID_VALUE, Write("InterfaceSelector", 0));
    EXPECT_EQ(GC_ERR_SUCCESS, Write("InterfaceUpdateList", 1));
    uint32_t count = 0;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.TLGetNumInterfaces(system, &count));
    EXPECT_EQ(2u, count) << "the command publishes the list";
    EXPECT_EQ("SIM0", Text("InterfaceID"));
    EXPECT_EQ(GC_ERR_SUCCESS, Write("InterfaceSelector", 1));
    EXPECT_EQ("SIM1", Text("InterfaceID"));
    EXPECT_EQ(GC_ERR_INVALID_VALUE, Write("InterfaceSelector", 2));
    EXPECT_EQ(1, Number("InterfaceSelector"));
}

TEST_F(ModuleMap, TheInterfaceListsItsDevices) {
    ASSERT_NO_FATAL_FAILURE(OpenInterface());
    ASSERT_NO_FATAL_FAILURE(Load(interface));
    EXPECT_EQ(GC_ERR_SUCCESS, Write("DeviceUpdateList", 1));
    EXPECT_EQ(GC_ERR_SUCCESS, Write("DeviceSelector", 1));
    EXPECT_EQ("SIM0_SLOW", Text("DeviceID"));
    EXPECT_EQ("SLOW", Text("DeviceSerialNumber"));
    EXPECT_EQ("ReadWrite", Word("DeviceAccessStatus"));
    ASSERT_NO_FATAL_FAILURE(OpenDevice("SIM0_SLOW"));
    EXPECT_EQ("OpenReadWrite", Word("DeviceAccessStatus")) << "values are live";
}

TEST_F(ModuleMap, TheDeviceAndTheStreamShowTheirState) {
    ASSERT_NO_FATAL_FAILURE(Open());
    ASSERT_NO_FATAL_FAILURE(Load(device));
    const auto reg = Register("DeviceUserID");
    char name[64] = "on the lathe";
    size_t size = sizeof name;
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCWritePort(device, std::stoull(reg.child_value("Address"), nullptr, 16), name, &size));
    EXPECT_EQ("on the lathe", Text("DeviceUserID"));
    char in_the_camera[64];
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCReadPort(camera, camera_register::user_name, in_the_camera, &size));
    EXPECT_STREQ(name, in_the_camera);

    ASSERT_NO_FATAL_FAILURE(Load(stream));
    EXPECT_EQ(128 * 96, Number("PayloadSize"));
    ASSERT_NO_FATAL_FAILURE(AnnounceBuffers(3));
    ASSERT_NO_FATAL_FAILURE(QueueAll());
    EXPECT_EQ(3, Number("StreamAnnouncedBufferCount"));
    EXPECT_EQ(3, Number("StreamInputBufferCount"));
    EXPECT_EQ(0, Number("StreamIsGrabbing"));
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1));
    EXPECT_EQ(1, Number("StreamIsGrabbing"));
}

}  // namespace
}  // namespace kiv::test
