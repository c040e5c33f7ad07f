#include <gtest/gtest.h>
#include <kiv/platform/file_version.h>

#include "../temporary_folder.h"

using namespace kiv::platform;

namespace {

TEST(FileVersion, IsTheFirstWellFormedOne) {
    const kiv::test::TemporaryFolder folder;
    const std::string tag = "@(#)product version ";
    const auto version_in = [&](const std::string& bytes) { return product_version_of(folder.Write("file", bytes)).has_value(); };
    EXPECT_TRUE(version_in(tag + "x " + tag + "1.22.333" + '\0'));
    for (const std::string& bad : {tag, tag + "1.2.3", tag + "1.2" + '\0', tag + "1.2.3.4" + '\0', tag + "-1.2.3" + '\0',
                                   tag + "99999999999.2.3" + '\0', std::string()})
        EXPECT_FALSE(version_in(bad)) << bad;
}

}  // namespace
