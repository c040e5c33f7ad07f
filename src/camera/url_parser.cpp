#include "camera/url_parser.h"

#include <GenICam/exceptions.h>

#include <algorithm>
#include <charconv>

namespace GenICam::Registry::Impl {

namespace {

constexpr const char* source = "URLParser";

bool same_letter(char a, char b) {
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return lower(a) == lower(b);
}

// Decodes "%41" to "A". `url` is what the error text shows.
std::string decoded(std::string_view text, const std::string& url) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            result.push_back(text[at]);
            continue;
        }
        auto sequence = text.substr(at, 3);
        unsigned value = 0;
        auto digits = sequence.substr(1);
        auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (digits.size() != 2 || error != std::errc{} || end != digits.data() + digits.size())
            throw InvalidArgumentException("Invalid percent-encoding '" + std::string(sequence) + "' in '" + url + "'", source,
                                           __LINE__);
        result.push_back(static_cast<char>(value));
        at += 2;
    }
    return result;
}

}  // namespace

CURLParser::CURLParser(std::string_view url) : url_(url) {
    auto colon = url.find(':');
    if (colon == url.npos) throw InvalidArgumentException("No scheme found in url: " + url_, source, __LINE__);
    auto first = url.find_first_not_of(" \t\r\n");
    scheme_ = url.substr(std::min(first, colon), colon - std::min(first, colon));
    auto rest = url.substr(colon + 1);
    auto query = rest.rfind('?');
    if (query != rest.npos) rest = rest.substr(0, query);
    path_ = decoded(rest, url_);
}

bool CURLParser::HasScheme(std::string_view scheme) const {
    return std::equal(scheme_.begin(), scheme_.end(), scheme.begin(), scheme.end(), same_letter);
}

}  // namespace GenICam::Registry::Impl
