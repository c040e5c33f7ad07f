// How descriptions get into a node map: from files, archives, and from two descriptions at once.
#include <filesystem>
#include <fstream>

#include "GenApi/node_map_ref.h"
#include "unit/genapi/node_map_fixture.h"

using namespace GenApi;
using namespace kiv::genapi::testing;

namespace {

uint32_t crc_of(const std::string& bytes) {
    uint32_t crc = ~0u;
    for (const char c : bytes) {
        crc ^= static_cast<uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
    }
    return ~crc;
}

/// An archive of one file, not compressed.
std::string zip_of(const std::string& name, const std::string& content) {
    std::string common;  // what the file's header and the directory's entry share
    const auto put = [](std::string& to, uint64_t value, int bytes) {
        for (; bytes-- > 0; value >>= 8) to += static_cast<char>(value & 0xFF);
    };
    for (const int word : {10, 0, 0, 0, 0}) put(common, static_cast<uint64_t>(word), 2);
    put(common, crc_of(content), 4), put(common, content.size(), 4), put(common, content.size(), 4);
    put(common, name.size(), 2), put(common, 0, 2);
    std::string zip = "PK\x03\x04" + common + name + content;
    const auto directory = zip.size();
    zip += "PK\x01\x02";
    put(zip, 10, 2);
    zip += common;
    for (const auto bytes : {2, 2, 2, 4, 4}) put(zip, 0, bytes);
    zip += name;
    const auto size = zip.size() - directory;
    zip += "PK\x05\x06";
    put(zip, 0, 4), put(zip, 1, 2), put(zip, 1, 2), put(zip, size, 4), put(zip, directory, 4), put(zip, 0, 2);
    return zip;
}

struct FileOnDisk {
    FileOnDisk(const std::string& name, const std::string& bytes)
        : path((std::filesystem::temp_directory_path() / (name + std::to_string(reinterpret_cast<uintptr_t>(this)))).string()) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    FileOnDisk(const FileOnDisk&) = delete;
    ~FileOnDisk() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    std::string path;
};

int64_t value_of(const CNodeMapRef& map, const char* name) { return CIntegerPtr(map._GetNode(name))->GetValue(); }

}  // namespace

TEST(NodeMapRef, LoadsFilesAndArchives) {
    const auto xml = description_of("<Integer Name=\"A\"><Value>5</Value></Integer>");
    const auto zip = zip_of("in/camera.xml", xml);
    const FileOnDisk plain("kiv_plain", xml), packed("kiv_packed", zip);
    CNodeMapRef map("Camera");
    const auto expect_loaded = [&] {
        EXPECT_EQ(5, value_of(map, "A"));
        EXPECT_EQ("Camera", map._GetDeviceName());
        map._Destroy();
    };
    map._LoadXMLFromFile(plain.path), expect_loaded();
    map._LoadXMLFromFile(packed.path), expect_loaded();
    map._LoadXMLFromZIPFile(packed.path), expect_loaded();
    map._LoadXMLFromZIPData(zip.data(), zip.size()), expect_loaded();
    map._LoadXMLFromString(xml);
    EXPECT_THROW(map._LoadXMLFromZIPFile(plain.path), GenICam::RuntimeException);
    EXPECT_THROW(map._LoadXMLFromZIPData(zip.data(), zip.size() / 2), GenICam::RuntimeException);
    EXPECT_THROW(map._LoadXMLFromZIPData(nullptr, 0), GenICam::InvalidArgumentException);
    EXPECT_THROW(map._LoadXMLFromString("<html/>"), GenICam::RuntimeException);
    EXPECT_EQ(5, value_of(map, "A")) << "what could not be loaded took the place of what was there";
    const CNodeMapRef borrowing(map._Ptr());
    EXPECT_EQ(5, value_of(borrowing, "A"));
    EXPECT_TRUE(CNodeMapRef::_ClearXMLCache());
}

TEST(NodeMapRef, PutsOneDescriptionIntoAnother) {
    const auto target = description_of(R"(
        <Category Name="Root"><pFeature>A</pFeature><pFeature>B</pFeature></Category>
        <Integer Name="A"><Value>1</Value></Integer><Integer Name="B"><Value>1</Value></Integer>
        <Integer Name="C" MergePriority="1"><Value>1</Value></Integer>
        <Enumeration Name="E"><EnumEntry Name="Old"><Value>0</Value></EnumEntry><EnumEntry Name="Older"><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
        <Enumeration Name="F"><EnumEntry Name="Kept"><Value>0</Value></EnumEntry><Value>0</Value></Enumeration>
        <IntReg Name="R"><IntSwissKnife Name="Inner"><Formula>16</Formula></IntSwissKnife><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>)");
    const auto body = R"(
        <Category Name="Root"><pFeature>B</pFeature><pFeature>D</pFeature></Category>
        <Integer Name="A" MergePriority="1"><Value>2</Value></Integer><Integer Name="B" MergePriority="-1"><Value>2</Value></Integer>
        <Integer Name="C"><Value>2</Value></Integer><Integer Name="D"><Value>2</Value></Integer>
        <Enumeration Name="E" MergePriority="1"><EnumEntry Name="New"><Value>0</Value></EnumEntry><Value>0</Value></Enumeration>
        <IntReg Name="R" MergePriority="1"><IntSwissKnife Name="Inner"><Formula>32</Formula></IntSwissKnife><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>)";
    auto injected = description_of(body);
    injected.erase(injected.find("<Port Name=\"Device\"/>"), 21);
    const FileOnDisk targetFile("kiv_target", target), injectedFile("kiv_injected", injected);
    for (const bool fromFiles : {false, true}) {
        CNodeMapRef map;
        if (fromFiles)
            map._LoadXMLFromFileInject(targetFile.path, injectedFile.path);
        else
            map._LoadXMLFromStringInject(target, injected);
        EXPECT_EQ(2, value_of(map, "A"));
        EXPECT_EQ(1, value_of(map, "B"));
        EXPECT_EQ(1, value_of(map, "C"));
        EXPECT_EQ(2, value_of(map, "D"));
        EXPECT_EQ(32, CRegisterPtr(map._GetNode("R"))->GetAddress());
        FeatureList_t features;
        CCategoryPtr(map._GetNode("Root"))->GetFeatures(features);
        ASSERT_EQ(3u, features.size());
        EXPECT_EQ("D", features[2]->GetNode()->GetName());
        EXPECT_EQ("New", CValuePtr(map._GetNode("E"))->ToString());
        EXPECT_EQ("Kept", CValuePtr(map._GetNode("F"))->ToString());
        EXPECT_EQ(nullptr, map._GetNode("EnumEntry_E_Old"));
        EXPECT_TRUE(kiv::genapi::description_faults(*map._Ptr()).empty());
    }
    CNodeMapRef map;
    try {
        map._LoadXMLFromStringInject(target, description_of(""));
        ADD_FAILURE() << "two ports of one name and of one priority";
    } catch (const GenICam::RuntimeException& error) {
        EXPECT_NE(std::string(error.GetDescription()).find("'Device'"), std::string::npos) << error.GetDescription();
    }
    EXPECT_THROW(map._LoadXMLFromStringInject(target, ""), GenICam::RuntimeException);
}

TEST(SchemaVersion, NewerThanTheKnownOnesIsRefused) {
    struct Row {
        const char *space, *major, *minor;
        const char* refused;  // the version that the refusal names; null for none
    };
    for (const auto& row :
         {Row{"Version_1_1", "1", "1", nullptr}, Row{"Version_1_0", "1", "0", nullptr}, Row{"elsewhere", "1", "1", nullptr},
          Row{"Version_1_1", "2", "0", "2.0"}, Row{"Version_1_1", "1", "2", "1.2"}, Row{"Version_2_0", "1", "1", "2.0"}}) {
        auto text = description_of("");
        text.replace(text.find("Version_1_1"), 11, row.space);
        text.replace(text.find("MajorVersion=\"1\"") + 14, 1, row.major);
        text.replace(text.find("MinorVersion=\"1\"") + 14, 1, row.minor);
        try {
            kiv::genapi::load_node_map(text);
            EXPECT_EQ(nullptr, row.refused);
        } catch (const GenICam::RuntimeException& error) {
            ASSERT_NE(nullptr, row.refused) << error.GetDescription();
            EXPECT_NE(std::string(error.GetDescription()).find("version " + std::string(row.refused)), std::string::npos)
                << error.GetDescription();
        }
    }
    auto bare = description_of("");
    bare.erase(bare.find("SchemaMajorVersion"), bare.find("MajorVersion=\"3\"") - bare.find("SchemaMajorVersion"));
    Version_t version;
    kiv::genapi::load_node_map(bare)->GetDeviceInfo()->GetSchemaVersion(version);
    EXPECT_EQ((Version_t{1, 1, 0}), version) << "what the attributes do not say, the namespace does";
}
