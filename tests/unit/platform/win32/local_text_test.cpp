#include <gtest/gtest.h>
#include <kiv/platform/text.h>

#include "win32/windows_lean.h"

using namespace kiv::platform;

namespace {

TEST(Text, OfTheUsersCodePageIsConverted) {
    // What a code page cannot say is lost; what it can say comes back as it was.
    const std::string text = GetACP() == CP_UTF8 ? "gr\xC3\xBC\xC3\x9F" : "gr\xFC\xDF";
    if (GetACP() != 1252 && GetACP() != CP_UTF8) GTEST_SKIP() << "the bytes are those of another code page, " << GetACP();
    EXPECT_EQ("gr\xC3\xBC\xC3\x9F", utf8_from_local(text));
    EXPECT_EQ(text, local_from_utf8("gr\xC3\xBC\xC3\x9F"));
    EXPECT_EQ("", utf8_from_local(""));
    EXPECT_EQ("", local_from_utf8(""));
    if (GetACP() == 1252) {
        EXPECT_EQ("?5", local_from_utf8("\xE6\xB8\xAC"
                                        "5"));
    }
    const std::string long_text(3000, 'x');
    EXPECT_EQ(long_text + "\xC3\xBC", utf8_from_local(long_text + text.substr(2, text.size() / 2 - 1)));
}

}  // namespace
