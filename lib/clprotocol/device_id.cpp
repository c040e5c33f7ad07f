#include "CLProtocol/device_id.h"

#include <GenICam/exceptions.h>

#include <algorithm>

namespace CLProtocol {
namespace {

constexpr std::size_t most_tokens = 5;

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::vector<std::string> split(std::string_view text) {
    std::vector<std::string> tokens;
    for (;;) {
        const std::size_t end = std::min(text.find('#'), text.size());
        tokens.emplace_back(text.substr(0, end));
        if (end == text.size()) return tokens;
        text.remove_prefix(end + 1);
    }
}

std::string join(auto first, auto last) {
    std::string text;
    for (auto token = first; token != last; ++token) text += (token == first ? "" : "#") + *token;
    return text;
}

/// How many tokens the driver's directory takes: none in a short form. A "#" in the name of a folder cuts it into several tokens,
/// but nothing behind the directory holds a separator of paths.
std::size_t directory_tokens(const std::vector<std::string>& tokens) {
    for (std::size_t i = tokens.size(); i > 0; --i)
        if (tokens[i - 1].find_first_of("/\\") != std::string::npos) return i;
    const bool drive = tokens.front().find(':') != std::string::npos;
    const bool file_follows = tokens.size() > 2 && tokens[1].find('.') != std::string::npos;
    return drive || tokens.front() == "." || file_follows ? 1 : 0;
}

}  // namespace

CDeviceID::CDeviceID(std::string driver_directory, std::string driver_file, std::vector<std::string> tokens)
    : driver_directory_(std::move(driver_directory)), driver_file_(std::move(driver_file)), tokens_(std::move(tokens)) {}

CDeviceID CDeviceID::FromString(std::string_view text) {
    const auto refuse = [&](const char* why) {
        throw GenICam::InvalidArgumentException("device ID '" + std::string(text) + "' " + why);
    };
    const std::vector<std::string> all = split(text);
    const std::size_t directory = directory_tokens(all);
    const std::size_t own = directory == 0 ? 0 : directory + 1;
    if (own >= all.size()) refuse("names no manufacturer");
    if (all.size() - own > most_tokens) refuse("has more than five tokens from the manufacturer on");
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(own);
    if (std::any_of(first, all.end(), [](const std::string& token) { return token.empty(); })) refuse("has an empty token");
    if (directory == 0) return {"", "", {first, all.end()}};
    if (all[directory].empty()) refuse("names no driver file");
    return {join(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(directory)), all[directory], {first, all.end()}};
}

std::string CDeviceID::GetDeviceID() const {
    if (!NamesADriver()) return GetShortDeviceID();
    return driver_directory_ + "#" + driver_file_ + "#" + GetShortDeviceID();
}

std::string CDeviceID::GetShortDeviceID() const { return join(tokens_.begin(), tokens_.end()); }

bool CDeviceID::IsTemplateOf(const CDeviceID& device) const {
    return tokens_.size() <= device.tokens_.size() && std::equal(tokens_.begin(), tokens_.end(), device.tokens_.begin());
}

std::string as_token(std::string_view text) {
    std::string token;
    if (text.empty() || is_digit(text.front())) token = "_";
    for (const char c : text) token += is_letter(c) || is_digit(c) ? c : '_';
    return token;
}

}  // namespace CLProtocol
