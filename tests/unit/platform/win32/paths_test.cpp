#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/paths.h>

#include "../file_error.h"
#include "../temporary_folder.h"

using namespace kiv::platform;
using kiv::test::file_error;
using kiv::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(SearchPath, IsCutAtSemicolonsOnly) {
    EXPECT_THAT(split_search_path("C:\\x;d:/y z;;\\\\host\\share;"), ElementsAre("C:\\x", "d:/y z", "\\\\host\\share"));
    EXPECT_THAT(split_search_path(";"), ElementsAre());
}

TEST(Paths, AreComposedWithTheSystemsSeparator) {
    EXPECT_EQ("$(X)\\GenICam/xml/a", normalise_path("$(X)\\GenICam/xml/a")) << "both are separators";
    EXPECT_EQ("a\\b", join_path("a", "b"));
    EXPECT_EQ("a\\b", join_path("a\\", "b"));
    EXPECT_EQ("a/b", join_path("a/", "b"));
    EXPECT_EQ("C:\\x\\y", folder_of("C:\\x\\y\\z.cti"));
    EXPECT_EQ("C:/x/y", folder_of("C:/x/y/z.cti"));
    EXPECT_EQ(".", folder_of("z.cti"));
}

TEST(Folders, TheCacheRootFollowsTheEnvironment) {
    const auto before = get_environment("LOCALAPPDATA");
    set_environment("LOCALAPPDATA", "C:\\somebody\\Local");
    EXPECT_EQ("C:\\somebody\\Local", user_cache_root());
    set_environment("LOCALAPPDATA", "relative");
    EXPECT_EQ(temp_folder(), user_cache_root());
    before ? set_environment("LOCALAPPDATA", *before) : unset_environment("LOCALAPPDATA");
    EXPECT_TRUE(path_exists(user_runtime_folder()));
}

TEST(WholeFiles, ADeviceIsNoFile) {
    EXPECT_THAT(file_error([&] { read_file("NUL", 1); }), HasSubstr("it is no file"));
}

}  // namespace
