#include "transport/camera_id.h"

namespace kiv {

namespace {

constexpr std::string_view separator = " , ";
// Identifiers of producers and interfaces are handed around in 512-byte fields; what is longer cannot be one of ours.
constexpr std::size_t longest_part = 511;

std::optional<std::string_view> after(std::string_view id, std::string_view label) {
    auto start = id.find(label);
    if (start == id.npos) return std::nullopt;
    return id.substr(start + label.size());
}

std::optional<std::string> bounded(std::optional<std::string_view> text) {
    if (!text || text->size() > longest_part) return std::nullopt;
    return std::string(*text);
}

std::optional<std::string> up_to_separator(std::optional<std::string_view> text) {
    if (!text) return std::nullopt;
    return bounded(text->substr(0, text->find(separator)));
}

}  // namespace

std::optional<std::string> producer_part(std::string_view id) { return up_to_separator(after(id, "TL=>")); }
std::optional<std::string> interface_part(std::string_view id) { return up_to_separator(after(id, "INT=>")); }
std::optional<std::string> device_part(std::string_view id) { return bounded(after(id, "DEV=>")); }

std::string format(const CameraId& id) {
    std::string text = "TL=>";
    text.append(id.producer).append(separator).append("INT=>").append(id.interface_id);
    text.append(separator).append("DEV=>").append(id.device);
    return text;
}

}  // namespace kiv
