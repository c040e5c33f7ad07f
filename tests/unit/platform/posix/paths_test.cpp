#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>
#include <sys/stat.h>

#include "../file_error.h"
#include "../temporary_folder.h"

using namespace kiv::platform;
using kiv::test::file_error;
using kiv::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(SearchPath, IsCutAtTheSystemsSeparatorsButNotAtDrives) {
    EXPECT_THAT(split_search_path("/a:/b c/;;/d/:"), ElementsAre("/a", "/b c/", "/d/"));
    EXPECT_THAT(split_search_path("C:\\x;d:\\y:/z"), ElementsAre("C:\\x", "d:\\y", "/z"));
    EXPECT_THAT(split_search_path("a:b:CC:\\x"), ElementsAre("a", "b", "CC", "\\x"));
    EXPECT_THAT(split_search_path(":;"), ElementsAre());
    EXPECT_THAT(split_search_path(""), ElementsAre());
}

TEST(Paths, AreComposedWithTheSystemsSeparator) {
    EXPECT_EQ("$(X)/GenICam/xml/a", normalise_path("$(X)\\GenICam\\xml/a"));
    EXPECT_EQ("a/b", join_path("a", "b"));
    EXPECT_EQ("a/b", join_path("a/", "b"));
    EXPECT_EQ("b", join_path("", "b"));
    EXPECT_EQ("/x/y", folder_of("/x/y/z.cti"));
    EXPECT_EQ(".", folder_of("z.cti"));
}

TEST(Folders, TheRuntimeFolderBelongsToThisUserAlone) {
    const TemporaryFolder session;
    chmod(session.Path().c_str(), 0700);
    const auto before = get_environment("XDG_RUNTIME_DIR");
    set_environment("XDG_RUNTIME_DIR", session.Path());
    const std::string own = user_runtime_folder();
    EXPECT_EQ(session / "kiv", own);
    struct stat status = {};
    ASSERT_EQ(0, stat(own.c_str(), &status));
    EXPECT_EQ(0u, status.st_mode & 077);
    chmod(own.c_str(), 0777);
    EXPECT_THAT(file_error(user_runtime_folder), HasSubstr(own));
    chmod(session.Path().c_str(), 0755);
    EXPECT_NE(session / "kiv", user_runtime_folder()) << "a folder that others can enter is no session folder";
    before ? set_environment("XDG_RUNTIME_DIR", *before) : unset_environment("XDG_RUNTIME_DIR");
}

TEST(Folders, TheCacheRootFollowsTheEnvironment) {
    const auto cache = get_environment("XDG_CACHE_HOME"), home = get_environment("HOME");
    set_environment("HOME", "/home/somebody");
    set_environment("XDG_CACHE_HOME", "/var/somebody");
    EXPECT_EQ("/var/somebody", user_cache_root());
    set_environment("XDG_CACHE_HOME", "relative");
    EXPECT_EQ("/home/somebody/.cache", user_cache_root());
    unset_environment("HOME");
    EXPECT_EQ(temp_folder(), user_cache_root());
    if (home) set_environment("HOME", *home);
    cache ? set_environment("XDG_CACHE_HOME", *cache) : unset_environment("XDG_CACHE_HOME");
}

TEST(WholeFiles, APipeIsNoFile) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    EXPECT_THAT(file_error([&] { read_file(pipe, 1); }), HasSubstr("it is no file"));
    EXPECT_THAT(file_error([&] { read_file(folder.Path(), 1); }), HasSubstr("it is no file"));
}

}  // namespace
