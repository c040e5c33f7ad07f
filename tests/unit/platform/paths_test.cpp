#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/paths.h>

#include <atomic>
#include <thread>

#include "child_process.h"
#include "file_error.h"
#include "support/system/habits.h"
#include "temporary_folder.h"

using namespace kiv::platform;
using kiv::test::ChildProcess;
using kiv::test::file_error;
using kiv::test::TemporaryFolder;
using testing::HasSubstr;

namespace {

TEST(PlainFileName, AcceptsNamesAndRefusesWhatLeadsElsewhere) {
    for (const char* good :
         {"camera.xml", "a", ".hidden", "Desc v1.0 (b).zip", "caf\xC3\xA9.xml", "console.xml", "com10.xml", "..x"})
        EXPECT_TRUE(is_plain_file_name(good)) << good;
    for (const char* bad : {"",      ".",   "..",      "a/b",         "/etc/passwd", "..\\x",    "a\\b",
                            "C:x",   "a*",  "a?b",     "a\"b",        "a<b",         "a|b",      "x\n",
                            "x\x7F", "con", "NUL.xml", "Com1.tar.gz", "lpt9",        "nul .txt", "COM\xC2\xB9.xml",
                            "x.",    "x ",  " x",      "caf\xE9",     "\xC0\xAF"})
        EXPECT_FALSE(is_plain_file_name(bad)) << bad;
    EXPECT_FALSE(is_plain_file_name(std::string_view("a\0b", 3)));
    EXPECT_TRUE(is_plain_file_name(std::string(255, 'x')));
    EXPECT_FALSE(is_plain_file_name(std::string(256, 'x')));
}

TEST(Folders, AreMadeLevelByLevel) {
    const TemporaryFolder folder;
    const std::string deep = folder / "one/tw\xC3\xB6/three";
    create_folders(deep);
    EXPECT_TRUE(path_exists(deep));
    create_folders(deep);
    const std::string file = folder.Write("file", "x");
    EXPECT_THAT(file_error([&] { create_folders(file + "/below"); }), HasSubstr(file + "'"));
    EXPECT_FALSE(path_exists(file + "/below"));
    EXPECT_FALSE(path_exists(""));
}

TEST(ModuleFile, IsTheFileThatHoldsTheAddress) {
    EXPECT_EQ(std::filesystem::canonical(KIV_TEST_HELPER).string(), ChildProcess({"own-file"}).ReadLine());
    EXPECT_EQ("", module_file(nullptr));
}

TEST(WholeFiles, ComeBackAsTheyWereWritten) {
    const TemporaryFolder folder;
    const std::string content("line\r\n\0\xFF end", 13);
    const std::string file = folder.Write("\xC3\xA4.bin", content);
    EXPECT_EQ(content, read_file(file, 13));
    EXPECT_THAT(file_error([&] { read_file(file, 12); }), HasSubstr("more than 12 bytes"));
    EXPECT_EQ("", read_file(folder.Write("empty", ""), 0));
}

TEST(WholeFiles, FailuresNameTheFileAndTheReason) {
    const TemporaryFolder folder;
    EXPECT_THAT(file_error([&] { read_file(folder / "missing", 1); }),
                testing::AllOf(HasSubstr("missing': "), HasSubstr(kiv_test::no_such_file())));
    EXPECT_NE("no error", file_error([&] { read_file(folder.Path(), 1); }));
    EXPECT_THAT(file_error([&] { folder.Write("no/such/folder", "x"); }),
                HasSubstr("cannot write '" + folder / "no/such/folder"));
    // Renaming onto a folder fails after the writing: nothing half-made may stay.
    create_folders(folder / "taken");
    EXPECT_THAT(file_error([&] { folder.Write("taken", "x"); }), HasSubstr("taken"));
    unsigned entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.Path())) ++entries;
    EXPECT_EQ(1u, entries) << "the folder";
}

TEST(WholeFiles, AReaderNeverSeesHalfAFile) {
    const TemporaryFolder folder;
    const std::string old_text(200'000, 'o'), new_text(300'000, 'n');
    const std::string file = folder.Write("file", old_text);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (int i = 0; i < 50; ++i) folder.Write("file", i % 2 ? old_text : new_text);
        stop = true;
    });
    while (!stop) {
        const std::string seen = read_file(file, 1 << 20);
        EXPECT_TRUE(seen == old_text || seen == new_text) << seen.size();
    }
    writer.join();
}

}  // namespace
