#include "camera/url_parser.h"

#include <GenICam/exceptions.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "camera/file_parser.h"
#include "camera/local_parser.h"

namespace GenICam::Registry::Impl {
namespace {

CLocalParser local(const char* url) { return CLocalParser(CURLParser(url)); }

// The description of what is thrown while parsing; empty when nothing is.
template <class Exception>
std::string complaint(const char* url) {
    try {
        local(url);
    } catch (const Exception& error) {
        return error.GetDescription();
    }
    return {};
}

TEST(LocalUrl, FormsThatDevicesSend) {
    struct {
        const char* url;
        const char* name;
        std::uint64_t address, length;
    } forms[] = {
        {"local:Desc.zip;10000;2A4F", "Desc.zip", 0x10000, 0x2A4F},
        {"Local:a.xml;10000;3e67", "a.xml", 0x10000, 0x3e67},
        {"LOCAL:b.xml;     698;62FA", "b.xml", 0x698, 0x62FA},
        {"Local:///c.xml;F0000000;10", "c.xml", 0xF0000000, 0x10},
        {"local:d.xml;0x1F00;0X20?SchemaVersion=1.0.0", "d.xml", 0x1F00, 0x20},
        {"local:e.xml;123456789A;1", "e.xml", 0x123456789A, 1},
        {"local:My%20Camera.xml;0;1", "My Camera.xml", 0, 1},
        {"local:a;b.xml;1;2", "a;b.xml", 1, 2},
    };
    for (auto& form : forms) {
        SCOPED_TRACE(form.url);
        auto parsed = local(form.url);
        EXPECT_EQ(parsed.FileName(), form.name);
        EXPECT_EQ(parsed.Address(), form.address);
        EXPECT_EQ(parsed.Length(), form.length);
    }
}

TEST(LocalUrl, ComplaintsNameTheFieldAndTheUrl) {
    EXPECT_EQ(complaint<InvalidArgumentException>("Desc.xml"), "No scheme found in url: Desc.xml");
    EXPECT_EQ(complaint<InvalidArgumentException>("local:Desc.xml"),
              "Given local scheme has missing address and length: local:Desc.xml");
    EXPECT_EQ(complaint<InvalidArgumentException>("local:Desc.xml;2A4F"),
              "Given local scheme has a missing length: local:Desc.xml;2A4F");
    EXPECT_EQ(complaint<RuntimeException>("local:D.xml;10;xyz"),
              "Length field of local URL could not be read: local:D.xml;10;xyz");
    EXPECT_EQ(complaint<RuntimeException>("local:D.xml;;10"), "Address field of local URL could not be read: local:D.xml;;10");
    EXPECT_EQ(complaint<RuntimeException>("local:D.xml;10;11111111111111111"),
              "Length field of local URL could not be read: local:D.xml;10;11111111111111111");
    EXPECT_EQ(complaint<InvalidArgumentException>("file:D.xml;10;10"), "Given URL type is not of local scheme: file:D.xml;10;10");
    EXPECT_EQ(complaint<InvalidArgumentException>("local:D%2.xml;1;1"), "Invalid percent-encoding '%2.' in 'local:D%2.xml;1;1'");
    EXPECT_EQ(complaint<InvalidArgumentException>("local:D%"), "Invalid percent-encoding '%' in 'local:D%'");
}

TEST(FileUrl, NamesAFileThatOpens) {
    auto folder = std::filesystem::temp_directory_path() / "kiv file url test";
    std::filesystem::create_directories(folder);
    auto file = folder / "my camera.xml";
    std::ofstream(file) << "<x/>";
    auto url = "file://" + folder.parent_path().generic_string() + "/kiv%20file%20url%20test/my%20camera.xml?SchemaVersion=1.1.0";
    EXPECT_EQ(std::filesystem::path(CFileParser(CURLParser(url)).Path()), file);
    EXPECT_EQ(std::filesystem::path(CFileParser(CURLParser("FILE:" + file.string())).Path()), file);
    std::filesystem::remove_all(folder);
    try {
        CFileParser gone{CURLParser(url)};
        FAIL() << "a missing file was accepted";
    } catch (const AccessException& error) {
        EXPECT_EQ(error.GetDescription(), "Given file path and name could not be opened, scheme: " + url);
        EXPECT_STREQ(error.GetSourceFileName(), "FileParser");
    }
    EXPECT_THROW(CFileParser{CURLParser("local:a;1;1")}, InvalidArgumentException);
}

}  // namespace
}  // namespace GenICam::Registry::Impl
