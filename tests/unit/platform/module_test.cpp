#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kiv/platform/dynamic_library.h>
#include <kiv/platform/file_version.h>
#include <kiv/platform/paths.h>

#include "support/system/habits.h"
#include "temporary_folder.h"

using namespace kiv::platform;
using kiv::test::TemporaryFolder;
using testing::HasSubstr;

namespace {

std::string load_error(const std::string& path) {
    try {
        DynamicLibrary library(path);
    } catch (const LoadError& error) {
        return error.what();
    }
    return "loaded";
}

TEST(DynamicLibrary, FindsWhatAModuleExports) {
    DynamicLibrary library(KIV_TEST_MODULE);
    auto* answer = library.Function<int()>("kiv_test_answer");
    ASSERT_NE(nullptr, answer);
    EXPECT_EQ(42, answer());
    EXPECT_EQ(std::filesystem::canonical(KIV_TEST_MODULE).string(), module_file(reinterpret_cast<const void*>(answer)));
    EXPECT_EQ(nullptr, library.Symbol("kiv_test_no_answer"));
    DynamicLibrary moved = std::move(library);
    EXPECT_EQ(42, answer()) << "moving keeps it loaded";
    EXPECT_EQ(KIV_TEST_MODULE, moved.Path());
}

TEST(DynamicLibrary, SaysWhyItCannotLoad) {
    const TemporaryFolder folder;
    EXPECT_THAT(load_error(folder / "missing.cti"), HasSubstr("missing.cti"));
    EXPECT_THAT(load_error(folder / "missing.cti"), HasSubstr(kiv_test::no_such_library()));
    EXPECT_THAT(load_error(folder.Write("text.cti", "no library")), HasSubstr("text.cti"));
    EXPECT_THAT(load_error(folder.Path()), HasSubstr(folder.Path()));
    EXPECT_THAT(load_error(""), HasSubstr("no file name"));
    EXPECT_THAT(load_error(std::string(KIV_TEST_MODULE) + '\0' + "x"), HasSubstr("zero byte"));
}

TEST(FileVersion, IsWhatTheBuildWroteIntoTheFile) {
    const auto version = product_version_of(KIV_TEST_MODULE);
    ASSERT_TRUE(version);
    EXPECT_EQ(KIV_TEST_VERSION, std::to_string(version->major_number) + "." + std::to_string(version->minor_number) + "." +
                                    std::to_string(version->build_number));
}

TEST(FileVersion, IsNothingWhereThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_FALSE(product_version_of(folder.Write("text", "no library")));
    EXPECT_FALSE(product_version_of(folder / "missing"));
    EXPECT_FALSE(product_version_of(folder.Path()));
}

}  // namespace
