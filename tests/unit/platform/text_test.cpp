#include <gtest/gtest.h>
#include <kiv/platform/environment.h>
#include <kiv/platform/text.h>

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
