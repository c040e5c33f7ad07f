/// A camera identifier is one text that names producer, interface and device:
///
///     TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_4F0001
///
/// This file takes such a text apart and puts one together. It does not know whether the parts exist. The device part runs to the
/// end of the text, so that it may hold anything, the separator included.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiv {

struct CameraId {
    std::string producer;
    std::string interface_id;
    std::string device;
};

/// Each part alone, as the open steps need them in an order of their own; nothing when its label is missing.
std::optional<std::string> producer_part(std::string_view id);
std::optional<std::string> interface_part(std::string_view id);
std::optional<std::string> device_part(std::string_view id);

std::string format(const CameraId& id);

}  // namespace kiv
