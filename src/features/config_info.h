/// The identity that a device description states, as texts.
#pragma once

#include <GenApi/i_node_map.h>

#include <cstdint>
#include <string>

namespace kiv {

/// `info` is one of K_CONFIG_INFO_..., which the caller has checked.
std::string config_info(GenApi::IDeviceInfo& device, std::uint32_t info);

}  // namespace kiv
