#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/archive/first_xml.h>
#include <kiv/platform/paths.h>
#include <zip.h>

#include <string>
#include <utility>
#include <vector>

#include "unit/platform/temporary_folder.h"

using namespace kiv::archive;
using kiv::test::TemporaryFolder;
using testing::HasSubstr;

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

std::string make_zip(const Entries& entries, zip_int32_t method = ZIP_CM_DEFLATE, const char* password = nullptr) {
    const TemporaryFolder folder;
    const std::string path = folder / "made.zip";
    zip_t* archive = zip_open(path.c_str(), ZIP_CREATE, nullptr);
    for (const auto& [name, content] : entries) {
        zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
        const zip_int64_t index = zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
        EXPECT_GE(index, 0) << zip_strerror(archive);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), method, 0);
        if (!password) continue;
        EXPECT_EQ(0, zip_file_set_encryption(archive, static_cast<zip_uint64_t>(index), ZIP_EM_AES_256, password));
    }
    EXPECT_EQ(0, zip_close(archive)) << zip_strerror(archive);
    return kiv::platform::read_file(path, 1u << 30);
}

std::span<const std::byte> bytes_of(const std::string& text) { return std::as_bytes(std::span(text)); }

std::string unpack_error(const std::string& zip, std::uint64_t limit = largest_expansion) {
    try {
        first_xml_of_zip(bytes_of(zip), "camera.zip", limit);
    } catch (const ArchiveError& error) {
        return error.what();
    }
    return "no error";
}

TEST(Archive, TheFirstXmlOfAnyLetterCaseIsTaken) {
    const std::string content = "<?xml version='1.0'?>" + std::string(100'000, ' ') + '\0';
    const std::string zip = make_zip(
        {{"readme.txt", "no"}, {"xml", "no"}, {"a.xml.bak", "no"}, {"in/here/Cam\xC3\xA9ra.XmL", content}, {"second.xml", "no"}});
    ASSERT_TRUE(is_zip(bytes_of(zip)));
    for (const UnpackedFile& file : {first_xml_of_zip(bytes_of(zip), "z"),
                                     first_xml_of_zip(bytes_of(make_zip({{"Cam\xC3\xA9ra.XmL", content}}, ZIP_CM_STORE)), "z")}) {
        EXPECT_EQ("Cam\xC3\xA9ra.XmL", file.name);
        EXPECT_EQ(content, file.content);
    }
    EXPECT_EQ("", first_xml_of_zip(bytes_of(make_zip({{".xml", ""}})), "z").content);
    // Device memory is read in whole blocks: the archive may be followed by a filling.
    const std::string filled = zip + std::string(512, '\0');
    EXPECT_EQ(content, first_xml_of_zip(bytes_of(filled), "z").content);
}

TEST(Archive, FilesAreReadAndNamedInErrors) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("d.zip", make_zip({{"a.xml", "<a/>"}}));
    EXPECT_EQ("<a/>", first_xml_of_zip_file(path).content);
    for (const std::string& bad : {folder / "missing.zip", folder.Path(), folder.Write("text.zip", "<xml/>")}) {
        try {
            first_xml_of_zip_file(bad);
            ADD_FAILURE() << bad;
        } catch (const ArchiveError& error) {
            EXPECT_THAT(error.what(), HasSubstr(bad));
        }
    }
}

TEST(Archive, WhatIsNoZipIsRecognised) {
    for (const char* other : {"", "P", "PK", "PK\3", "<?xml version='1.0'?>", "PKxx"}) {
        EXPECT_FALSE(is_zip(bytes_of(other))) << other;
        EXPECT_THAT(unpack_error(other), HasSubstr("cannot unpack 'camera.zip': it is no zip archive"));
    }
    const std::string empty = std::string("PK\5\6", 4) + std::string(18, '\0');
    EXPECT_TRUE(is_zip(bytes_of(empty)));
    EXPECT_THAT(unpack_error(empty), HasSubstr("no entry is named *.xml"));
    EXPECT_THAT(unpack_error(make_zip({{"a.txt", "x"}, {"b.xml/", ""}})), HasSubstr("no entry is named *.xml"));
}

TEST(Archive, NamesThatLeadElsewhereAreRefused) {
    for (const char* name : {"../evil.xml", "/etc/evil.xml", "a/../../evil.xml", "C:\\evil.xml", "..\\evil.xml", "nul.xml",
                             "a//b.xml", "con/b.xml", "evil\n.xml", "./a.xml"})
        EXPECT_THAT(unpack_error(make_zip({{name, "<a/>"}})), HasSubstr("unsafe name")) << name;
}

TEST(Archive, WhatExpandsTooFarIsStopped) {
    const std::string bomb = make_zip({{"bomb.xml", std::string(3'000'000, ' ')}});
    ASSERT_LT(bomb.size(), 10'000u);
    EXPECT_THAT(unpack_error(bomb, 2'999'999), HasSubstr("expands to more than 2999999 bytes"));
    EXPECT_EQ("no error", unpack_error(bomb, 3'000'000));
    // The same with a lie about the size, in the header of the entry and in the directory.
    std::string lying = bomb;
    const std::string claim("\xC0\xC6\x2D\x00", 4), lie("\x10\x00\x00\x00", 4);
    unsigned changed = 0;
    for (std::size_t at; (at = lying.find(claim)) != lying.npos; ++changed) lying.replace(at, claim.size(), lie);
    ASSERT_GE(changed, 1u);
    EXPECT_NE("no error", unpack_error(lying, 2'000'000));
}

TEST(Archive, DamageIsAnErrorWhereverItIs) {
    std::string content;
    for (int i = 0; i < 400; ++i) content += "<Node" + std::to_string(i * 7919 % 1009) + "/>";
    const std::string zip = make_zip({{"a.xml", content}});
    for (std::size_t length = 0; length < zip.size(); ++length)
        EXPECT_NE("no error", unpack_error(zip.substr(0, length))) << "cut after " << length;
    // A changed byte may hit what nobody reads, such as a date; then the content is the right one nevertheless.
    unsigned refused = 0;
    for (std::size_t at = 0; at < zip.size(); ++at) {
        std::string damaged = zip;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
        try {
            EXPECT_EQ(content, first_xml_of_zip(bytes_of(damaged), "z").content) << "byte " << at;
        } catch (const ArchiveError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, zip.size() / 2);
}

TEST(Archive, EncryptedEntriesAreRefused) {
    if (!zip_encryption_method_supported(ZIP_EM_AES_256, 1)) GTEST_SKIP() << "this libzip cannot make an encrypted archive";
    EXPECT_THAT(unpack_error(make_zip({{"a.xml", "<a/>"}}, ZIP_CM_DEFLATE, "secret")), HasSubstr("cannot unpack 'camera.zip'"));
}

}  // namespace
