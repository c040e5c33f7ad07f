/// A serial port of the system as a port on which a camera may be.
#pragma once

#include <kiv/platform/serial_port.h>

#include <system_error>

#include "CLProtocol/baud_rates.h"
#include "CLProtocol/serial.h"

namespace CLProtocol {

class SystemSerial : public Serial {
public:
    explicit SystemSerial(const std::string& device) : port_(device) {}

    std::size_t ReadSome(std::span<std::byte> bytes, std::chrono::milliseconds timeout) override {
        return port_.Read(bytes, timeout);
    }
    void Write(std::span<const std::byte> bytes, std::chrono::milliseconds timeout) override { port_.Write(bytes, timeout); }
    void Discard() override { port_.DiscardInput(); }
    void SetRate(std::uint32_t bit) override {
        port_.SetRate(bits_per_second_of(bit));
        present_ = bit;
    }

    /// The hardware is asked by trying: what a system offers and what the chip can do are two things.
    std::uint32_t SupportedRates() override {
        if (supported_ != 0) return supported_;
        for (const BaudRate& rate : baud_rates) try {
                port_.SetRate(rate.bits_per_second);
                supported_ |= rate.bit;
            } catch (const std::system_error&) {
                continue;
            }
        port_.SetRate(bits_per_second_of(present_));
        return supported_;
    }

private:
    kiv::platform::SerialPort port_;
    std::uint32_t present_ = slowest_rate.bit;
    std::uint32_t supported_ = 0;
};

}  // namespace CLProtocol
