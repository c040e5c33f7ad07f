#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "GenICam/export.h"

namespace GenICam {

/// The text of all GenICam interfaces: 8-bit characters, UTF-8 by convention, any byte allowed.
///
/// Its memory is always taken and given back inside the library, whichever module holds the object, which is why every member
/// that allocates is defined there.
class KIV_GENICAM_API gcstring {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);
    static constexpr size_t _npos() { return npos; }

    gcstring();
    gcstring(const char* text);  ///< A null pointer counts as the empty text.
    gcstring(const char* text, size_t length);
    gcstring(const std::string& text);
    gcstring(std::string_view text);
    gcstring(size_t count, char c);
    gcstring(const gcstring& other);
    gcstring(gcstring&& other) noexcept;
    ~gcstring();
    gcstring& operator=(const gcstring& other);
    gcstring& operator=(gcstring&& other) noexcept;

    const char* c_str() const noexcept { return text_.c_str(); }
    size_t size() const noexcept { return text_.size(); }
    size_t length() const noexcept { return text_.size(); }
    bool empty() const noexcept { return text_.empty(); }
    size_t capacity() const noexcept { return text_.capacity(); }
    operator std::string_view() const noexcept { return text_; }
    const std::string& str() const noexcept { return text_; }

    char operator[](size_t index) const { return text_[index]; }
    char at(size_t index) const;  ///< Throws OutOfRangeException.

    gcstring& assign(std::string_view text);
    gcstring& append(std::string_view text);
    gcstring& operator+=(std::string_view text) { return append(text); }
    gcstring& operator+=(char c) { return append(std::string_view(&c, 1)); }
    void push_back(char c) { append(std::string_view(&c, 1)); }
    gcstring& erase(size_t position = 0, size_t count = npos);
    gcstring& insert(size_t position, std::string_view text);
    gcstring& replace(size_t position, size_t count, std::string_view text);
    void clear() noexcept { text_.clear(); }
    void resize(size_t count, char fill = '\0');
    void reserve(size_t count);
    void swap(gcstring& other) noexcept { text_.swap(other.text_); }

    /// Throws OutOfRangeException when `position` is behind the end.
    gcstring substr(size_t position = 0, size_t count = npos) const;
    int compare(std::string_view other) const noexcept { return std::string_view(text_).compare(other); }

    size_t find(std::string_view what, size_t from = 0) const noexcept { return text_.find(what, from); }
    size_t find(char what, size_t from = 0) const noexcept { return text_.find(what, from); }
    size_t rfind(std::string_view what, size_t from = npos) const noexcept { return text_.rfind(what, from); }
    size_t find_first_of(std::string_view any, size_t from = 0) const noexcept { return text_.find_first_of(any, from); }
    size_t find_first_not_of(std::string_view any, size_t from = 0) const noexcept { return text_.find_first_not_of(any, from); }
    size_t find_last_of(std::string_view any, size_t from = npos) const noexcept { return text_.find_last_of(any, from); }

    friend bool operator==(const gcstring& a, const gcstring& b) noexcept { return a.text_ == b.text_; }
    friend bool operator==(const gcstring& a, const char* b) noexcept { return a.text_ == (b ? b : ""); }
    friend bool operator<(const gcstring& a, const gcstring& b) noexcept { return a.text_ < b.text_; }
    friend bool operator>(const gcstring& a, const gcstring& b) noexcept { return b.text_ < a.text_; }

private:
    std::string text_;
};

KIV_GENICAM_API gcstring operator+(const gcstring& a, std::string_view b);
KIV_GENICAM_API gcstring operator+(const char* a, const gcstring& b);
KIV_GENICAM_API std::ostream& operator<<(std::ostream& stream, const gcstring& text);
KIV_GENICAM_API std::istream& operator>>(std::istream& stream, gcstring& word);

/// The rest of the line, however long; the delimiter is taken from the stream and dropped.
KIV_GENICAM_API std::istream& getline(std::istream& stream, gcstring& line, char delimiter = '\n');

/// Replaces every "$(NAME)" by the value of the environment variable NAME. A name that is not set, and "$(" without its ")",
/// stay as they are; what a value contains is not expanded again.
KIV_GENICAM_API void ReplaceEnvironmentVariables(gcstring& text);
KIV_GENICAM_API std::string ReplaceEnvironmentVariables(std::string_view text);

}  // namespace GenICam
