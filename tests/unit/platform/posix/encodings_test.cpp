#include "posix/encodings.h"

#include <gtest/gtest.h>
#include <kiv/platform/text.h>

using namespace kiv::platform;

namespace {

TEST(Text, LocalTextIsUtf8HereAndPassesUnchanged) {
    EXPECT_EQ("a\xFF\xC3\xA4", utf8_from_local("a\xFF\xC3\xA4"));
    EXPECT_EQ("a\xFF\xC3\xA4", local_from_utf8("a\xFF\xC3\xA4"));
}

TEST(Text, OtherEncodingsOfTheUserAreConverted) {
    EXPECT_EQ("gr\xC3\xBC\xC3\x9F", utf8_from_encoding("gr\xFC\xDF", "ISO-8859-1"));
    EXPECT_EQ("gr\xFC\xDF", encoding_from_utf8("gr\xC3\xBC\xC3\x9F", "ISO-8859-1"));
    EXPECT_EQ("?5", encoding_from_utf8("\xE2\x82\xAC"
                                       "5",
                                       "ISO-8859-1"))
        << "no such character there";
    EXPECT_EQ("\xE3\x83\x86\xE3\x82\xB9", utf8_from_encoding("\x83\x65\x83\x58", "SHIFT_JIS"));
    EXPECT_EQ("a\xEF\xBF\xBD", utf8_from_encoding("a\x83", "SHIFT_JIS")) << "cut in the middle";
    const std::string long_text(3000, 'x');
    EXPECT_EQ(long_text + "\xC3\xBC", utf8_from_encoding(long_text + "\xFC", "ISO-8859-1"));
    EXPECT_EQ("\xFF", utf8_from_encoding("\xFF", "NO-SUCH-ENCODING"));
}

}  // namespace
