// Where a camera's description comes from: its URL, the cache folder, archives, and texts that try to get out of the folder.
#include <chrono>
#include <filesystem>
#include <future>

#include "support/scripted_factory.h"
#include "support/system/habits.h"

namespace kiv_test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class Description : public ScriptedFactory {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(OpenFactory()); }

    K_STATUS_CODES OpenAt(const std::string& url) {
        {
            std::lock_guard guard(producer->lock);
            producer->FirstDevice().remote.urls = {url};
        }
        auto status = K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera);
        return status;
    }
    K_STATUS_CODES OpenWith(const std::string& name, const std::string& content) {
        {
            std::lock_guard guard(producer->lock);
            producer->FirstDevice().remote.Describe(name, content);
        }
        return K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera);
    }
    std::string CacheFolder() { return folder.In("cache/GenICam/xml/TransportLayers/KIV"); }
    std::string Cached(const std::string& name) { return CacheFolder() + "/" + name; }
    std::string LengthHex() {
        char text[32];
        std::snprintf(text, sizeof text, "%zX", std::string(scripted::camera_description).size());
        return text;
    }
    std::vector<std::string> FilesUnder(const std::string& path) {
        std::vector<std::string> files;
        for (auto& entry : fs::recursive_directory_iterator(path))
            if (entry.is_regular_file()) files.push_back(entry.path().filename().string());
        return files;
    }
};

TEST_F(Description, IsReadInOneTransferAndKeptUnderItsName) {
    producer->ForgetCalls();
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("My Camera-1.0.xml", scripted::camera_description));
    EXPECT_EQ(scripted::camera_description, read_file(Cached("My Camera-1.0.xml")));
    auto reads = producer->CallsOf("GCReadPort");
    ASSERT_FALSE(reads.empty());
    EXPECT_EQ(0x10000u, reads[0].numbers[1]);
    EXPECT_EQ(std::string(scripted::camera_description).size(), reads[0].numbers[2]);
}

TEST_F(Description, ReplacesAnEarlierFileOfTheSameName) {
    fs::create_directories(CacheFolder());
    folder.Write("cache/GenICam/xml/TransportLayers/KIV/Same.xml", "an older description, longer than nothing");
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("Same.xml", scripted::camera_description));
    EXPECT_EQ(scripted::camera_description, read_file(Cached("Same.xml")));
}

TEST_F(Description, SpellingsOfTheUrlThatDevicesUse) {
    for (auto& url :
         {"local:A.xml;10000;" + LengthHex(), "Local:///A.xml;10000;" + LengthHex(), "LOCAL:A.xml; 10000 ; " + LengthHex(),
          "local:A.xml;0x10000;0x" + LengthHex(), "local:A%2Exml;10000;" + LengthHex() + "?SchemaVersion=1.1.0"}) {
        EXPECT_STATUS(K_ST_SUCCESS, OpenAt(url)) << url;
        CloseCamera();
        EXPECT_TRUE(fs::exists(Cached("A.xml"))) << url;
        fs::remove(Cached("A.xml"));
    }
}

TEST_F(Description, FaultyUrlsAreGenICamErrors) {
    struct {
        std::string url, text;
    } faults[] = {
        {"Desc.xml", "No scheme found in url: Desc.xml"},
        {"local:%zz.xml;1;2", "Invalid percent-encoding '%zz' in 'local:%zz.xml;1;2'"},
        {"local:a.xml;1;2%4", "Invalid percent-encoding '%4' in 'local:a.xml;1;2%4'"},
        {"local:Desc.xml", "Given local scheme has missing address and length: local:Desc.xml"},
        {"local:Desc.xml;2A4F", "Given local scheme has a missing length: local:Desc.xml;2A4F"},
        {"local:Desc.xml;10;xyz", "Length field of local URL could not be read: local:Desc.xml;10;xyz"},
        {"local:Desc.xml;10;", "Length field of local URL could not be read: local:Desc.xml;10;"},
        {"local:Desc.xml;--;20", "Address field of local URL could not be read: local:Desc.xml;--;20"},
        {"local:Desc.xml;11111111111111111;20",
         "Address field of local URL could not be read: local:Desc.xml;11111111111111111;20"},
        {"file:///there/is/no/such.xml", "Given file path and name could not be opened, scheme: file:///there/is/no/such.xml"},
        {"http://example.org/a.xml", "http"},
    };
    for (auto& fault : faults) EXPECT_GENICAM_ERROR(fault.text, "", OpenAt(fault.url)) << fault.url;
    EXPECT_EQ(nullptr, camera);
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
}

TEST_F(Description, AbsurdLengthsAreRefusedBeforeAnythingIsRead) {
    producer->ForgetCalls();
    for (auto* length : {"0", "4000001", "7FFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"})
        EXPECT_STATUS(K_ST_GC_ERROR, OpenAt(std::string("local:A.xml;10000;") + length)) << length;
    EXPECT_EQ(0u, producer->Count("GCReadPort"));
}

TEST_F(Description, NamesThatLeaveTheFolderAreRefused) {
    auto before = FilesUnder(folder.Path()).size();
    for (auto* name : {"../evil.xml", "..\\evil.xml", "%2e%2e%2fevil.xml", "/tmp/kiv_evil.xml", "a/b.xml", "a\\b.xml", "..", ".",
                       "", "C:evil.xml", "CON", "NUL.xml", "evil.xml%00.zip", "ev%0ail.xml"})
        EXPECT_STATUS(K_ST_GC_ERROR, OpenAt(std::string("local:") + name + ";10000;" + LengthHex())) << name;
    EXPECT_EQ(nullptr, camera);
    EXPECT_EQ(before, FilesUnder(folder.Path()).size());
}

TEST_F(Description, AFolderThatCannotBeWrittenIsAnIoError) {
    ScopedEnvironment elsewhere("KIVSDK_ROOT", folder.Write("a_file", "") + "/");
    EXPECT_STATUS(K_ST_IO, OpenWith("A.xml", scripted::camera_description));
}

TEST_F(Description, FileUrlsNameFiles) {
    auto path = folder.Write("own files/camera.xml", scripted::camera_description);
    std::string encoded = url_path(path);
    encoded.replace(encoded.find(' '), 1, "%20");
    EXPECT_STATUS(K_ST_SUCCESS, OpenAt("file://" + encoded));
    CloseCamera();
    EXPECT_STATUS(K_ST_SUCCESS, OpenAt("File:" + encoded + "?SchemaVersion=1.0.0"));
    CloseCamera();
    EXPECT_STATUS(K_ST_GC_ERROR, OpenAt("file://" + url_path(folder.Path())));
}

TEST_F(Description, AFileUrlOfWhatIsNoFileDoesNotHang) {
    BlockingFile pipe(folder.Path());
    auto opening = std::async(std::launch::async, [&] { return OpenAt("file://" + pipe.Path()); });
    if (opening.wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
        ADD_FAILURE() << "waits for somebody to write into the pipe";
        pipe.LetGo();
    }
    EXPECT_NE(K_ST_SUCCESS, opening.get());
    for (auto* endless : {"file:///dev/zero", "file:NUL", "file:CON"}) EXPECT_NE(K_ST_SUCCESS, OpenAt(endless)) << endless;
    EXPECT_EQ(nullptr, camera);
}

TEST_F(Description, APaddedTextIsTheSameText) {
    EXPECT_STATUS(K_ST_SUCCESS, OpenWith("Padded.xml", scripted::camera_description + std::string(3, '\0')));
}

TEST_F(Description, OldProducersAreAskedInTheOldWay) {
    producer->Refuse("GCGetPortURLInfo", GenTL::GC_ERR_NOT_IMPLEMENTED);
    EXPECT_STATUS(K_ST_SUCCESS, OpenWith("Old.xml", scripted::camera_description));
}

// ---- archives ----

/// An archive of uncompressed entries.
class Archive {
public:
    Archive& Add(const std::string& name, const std::string& content) {
        Entry entry{name, content, static_cast<std::uint32_t>(bytes_.size())};
        bytes_ += "PK\3\4" + Header(entry) + name + content;
        entries_.push_back(entry);
        return *this;
    }
    std::string Bytes() const {
        std::string directory;
        for (auto& entry : entries_)
            directory += "PK\1\2" + Le(20, 2) + Header(entry) + Le(0, 2) + Le(0, 2) + Le(0, 2) + Le(0, 4) + Le(entry.offset, 4) +
                         entry.name;
        return bytes_ + directory + "PK\5\6" + Le(0, 4) + Le(entries_.size(), 2) + Le(entries_.size(), 2) +
               Le(directory.size(), 4) + Le(bytes_.size(), 4) + Le(0, 2);
    }

private:
    struct Entry {
        std::string name, content;
        std::uint32_t offset;
    };
    static std::string Le(std::uint64_t value, int size) {
        std::string text;
        for (int i = 0; i < size; ++i) text += static_cast<char>(value >> (8 * i));
        return text;
    }
    static std::uint32_t Crc(const std::string& text) {
        std::uint32_t crc = ~0u;
        for (unsigned char byte : text) {
            crc ^= byte;
            for (int i = 0; i < 8; ++i) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
        }
        return ~crc;
    }
    static std::string Header(const Entry& entry) {
        return Le(20, 2) + Le(0, 2) + Le(0, 2) + Le(0, 4) + Le(Crc(entry.content), 4) + Le(entry.content.size(), 4) +
               Le(entry.content.size(), 4) + Le(entry.name.size(), 2) + Le(0, 2);
    }
    std::string bytes_;
    std::vector<Entry> entries_;
};

TEST_F(Description, TheFirstXmlOfAnArchiveIsTaken) {
    auto bytes =
        Archive().Add("readme.txt", "not this").Add("Camera.XML", scripted::camera_description).Add("b.xml", "nor this").Bytes();
    for (auto* name : {"desc.zip", "desc.Zip", "DESC.ZIP"}) {
        EXPECT_STATUS(K_ST_SUCCESS, OpenWith(name, bytes)) << name;
        CloseCamera();
        EXPECT_EQ(bytes, read_file(Cached(name)));
        EXPECT_EQ(scripted::camera_description, read_file(Cached("Camera.XML")));
    }
}

TEST_F(Description, AnArchiveThatWasUnpackedIsNotUnpackedAgain) {
    auto bytes = Archive().Add("Inside.xml", scripted::camera_description).Bytes();
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("desc.zip", bytes));
    CloseCamera();
    std::string changed = scripted::camera_description;
    changed.replace(changed.find("A camera for tests"), 18, "The unpacked file.");
    folder.Write("cache/GenICam/xml/TransportLayers/KIV/Inside.xml", changed);
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("desc.zip", bytes));
    char text[64];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetConfigInfo(camera, K_CONFIG_INFO_TOOL_TIP, text, &size));
    EXPECT_STREQ("The unpacked file.", text);
}

TEST_F(Description, ANewArchiveOfTheSameNamesIsUnpacked) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("desc.zip", Archive().Add("Inside.xml", scripted::camera_description).Bytes()));
    CloseCamera();
    std::string newer = scripted::camera_description;
    newer.replace(newer.find("A camera for tests"), 18, "A newer firmware..");
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("desc.zip", Archive().Add("Inside.xml", newer).Bytes()));
    char text[64];
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetConfigInfo(camera, K_CONFIG_INFO_TOOL_TIP, text, &size));
    EXPECT_STREQ("A newer firmware..", text);
}

TEST_F(Description, FaultyArchivesAreIoErrors) {
    auto good = Archive().Add("Inside.xml", scripted::camera_description).Bytes();
    auto broken = good;
    broken[200] ^= 0x20;  // the check sum no longer fits
    struct {
        const char* what;
        std::string bytes;
    } faults[] = {{"no archive", "this is no archive"},
                  {"no xml", Archive().Add("a.txt", "x").Bytes()},
                  {"empty", Archive().Bytes()},
                  {"cut", good.substr(0, good.size() / 2)},
                  {"check sum", broken},
                  {"path outside", Archive().Add("../../evil.xml", scripted::camera_description).Bytes()},
                  {"path of the other system", Archive().Add("..\\evil.xml", scripted::camera_description).Bytes()}};
    for (auto& fault : faults) EXPECT_STATUS(K_ST_IO, OpenWith("faulty.zip", fault.bytes)) << fault.what;
    EXPECT_FALSE(fs::exists(folder.In("cache/GenICam/xml/evil.xml")));
    for (auto& name : FilesUnder(folder.Path())) EXPECT_NE("evil.xml", name);
    EXPECT_EQ((std::vector<std::string>{"TL", "IF0"}), producer->OpenModules());
}

// ---- the text itself ----

TEST_F(Description, XmlStringOfModulesHasItsOwnSizeRule) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("A.xml", scripted::camera_description));
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    const std::string expected = scripted::camera_description;
    int other = 0;
    std::uint32_t size = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_Module_GetXmlString(layer, camera, nullptr, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_PARAMETER, K_GenTL_Module_GetXmlString(layer, camera, &other, nullptr, nullptr));
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_Module_GetXmlString(layer, camera, &other, nullptr, &size));
    EXPECT_EQ(expected.size(), size) << "the terminator is not counted here";
    std::string text(size + 1, '?');
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, K_GenTL_Module_GetXmlString(layer, camera, &other, text.data(), &size));
    EXPECT_EQ(expected.size() + 1, size);
    EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_Module_GetXmlString(layer, camera, &other, text.data(), &size));
    EXPECT_EQ(expected, text.c_str());
}

TEST_F(Description, XmlStringKnowsEveryKindOfModule) {
    ASSERT_STATUS(K_ST_SUCCESS, OpenWith("A.xml", scripted::camera_description));
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    INTERFACE_HANDLE opened = nullptr;
    void* device = nullptr;
    THRD_HANDLE stream = nullptr;
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetTLHandle(camera, &layer));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetInterfaceHandle(camera, &opened));
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_GetLocalDeviceHandle(camera, &device));
    ASSERT_STATUS(K_ST_SUCCESS, K_Image_OpenStream(camera, 0, nullptr, nullptr, &stream, 1024, 0));
    struct {
        void* module;
        std::string expected;
    } rows[] = {{layer, scripted::plain_description("TLPort")},
                {opened, scripted::plain_description("InterfacePort")},
                {&producer->FirstInterface(), scripted::plain_description("InterfacePort")},
                {device, scripted::plain_description("DevicePort")},
                {stream, scripted::plain_description("StreamPort")},
                {camera, scripted::camera_description}};
    int other = 0;
    for (auto& row : rows) {
        std::string text(1 << 16, '?');
        auto size = static_cast<std::uint32_t>(text.size());
        EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_Module_GetXmlString(layer, row.module, &other, text.data(), &size));
        EXPECT_EQ(row.expected, text.c_str());
        EXPECT_EQ(row.expected.size() + 1, size);
        // Each has a node map of that description: one that is asked for by the same handle, where it is one of ours.
        NODE_HANDLE root = nullptr;
        if (row.module == &producer->FirstInterface()) continue;
        EXPECT_STATUS(K_ST_SUCCESS, K_GenTL_GetNodeByName(row.module, "Root", &root));
    }
    EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream));
    // What the producer does not know it refuses; a strict one takes note of it.
    std::uint32_t size = 0;
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_Module_GetXmlString(layer, nullptr, &other, nullptr, &size));
    EXPECT_STATUS(K_ST_INVALID_HANDLE, K_GenTL_Module_GetXmlString(layer, &other, &other, nullptr, &size));
    EXPECT_EQ(2u, producer->Misuse().size());
    expect_clean_end = false;
}

}  // namespace
}  // namespace kiv_test
