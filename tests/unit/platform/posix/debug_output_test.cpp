#include <gtest/gtest.h>
#include <kiv/platform/environment.h>

#include "../child_process.h"

using namespace kiv::platform;

namespace {

TEST(SystemDebugOutput, GoesToStandardErrorOnlyWhenAskedFor) {
    unset_environment("KIV_DEBUG_OUTPUT");
    EXPECT_EQ("", kiv::test::ChildProcess({"print", "text"}).ReadLine());
    set_environment("KIV_DEBUG_OUTPUT", "1");
    kiv::test::ChildProcess child({"print", "text"});
    EXPECT_EQ("text", child.ReadLine());
    EXPECT_EQ("wide \xC3\xA4", child.ReadLine());
    unset_environment("KIV_DEBUG_OUTPUT");
}

}  // namespace
