/// The descriptions of the modules that a scripted producer has at first, and where the camera's registers are.
#pragma once

#include <cstdint>
#include <string>

namespace scripted {

/// A module that has nothing but its port.
std::string plain_description(const std::string& port_name);

/// The camera: one node or two for each thing that a node can be.
extern const char camera_description[];

/// Addresses of the camera's registers; all little endian.
namespace reg {
constexpr std::uint64_t width = 0x10, height = 0x14, pixel_format = 0x18, pattern = 0x1C, flag = 0x20, gain = 0x24,
                        counter = 0x28, model = 0x30, user_name = 0x40, blob = 0x50, command = 0x60, gain_raw = 0x64,
                        write_only = 0x68, selector = 0x6C, level = 0x70, masked = 0x80, params_locked = 0x84,
                        payload_size = 0x88, start = 0x8C, stop = 0x90, polled = 0x94;
constexpr std::uint64_t size = 0x1000;     ///< the whole register space
constexpr std::uint64_t nowhere = 0x9000;  ///< the node Faulty lives here, outside of it
}  // namespace reg

}  // namespace scripted
