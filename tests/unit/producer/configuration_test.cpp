#include <kiv/platform/environment.h>

#include "producer_fixture.h"

namespace kiv::test {
namespace {

class Configuration : public ProducerTest {
protected:
    /// What TLOpen complains about.
    std::string Complaint(const std::string& json) {
        Configure(json);
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
        EXPECT_EQ(GC_ERR_ERROR, gentl.TLOpen(&system)) << json;
        const std::string text = LastErrorText();
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCCloseLib());
        EXPECT_NE(std::string::npos, text.find("config.json")) << text;
        return text;
    }
    std::vector<std::string> Devices(const char* interface_id) {
        OpenInterface(interface_id);
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFUpdateDeviceList(interface, nullptr, 100));
        uint32_t count = 0;
        EXPECT_EQ(GC_ERR_SUCCESS, gentl.IFGetNumDevices(interface, &count));
        std::vector<std::string> ids;
        for (uint32_t i = 0; i < count; ++i)
            ids.push_back(ask_id([&](auto... out) { return gentl.IFGetDeviceID(interface, i, out...); }));
        return ids;
    }
};

TEST_F(Configuration, TwoCamerasWithoutAFile) {
    platform::unset_environment("KIV_SIM_CONFIG");
    EXPECT_EQ(std::vector<std::string>{"SIM0_4F0001"}, Devices("SIM0"));
    EXPECT_EQ(std::vector<std::string>{"SIM1_4F0002"}, Devices("SIM1"));
    EXPECT_EQ("KivSim-2MM",
              ask_text([&](auto... out) { return gentl.IFGetDeviceInfo(interface, "SIM1_4F0002", DEVICE_INFO_MODEL, out...); }));
}

TEST_F(Configuration, TakesTheNamesOfTheFile) {
    Configure(R"({"tl_type": "U3V", // comments are allowed
        "interfaces": [{"id": "XX::InterfaceA", "cameras": [
            {"id": "udp://10.0.0.1/left", "serial": "A-1", "model": "Eye", "user_id": "left", "color": true,
             "width": 64, "height": 64, "url": "file"}]}]})");
    EXPECT_EQ(std::vector<std::string>{"udp://10.0.0.1/left"}, Devices("XX::InterfaceA"));
    const auto info = [&](DEVICE_INFO_CMD command) {
        return ask_text([&](auto... out) { return gentl.IFGetDeviceInfo(interface, "udp://10.0.0.1/left", command, out...); });
    };
    EXPECT_EQ("Eye", info(DEVICE_INFO_MODEL));
    EXPECT_EQ("left", info(DEVICE_INFO_USER_DEFINED_NAME));
    EXPECT_EQ("U3V", info(DEVICE_INFO_TLTYPE));
    ASSERT_NO_FATAL_FAILURE(OpenDevice("udp://10.0.0.1/left"));
    EXPECT_EQ(64u * 64, Read32(camera_register::payload_size));
    const auto url = [&](auto... out) { return gentl.GCGetPortURLInfo(camera, 0, URL_INFO_URL, out...); };
    EXPECT_EQ(0u, ask_text(url).find("file:///"));
}

TEST_F(Configuration, SaysWhatIsWrongWithTheFile) {
    const auto mentions = [this](const std::string& json, const std::string& words) {
        const std::string text = Complaint(json);
        EXPECT_NE(std::string::npos, text.find(words)) << text;
    };
    mentions("{", "parse error");
    mentions("[]", "the file is no object");
    mentions(R"({"interface": []})", "unknown key \"interface\"");
    mentions(R"({"tl_type": "USB"})", "tl_type USB");
    mentions(R"({"interfaces": {}})", "interfaces is no list");
    mentions(R"({"interfaces": [{"id": 5}]})", "interfaces[0].id has the wrong type");
    mentions(R"({"interfaces": [{"id": "A"}, {"id": "A"}]})", "interface A exists twice");
    const auto camera_mentions = [&](const std::string& entry, const std::string& words) {
        mentions(R"({"interfaces": [{"cameras": [)" + entry + "]}]}", words);
    };
    camera_mentions(R"({"serial": "../x"})", "interfaces[0].cameras[0].serial");
    camera_mentions(R"({"serial": "1", "width": 100})", "multiples of 8");
    camera_mentions(R"({"serial": "1", "width": -8})", "width is no whole number");
    camera_mentions(R"({"serial": "1", "frame_rate": "fast"})", "frame_rate has the wrong type");
    camera_mentions(R"({"serial": "1", "frame_rate": 0})", "frame_rate is not within");
    camera_mentions(R"({"serial": "1", "url": "http"})", "url is neither");
    camera_mentions(R"({"serial": "1"}, {"serial": "1"})", "exists twice");
    camera_mentions(R"({"serial": "1", "faults": {"drop_evry": 1}})", "faults has an unknown key \"drop_evry\"");
    camera_mentions(R"({"serial": "1", "faults": {"incomplete_percent": 100}})", "is not within 0 and 99");
    camera_mentions(R"({"serial": "1", "faults": {"size": "huge"}})", "size cannot be huge");
    camera_mentions(R"({"serial": "1", "faults": {"entries": [{"entry": "DSFly"}]}})", "no function \"DSFly\"");
    mentions(R"({"faults": {"drop_every": 1}})", "faults has an unknown key");
}

TEST_F(Configuration, AFileThatIsMissingIsAnError) {
    platform::set_environment("KIV_SIM_CONFIG", folder / "config.json.gone");
    EXPECT_EQ(GC_ERR_SUCCESS, gentl.GCInitLib());
    EXPECT_EQ(GC_ERR_ERROR, gentl.TLOpen(&system));
    EXPECT_NE(std::string::npos, LastErrorText().find("config.json.gone"));
}

}  // namespace
}  // namespace kiv::test
