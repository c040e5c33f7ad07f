// The description of the camera: that it is one, that it can be fetched in each of its forms, and that it agrees with the
// registers.

#include <zip.h>

#include <fstream>
#include <map>
#include <pugixml.hpp>
#include <set>
#include <sstream>

#include "sim_camera_fixture.h"

namespace kivsim {
namespace {

class Description : public SimCameraTest {
protected:
    std::string Fetch() {
        Open();
        const std::string url = camera->Url();
        if (url.starts_with("file:///")) {
            const bool has_drive = url.size() > 9 && url[9] == ':';
            std::ifstream file(url.substr(has_drive ? 8 : 7), std::ios::binary);
            std::ostringstream text;
            text << file.rdbuf();
            return text.str();
        }
        EXPECT_TRUE(url.starts_with("local:")) << url;
        const size_t address = url.find(';') + 1, length = url.find(';', address) + 1;
        std::string bytes(std::stoull(url.substr(length), nullptr, 16), '\0');
        EXPECT_EQ(GenTL::GC_ERR_SUCCESS, camera->Read(std::stoull(url.substr(address), nullptr, 16), bytes.data(), bytes.size()));
        return bytes;
    }
    std::string FetchPlain() {
        config.url = CameraConfig::Url::Plain;
        return Fetch();
    }
    static std::string Unzip(const std::string& bytes, std::string& name) {
        zip_error_t error;
        zip_error_init(&error);
        zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
        zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, &error);
        if (!archive) return "";
        EXPECT_EQ(1, zip_get_num_entries(archive, 0));
        name = zip_get_name(archive, 0, 0);
        zip_stat_t stat;
        zip_stat_index(archive, 0, 0, &stat);
        std::string text(stat.size, '\0');
        zip_file_t* file = zip_fopen_index(archive, 0, 0);
        EXPECT_EQ(static_cast<zip_int64_t>(stat.size), zip_fread(file, text.data(), text.size()));
        zip_fclose(file);
        zip_close(archive);
        return text;
    }
    void Load() {
        const auto text = FetchPlain();
        const auto parsed = document.load_buffer(text.data(), text.size());
        ASSERT_TRUE(parsed) << parsed.description() << " at " << parsed.offset;
        Collect(document.document_element());
    }
    void Collect(const pugi::xml_node& node) {
        static const std::set<std::string> no_nodes = {"EnumEntry", "pVariable", "Constant", "Expression"};
        for (const auto& child : node.children()) {
            const bool is_node = child.attribute("Name") && !no_nodes.contains(child.name());
            const std::string name = child.attribute("Name").value();
            EXPECT_TRUE(!is_node || nodes.emplace(name, child).second) << name << " exists twice";
            Collect(child);
        }
    }

    pugi::xml_document document;
    std::map<std::string, pugi::xml_node> nodes;
};

TEST_F(Description, IsTheSameZippedPlainAndAsAFile) {
    const auto plain = FetchPlain();
    ASSERT_TRUE(plain.starts_with("<?xml"));
    config.url = CameraConfig::Url::Zip;
    const auto zipped = Fetch();
    ASSERT_TRUE(zipped.starts_with("PK\x03\x04"));
    std::string name;
    EXPECT_EQ(plain, Unzip(zipped, name));
    EXPECT_EQ("KivSim_5MM.xml", name);
    EXPECT_EQ(zipped, Fetch()) << "the archive does not change from one opening to the next";
    uint64_t manifest[4] = {};
    camera->Read(0x10000, manifest, sizeof manifest);
    EXPECT_EQ(1U, manifest[0]);
    EXPECT_EQ(0x100000U, manifest[2]);
    EXPECT_EQ(zipped.size(), manifest[3]);

    config.url = CameraConfig::Url::File;
    config.state_file = folder / "a folder" / "camera.bin";
    EXPECT_EQ("", Fetch()) << "the blank is escaped";
    EXPECT_NE(std::string::npos, camera->Url().find("a%20folder/camera.bin.xml"));
    config.state_file = folder / "file.bin";
    EXPECT_EQ(plain, Fetch());
}

TEST_F(Description, CarriesTheModelAndTheSchema) {
    config.model = "5-Mega Cam";
    Load();
    const auto root = document.document_element();
    EXPECT_STREQ("RegisterDescription", root.name());
    EXPECT_STREQ("C5_Mega_Cam", root.attribute("ModelName").value());
    EXPECT_STREQ("http://www.genicam.org/GenApi/Version_1_1", root.attribute("xmlns").value());
    EXPECT_EQ(36U, std::strlen(root.attribute("ProductGuid").value()));
}

TEST_F(Description, RegistersLieWhereTheCameraHasThem) {
    Load();
    for (const auto& [name, node] : nodes) {
        const auto parent = std::string(node.name()) == "StructEntry" ? node.parent() : node;
        const auto address = parent.child("Address");
        const bool of_camera = std::string(parent.child_value("pPort")) == "Device";
        if (!address || !of_camera) continue;  // registers of messages are in no register space
        uint64_t at = 0;
        for (const auto& term : parent.children("Address")) at += term.text().as_ullong();
        const auto length = parent.child("Length").text().as_ullong();
        const auto* row = register_at(at);
        ASSERT_TRUE(row) << name;
        const auto* own = find_register(name.ends_with("Reg") ? name.substr(0, name.size() - 3) : name);
        EXPECT_TRUE(!own || own == row) << name << " shows " << row->name;
        const std::string kind = node.name(), access = parent.child_value("AccessMode");
        if (kind == "Register") continue;  // a block of many
        EXPECT_EQ(row->bytes, length) << name;
        EXPECT_EQ(0U, (at - row->address) % row->bytes) << name;
        EXPECT_EQ(row->access == Access::RO ? "RO" : row->access == Access::WO ? "WO" : "RW", access) << name;
        EXPECT_EQ(kind == "FloatReg",
                  row->kind == Kind::Float || name.starts_with("SensorModuleConv") || name.starts_with("SensorModuleFull"))
            << name;
        const bool cached = std::string(parent.child_value("Cachable")) != "NoCache";
        const bool polled = parent.child("PollingTime") || parent.child("pInvalidator");
        EXPECT_TRUE(!row->Has(kComputed) || !cached || polled) << name << " would be read once and never again";
    }
}

TEST_F(Description, EnumerationsListWhatTheCameraTakes) {
    config.color = true;
    Load();
    const std::map<std::string, const char*> registers = {{"TestPattern", "TestPattern"},
                                                          {"TriggerSource", "TriggerSource"},
                                                          {"AcquisitionMode", "AcquisitionMode"},
                                                          {"LineSource", "LineSource"},
                                                          {"CounterEventSource", "CounterEventSource"},
                                                          {"ExposureAuto", "ExposureAuto"},
                                                          {"UserSetDefault", "UserSetDefault"},
                                                          {"EventNotification", "EventNotification"},
                                                          {"BinningHorizontalMode", "BinningHorizontalMode"}};
    for (const auto& [feature, name] : registers) {
        const uint32_t element = feature == "LineSource" ? 2 : 0;
        std::set<uint64_t> listed;
        for (const auto& entry : nodes[feature].children("EnumEntry")) listed.insert(entry.child("Value").text().as_ullong());
        for (uint64_t value = 0; value < 32; ++value)
            EXPECT_EQ(listed.contains(value), TrySet(name, value, element) == GenTL::GC_ERR_SUCCESS) << feature << " = " << value;
    }
    for (const auto& entry : nodes["PixelFormat"].children("EnumEntry")) {
        const auto code = entry.child("Value").text().as_ullong();
        const auto* format = find_pixel_format(static_cast<uint32_t>(code));
        ASSERT_TRUE(format) << entry.attribute("Name").value();
        EXPECT_EQ(format->name, entry.attribute("Name").value());
        const std::string needs = entry.child_value("pIsImplemented");
        EXPECT_EQ(format->mono_camera, needs != "ColorSensor") << format->name;
        EXPECT_EQ(format->color_camera, needs != "MonochromeSensor") << format->name;
    }
    EXPECT_EQ(pixel_formats().size(), std::ranges::distance(nodes["PixelFormat"].children("EnumEntry")));
}

}  // namespace
}  // namespace kivsim
