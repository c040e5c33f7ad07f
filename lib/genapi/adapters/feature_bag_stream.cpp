// The text form of a feature bag.
//
//     # {05D8C294-F295-4dfb-9D01-096BD04049F4}
//     # GenApi persistence file (version 2.4.0)
//     # <name of the bag>
//     <feature><TAB><value>
//     ...
//
// Nothing is quoted. The reader is strict about the first line and lenient about the rest: it stops where it finds no entry.

#include <array>
#include <istream>
#include <ostream>
#include <string_view>

#include "GenApi/feature_bag.h"
#include "GenICam/exceptions.h"

namespace GenApi {

namespace {

constexpr std::string_view magic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
constexpr std::string_view version = "2.4.0";
constexpr std::streamsize longestComment = 1024;

using LineBuffer = std::array<char, 1024>;  // of a name or the first line, with its terminator

void skip_comments(std::istream& stream) {
    while (stream.peek() == '#') stream.ignore(longestComment, '\n');
}

void put(std::ostream& stream, std::string_view text) { stream.write(text.data(), static_cast<std::streamsize>(text.size())); }

}  // namespace

std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag) {
    for (std::string_view part : {std::string_view("# "), magic, std::string_view("\n# GenApi persistence file (version "),
                                  version, std::string_view(")\n# "), std::string_view(bag.name_), std::string_view("\n")})
        put(stream, part);
    for (size_t i = 0; i < bag.names_.size() && i < bag.values_.size(); ++i)
        for (std::string_view part :
             {std::string_view(bag.names_[i]), std::string_view("\t"), std::string_view(bag.values_[i]), std::string_view("\n")})
            put(stream, part);
    return stream;
}

std::istream& operator>>(std::istream& stream, CFeatureBag& bag) {
    // Looked at, not asked for: an empty stream that nobody has read from does not know yet that it is at its end.
    if (stream.eof() || stream.peek() == std::istream::traits_type::eof()) throw GenICam::RuntimeException("The stream is eof");
    bag.names_.clear();
    bag.values_.clear();
    LineBuffer line{};
    stream.getline(line.data(), line.size());
    if (std::string_view(line.data()).find(magic) == std::string_view::npos)
        throw GenICam::RuntimeException(
            "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line");
    skip_comments(stream);
    while (!stream.eof()) {
        if (!stream.getline(line.data(), line.size(), '\t')) break;
        const std::string_view name = line.data();
        if (name.find('\n') != name.npos) break;  // a line without a tab, taken together with those behind it
        gcstring value;
        if (!GenICam::getline(stream, value)) break;
        bag.names_.push_back(gcstring(name));
        bag.values_.push_back(value);
        skip_comments(stream);
    }
    return stream;
}

}  // namespace GenApi
