/// The addresses of the simulated GigE Vision network. There is no network behind them: a camera whose address does not fit its
/// interface is listed, but cannot be reached until it is given one that does.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivsim {

/// Numbers as one writes them: 192.168.57.1 is 0xC0A83901.
std::string ip_text(uint32_t address);
std::string mac_text(uint64_t address);
std::optional<uint32_t> ip_of(std::string_view text);
std::optional<uint64_t> mac_of(std::string_view text);

struct NetworkPort {
    uint32_t ip = 0, subnet_mask = 0xFFFFFF00, gateway = 0;
    uint64_t mac = 0;

    bool Reaches(uint32_t other) const { return (ip & subnet_mask) == (other & subnet_mask) && other != ip; }
};

}  // namespace kivsim
