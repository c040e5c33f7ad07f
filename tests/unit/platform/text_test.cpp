#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/text.h>

#include "posix/encodings.h"

using namespace kiv::platform;

namespace {

TEST(Text, WideAndUtf8AreEachOthersInverse) {
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xB7";
    EXPECT_EQ(L"a\u00E4\u20AC\U0001F4F7", wide_from_utf8(text));
    EXPECT_EQ(text, utf8_from_wide(L"a\u00E4\u20AC\U0001F4F7"));
    EXPECT_EQ(std::wstring(L"\0x", 2), wide_from_utf8(std::string_view("\0x", 2)));
}

TEST(Text, WhatIsNoTextBecomesTheReplacementCharacter) {
    struct {
        const char* bytes;
        std::wstring wide;
    } const cases[] = {
        {"a\xFFz", L"a\uFFFDz"},                            // no lead byte
        {"\xC3", L"\uFFFD"},                                // cut
        {"\xC3(", L"\uFFFD("},                              // no tail
        {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // "/" in two bytes
        {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},            // and in three
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // half a surrogate pair
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.wide, wide_from_utf8(c.bytes)) << c.bytes;
        EXPECT_FALSE(is_valid_utf8(c.bytes)) << c.bytes;
    }
    EXPECT_EQ("\xEF\xBF\xBD.", utf8_from_wide(std::wstring{static_cast<wchar_t>(0xD800), L'.'}));
    EXPECT_TRUE(is_valid_utf8(""));
}

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

TEST(Environment, KnowsSetEmptyAndUnset) {
    ASSERT_TRUE(set_environment("KIV_TEST_VARIABLE", "v\xC3\xA4lue"));
    EXPECT_EQ("v\xC3\xA4lue", get_environment("KIV_TEST_VARIABLE"));
    ASSERT_TRUE(set_environment("KIV_TEST_VARIABLE", ""));
    EXPECT_EQ("", get_environment("KIV_TEST_VARIABLE"));
    ASSERT_TRUE(unset_environment("KIV_TEST_VARIABLE"));
    EXPECT_EQ(std::nullopt, get_environment("KIV_TEST_VARIABLE"));
    EXPECT_FALSE(set_environment("", "x"));
    EXPECT_FALSE(set_environment("A=B", "x"));
    EXPECT_FALSE(set_environment(std::string("A\0B", 3), "x"));
}

}  // namespace
