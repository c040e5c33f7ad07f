// Texts, lists of texts, exceptions, and the expansion of environment variables.
#include <gtest/gtest.h>

#include <sstream>

#include "GenICam/exceptions.h"
#include "GenICam/gcstring.h"
#include "GenICam/gcstring_vector.h"
#include "GenICam/version.h"
#include "kiv/platform/environment.h"

using namespace GenICam;

TEST(GcString, RefusesPositionsBehindItsEnd) {
    gcstring text("Width");
    EXPECT_EQ("dth", text.substr(2));
    EXPECT_EQ("", text.substr(5));
    EXPECT_THROW(text.substr(6), OutOfRangeException);
    EXPECT_THROW(text.at(5), OutOfRangeException);
    EXPECT_THROW(text.at(gcstring::npos), OutOfRangeException);
    EXPECT_THROW(text.insert(6, "x"), OutOfRangeException);
    EXPECT_THROW(text.replace(6, 1, "x"), OutOfRangeException);
    EXPECT_EQ("Wid", text.erase(3));
}

TEST(GcString, TakesNullForEmptyAndAnyByte) {
    EXPECT_TRUE(gcstring(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(gcstring(nullptr, 5).empty());
    EXPECT_TRUE(gcstring("") == static_cast<const char*>(nullptr));
    const gcstring bytes("a\0b", 3);
    EXPECT_EQ(3u, bytes.size());
    EXPECT_NE(gcstring("a"), bytes);
    EXPECT_EQ("2 mm", gcstring("2 ") + "mm");
    EXPECT_LT(gcstring("A"), gcstring("B"));
}

TEST(GcString, GetlineTakesTheWholeRestOfALine) {
    const std::string longLine(5000, 'x');
    std::istringstream stream("first\t\n" + longLine + "\nlast");
    gcstring line;
    EXPECT_TRUE(getline(stream, line));
    EXPECT_EQ("first\t", line);
    EXPECT_TRUE(getline(stream, line));
    EXPECT_EQ(longLine, line.str());
    EXPECT_TRUE(getline(stream, line));
    EXPECT_EQ("last", line);
    EXPECT_FALSE(getline(stream, line));
}

TEST(GcStringVector, KeepsItsOrder) {
    gcstring_vector list;
    for (const auto* text : {"b", "a", "c"}) list.push_back(text);
    list.insert(list.begin() + 1, "new");
    list.erase(list.begin());
    EXPECT_EQ("new", list.at(0));
    EXPECT_TRUE(list.contains("c"));
    EXPECT_FALSE(list.contains("b"));
    EXPECT_THROW(list.at(3), OutOfRangeException);
    const gcstring_vector copy = list;
    list.clear();
    EXPECT_EQ(3u, copy.size());
}

TEST(Exceptions, TellWhatWhoAndWhere) {
    const AccessException error("Node is not writable.", {"Width", "SetValue"}, "/somewhere/node.cpp", 12);
    EXPECT_STREQ("Node is not writable.", error.GetDescription());
    EXPECT_STREQ("Width", error.GetNodeName());
    EXPECT_STREQ("node.cpp", error.GetSourceFileName());
    EXPECT_EQ(12u, error.GetSourceLine());
    EXPECT_STREQ(
        "Node is not writable. : AccessException thrown in node 'Width' while calling 'Width.SetValue()' (file 'node.cpp', line "
        "12)",
        error.what());

    const RuntimeException bare("No description.", "file", 3);
    EXPECT_STREQ("No description. : RuntimeException thrown (file 'file', line 3)", bare.what());
    EXPECT_STREQ("", bare.GetNodeName());
    try {
        throw TimeoutException("late");
    } catch (const GenericException& caught) {
        const GenericException copy = caught;
        EXPECT_NE(nullptr, dynamic_cast<const TimeoutException*>(&caught));
        EXPECT_STREQ("gcbase_test.cpp", copy.GetSourceFileName());
    }
}

TEST(Version, IsCompatibleWithinAMajorNumber) {
    constexpr Version_t version{2, 4, 0};
    EXPECT_TRUE(version.IsCompatible({2, 3, 9}));
    EXPECT_FALSE(version.IsCompatible({2, 5, 0}));
    EXPECT_FALSE(version.IsCompatible({1, 0, 0}));
    EXPECT_LT((Version_t{1, 9, 9}), version);
}

TEST(EnvironmentVariables, AreReplacedWhereTheyAreKnown) {
    ASSERT_TRUE(kiv::platform::set_environment("KIV_TEST_A", "one $(KIV_TEST_B)"));
    ASSERT_TRUE(kiv::platform::set_environment("KIV_TEST_B", "two"));
    kiv::platform::unset_environment("KIV_TEST_NONE");
    struct Row {
        const char *text, *expanded;
    };
    for (const auto& row : {Row{"", ""}, Row{"plain $ text)", "plain $ text)"}, Row{"<$(KIV_TEST_B)>", "<two>"},
                            Row{"$(KIV_TEST_B)/$(KIV_TEST_B)", "two/two"}, Row{"$(KIV_TEST_A)", "one $(KIV_TEST_B)"},
                            Row{"$(KIV_TEST_NONE)", "$(KIV_TEST_NONE)"}, Row{"$(KIV_TEST_B", "$(KIV_TEST_B"},
                            Row{"$($(KIV_TEST_B)", "$(two"}, Row{"$()", "$()"}, Row{"$( KIV_TEST_B )", "$( KIV_TEST_B )"}}) {
        EXPECT_EQ(row.expanded, ReplaceEnvironmentVariables(std::string_view(row.text))) << row.text;
        gcstring text(row.text);
        ReplaceEnvironmentVariables(text);
        EXPECT_EQ(row.expanded, text);
    }
}
