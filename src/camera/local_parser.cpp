#include "camera/local_parser.h"

#include <GenICam/exceptions.h>

#include <charconv>
#include <optional>

namespace GenICam::Registry::Impl {

namespace {

constexpr const char* source = "LocalParser";

std::string_view trimmed(std::string_view text) {
    auto first = text.find_first_not_of(" \t\r\n");
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Hexadecimal, as devices write it: with blanks around it, with 0x or without.
std::optional<std::uint64_t> hexadecimal(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
    std::uint64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

CLocalParser::CLocalParser(const CURLParser& url) {
    if (!url.HasScheme("local"))
        throw InvalidArgumentException("Given URL type is not of local scheme: " + url.Url(), source, __LINE__);
    std::string_view rest = url.Path();
    auto before_length = rest.rfind(';');
    if (before_length == rest.npos)
        throw InvalidArgumentException("Given local scheme has missing address and length: " + url.Url(), source, __LINE__);
    auto length = hexadecimal(rest.substr(before_length + 1));
    if (!length) throw RuntimeException("Length field of local URL could not be read: " + url.Url(), source, __LINE__);

    rest = rest.substr(0, before_length);
    auto before_address = rest.rfind(';');
    // The text speaks of the length although the address is missing: programs and manuals quote it as it is.
    if (before_address == rest.npos)
        throw InvalidArgumentException("Given local scheme has a missing length: " + url.Url(), source, __LINE__);
    auto address = hexadecimal(rest.substr(before_address + 1));
    if (!address) throw RuntimeException("Address field of local URL could not be read: " + url.Url(), source, __LINE__);

    auto name = trimmed(rest.substr(0, before_address));
    if (name.starts_with("///")) name.remove_prefix(3);
    file_name_ = name;
    address_ = *address;
    length_ = *length;
}

}  // namespace GenICam::Registry::Impl
