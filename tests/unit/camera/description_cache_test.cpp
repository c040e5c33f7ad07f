#include "camera/description_cache.h"

#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>
#include <zip.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "transport/status.h"

namespace kiv {
namespace {

// A zip archive with one stored entry, as bytes.
std::string zip_of(const std::string& entry, const std::string& content) {
    zip_error_t error;
    zip_source_t* memory = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = zip_open_from_source(memory, ZIP_TRUNCATE, &error);
    zip_source_keep(memory);
    zip_file_add(archive, entry.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
    zip_close(archive);
    zip_source_open(memory);
    zip_source_seek(memory, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(zip_source_tell(memory)), '\0');
    zip_source_seek(memory, 0, SEEK_SET);
    zip_source_read(memory, bytes.data(), bytes.size());
    zip_source_close(memory);
    zip_source_free(memory);
    return bytes;
}

class DescriptionCacheTest : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::remove_all(root_);
        std::filesystem::create_directories(root_);
        platform::set_environment("KIVSDK_ROOT", root_.string());
    }
    void TearDown() override {
        platform::unset_environment("KIVSDK_ROOT");
        std::filesystem::remove_all(root_);
    }
    std::string Stored(const std::string& name) const {
        return platform::read_file(platform::join_path(DescriptionCache().Folder(), name), 1 << 20);
    }
    void Overwrite(const std::string& name, const std::string& content) const {
        std::ofstream(platform::join_path(DescriptionCache().Folder(), name), std::ios::trunc) << content;
    }

    // Cases run at the same time, each in a process of its own.
    std::filesystem::path root_ = std::filesystem::temp_directory_path() /
                                  (std::string("kiv_cache_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(DescriptionCacheTest, PlainDescriptionsAreStoredUnderTheirName) {
    EXPECT_EQ(DescriptionCache().Keep("a.xml", "<one/>"), "<one/>");
    EXPECT_EQ(Stored("a.xml"), "<one/>");
    EXPECT_EQ(DescriptionCache().Keep("a.xml", "<two/>"), "<two/>") << "an earlier file is replaced";
    EXPECT_EQ(std::filesystem::path(DescriptionCache().Folder()), root_ / "GenICam/xml/TransportLayers/KIV");
}

TEST_F(DescriptionCacheTest, AnArchiveIsUnpackedOnceAndThenReadFromItsFile) {
    auto zip = zip_of("Camera.xml", "<camera/>");
    EXPECT_EQ(DescriptionCache().Keep("c.Zip", zip), "<camera/>");
    Overwrite("Camera.xml", "<by hand/>");
    EXPECT_EQ(DescriptionCache().Keep("c.Zip", zip), "<by hand/>");
    // Other content under the same names: what was unpacked from the other archive must not be taken for it.
    EXPECT_EQ(DescriptionCache().Keep("c.Zip", zip_of("Camera.xml", "<update/>")), "<update/>");
    EXPECT_EQ(DescriptionCache().Keep("other.zip", zip_of("Camera.xml", "<other/>")), "<other/>");
    EXPECT_EQ(DescriptionCache().Keep("c.Zip", zip_of("Camera.xml", "<update/>")), "<update/>");
}

TEST_F(DescriptionCacheTest, AnArchiveWithoutTheRightNameIsRecognised) {
    EXPECT_EQ(DescriptionCache().Keep("camera.xml", zip_of("x.XML", "<x/>")), "<x/>");
}

TEST_F(DescriptionCacheTest, BadArchivesAndUnwritableFoldersAreIoErrors) {
    auto status_of = [](auto&& act) {
        try {
            act();
        } catch (const StatusError& error) {
            return error.code;
        }
        return K_STATUS_CODES{K_ST_SUCCESS};
    };
    auto keep = [](const char* name, std::string bytes) { return [=] { DescriptionCache().Keep(name, bytes); }; };
    EXPECT_EQ(status_of(keep("a.zip", "no archive at all")), K_ST_IO);
    EXPECT_EQ(status_of(keep("a.zip", zip_of("readme.txt", "no description"))), K_ST_IO);
    auto zip = zip_of("a.xml", std::string(1000, 'x'));
    EXPECT_EQ(status_of(keep("a.zip", zip.substr(0, zip.size() / 2))), K_ST_IO);
    EXPECT_EQ(status_of(keep("a.zip", zip_of("..\\evil.xml", "<x/>"))), K_ST_IO);
    EXPECT_FALSE(std::filesystem::exists(root_ / "GenICam/xml/TransportLayers/evil.xml"));

    std::ofstream(root_ / "file") << "in the way";
    platform::set_environment("KIVSDK_ROOT", (root_ / "file").string());
    EXPECT_EQ(status_of(keep("a.xml", "<x/>")), K_ST_IO);
}

}  // namespace
}  // namespace kiv
