/// Looks for cameras on the Camera Link serial ports of the machine, independently of any producer.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "transport/status.h"

namespace kiv {

/// What was found, as the caller gets it: one line for each camera in each of the texts.
struct CameraLinkFindings {
    enum Text { ports, device_ids, model_names, current_rates, supported_rates, count };
    std::array<std::string, count> texts;
};

/// No line of a text is longer, its end included; a port that would need more is passed over.
inline constexpr std::size_t longest_camera_link_line = 4095;

/// `cancel_event` names an event that somebody else holds; null or a name without an event: the probe runs to its end.
/// K_ST_NO_DATA without ports or device templates, K_ST_ABORT when cancelled: the findings are as they were then.
K_STATUS_CODES probe_camera_link(const char* cancel_event, CameraLinkFindings& findings);

/// The rates of a mask in the order of its bits, with "$" between them. Unknown bits have no word.
std::string baud_rate_words(std::uint32_t mask);

}  // namespace kiv
