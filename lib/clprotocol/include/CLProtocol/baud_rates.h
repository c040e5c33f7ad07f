/// The transfer rates of Camera Link's serial line. A set of them is a mask with one bit a rate: the serial libraries of frame
/// grabbers, the drivers of cameras, and the cameras' own registers all use the same bits.
#pragma once

#include <array>
#include <cstdint>

namespace CLProtocol {

struct BaudRate {
    std::uint32_t bit;
    unsigned bits_per_second;
};

/// In the order of their bits. A mask may have other bits too, which mean nothing here.
inline constexpr std::array<BaudRate, 8> baud_rates{
    {{0x01, 9600}, {0x02, 19200}, {0x04, 38400}, {0x08, 57600}, {0x10, 115200}, {0x20, 230400}, {0x40, 460800}, {0x80, 921600}}};

/// What every port starts with, and every camera after power-up.
inline constexpr BaudRate slowest_rate = baud_rates.front();

/// 0 for what is not exactly one of the bits.
constexpr unsigned bits_per_second_of(std::uint32_t bit) {
    for (const BaudRate& rate : baud_rates)
        if (rate.bit == bit) return rate.bits_per_second;
    return 0;
}

}  // namespace CLProtocol
