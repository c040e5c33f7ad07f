#include "GenICam/gcstring.h"

#include <istream>
#include <ostream>
#include <utility>

#include "GenICam/exceptions.h"

namespace GenICam {

gcstring::gcstring() = default;
gcstring::gcstring(const char* text) : text_(text ? text : "") {}
gcstring::gcstring(const char* text, size_t length) : text_(text ? std::string(text, length) : std::string()) {}
gcstring::gcstring(const std::string& text) : text_(text) {}
gcstring::gcstring(std::string_view text) : text_(text) {}
gcstring::gcstring(size_t count, char c) : text_(count, c) {}
gcstring::gcstring(const gcstring& other) = default;
gcstring::gcstring(gcstring&& other) noexcept = default;
gcstring::~gcstring() = default;
gcstring& gcstring::operator=(const gcstring& other) = default;
gcstring& gcstring::operator=(gcstring&& other) noexcept = default;

namespace {

void require_position(const gcstring& text, size_t position) {
    if (position > text.size())
        throw OutOfRangeException("Position " + std::to_string(position) + " is behind the end of a text of " +
                                  std::to_string(text.size()) + " characters.");
}

}  // namespace

char gcstring::at(size_t index) const {
    require_position(*this, index == npos ? index : index + 1);
    return text_[index];
}

gcstring& gcstring::assign(std::string_view text) {
    text_.assign(text);
    return *this;
}

gcstring& gcstring::append(std::string_view text) {
    text_.append(text);
    return *this;
}

gcstring& gcstring::erase(size_t position, size_t count) {
    require_position(*this, position);
    text_.erase(position, count);
    return *this;
}

gcstring& gcstring::insert(size_t position, std::string_view text) {
    require_position(*this, position);
    text_.insert(position, text);
    return *this;
}

gcstring& gcstring::replace(size_t position, size_t count, std::string_view text) {
    require_position(*this, position);
    text_.replace(position, count, text);
    return *this;
}

void gcstring::resize(size_t count, char fill) { text_.resize(count, fill); }
void gcstring::reserve(size_t count) { text_.reserve(count); }

gcstring gcstring::substr(size_t position, size_t count) const {
    require_position(*this, position);
    return std::string_view(text_).substr(position, count);
}

gcstring operator+(const gcstring& a, std::string_view b) { return gcstring(a).append(b); }
gcstring operator+(const char* a, const gcstring& b) { return gcstring(a).append(b); }

std::ostream& operator<<(std::ostream& stream, const gcstring& text) { return stream << text.str(); }

std::istream& operator>>(std::istream& stream, gcstring& word) {
    std::string text;
    stream >> text;
    word = gcstring(text);
    return stream;
}

std::istream& getline(std::istream& stream, gcstring& line, char delimiter) {
    std::string text;
    std::getline(stream, text, delimiter);
    line = gcstring(text);
    return stream;
}

}  // namespace GenICam
