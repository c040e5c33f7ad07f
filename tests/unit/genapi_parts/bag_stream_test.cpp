// The persistence file: what is written, what is read back, what is refused.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "GenApi/feature_bag.h"
#include "GenICam/exceptions.h"

namespace GenApi {
namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

const std::string head =
    "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
    "# GenApi persistence file (version 2.4.0)\n"
    "# MyCamera\n";

CFeatureBag read(const std::string& text) {
    std::istringstream stream(text);
    CFeatureBag bag;
    stream >> bag;
    return bag;
}

Entries entries(const CFeatureBag& bag) {
    Entries list;
    for (size_t i = 0; i < bag.GetNames().size(); ++i) list.emplace_back(bag.GetNames()[i].str(), bag.GetValues()[i].str());
    return list;
}

std::string refusal(std::istream& stream) {
    CFeatureBag bag;
    try {
        stream >> bag;
    } catch (const GenICam::RuntimeException& e) {
        return e.GetDescription();
    }
    return "accepted";
}

TEST(BagStream, WritesHeaderAndEntriesAndReadsThemBack) {
    const std::string file = head + "Width\t640\nText\ta b\tc # d \nEmpty\t\n";
    CFeatureBag bag = read(file);
    EXPECT_EQ((Entries{{"Width", "640"}, {"Text", "a b\tc # d "}, {"Empty", ""}}), entries(bag));
    EXPECT_STREQ("", bag.GetInfo().c_str()) << "the name is not read back";
    bag.SetInfo("MyCamera");

    std::ostringstream written;
    written.width(50);
    written.fill('*');
    EXPECT_EQ(&written, &(written << bag));
    EXPECT_EQ(file, written.str());
    EXPECT_TRUE(bag == read(written.str()));

    std::istringstream other(head + "A\t1\n");
    other >> bag;
    EXPECT_EQ((Entries{{"A", "1"}}), entries(bag)) << "reading replaces the entries";
    EXPECT_STREQ("MyCamera", bag.GetInfo().c_str()) << "and keeps the name";
}

TEST(BagStream, SkipsCommentsBetweenEntriesOnly) {
    EXPECT_TRUE(entries(read(head)).empty());
    EXPECT_TRUE(entries(read(head + "# more\n#\n")).empty());
    EXPECT_EQ((Entries{{"A", "1"}, {"B", "#2"}, {" #C", "3"}}),
              entries(read(head + "A\t1\n# note\n#\tnote\nB\t#2\n #C\t3\n# end")));
    EXPECT_EQ((Entries{{"A", "1"}}), entries(read("junk {05D8C294-F295-4dfb-9D01-096BD04049F4} junk\nA\t1")))
        << "the mark may stand anywhere in the first line, the last line needs no end";
}

TEST(BagStream, StopsAtAFaultyLine) {
    EXPECT_EQ((Entries{{"A", "1"}}), entries(read(head + "A\t1\nno tab here\n")));
    EXPECT_EQ((Entries{{"A", "1"}}), entries(read(head + "A\t1\nno tab here\nB\t2\n")));
    EXPECT_EQ((Entries{{"A", "1"}}), entries(read(head + "A\t1\nB\t"))) << "a value that is not there is no empty one";
    EXPECT_EQ((Entries{{"A", "1"}, {std::string(1023, 'n'), "2"}}),
              entries(read(head + "A\t1\n" + std::string(1023, 'n') + "\t2\n")));
    EXPECT_EQ((Entries{{"A", "1"}}), entries(read(head + "A\t1\n" + std::string(1024, 'n') + "\t2\nB\t3\n")));
    const std::string big(3000000, 'v');
    EXPECT_EQ((Entries{{"A", big}, {"B", "2"}}), entries(read(head + "A\t" + big + "\nB\t2\n"))) << "values have no limit";
}

TEST(BagStream, RefusesWhatIsNoPersistenceFile) {
    std::istringstream empty(""), ended(head), other("<xml/>\n{05D8C294-F295-4dfb-9D01-096BD04049F4}\n"),
        wrongCase("# {05d8c294-f295-4dfb-9d01-096bd04049f4}\n");
    ended.seekg(0, std::ios::end);
    EXPECT_EQ("The stream is eof", refusal(empty));
    EXPECT_EQ("The stream is eof", refusal(ended));
    const char* noMark = "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line";
    EXPECT_EQ(noMark, refusal(other));
    EXPECT_EQ(noMark, refusal(wrongCase));
    std::istringstream late(std::string(1100, ' ') + head);
    EXPECT_EQ(noMark, refusal(late)) << "only the beginning of an endless first line is looked at";
}

}  // namespace
}  // namespace GenApi
