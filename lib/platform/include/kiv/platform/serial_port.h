/// Serial ports of the machine: bytes as they are, 8 data bits, no parity, one stop bit, no handshake.
///
/// An open port belongs to its opener alone; closing gives it back with the settings that it had before. Failures are
/// std::system_errors that name the device; a port that goes away while it is open is one too. One thread at a time.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kiv::platform {

class SerialPort {
public:
    /// Opens the device ("/dev/ttyS0", "COM3") at 9600 baud. A device that somebody else holds is "device or resource busy";
    /// what is no serial port is refused.
    explicit SerialPort(const std::string& device);
    ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// Throws when the port cannot run at so many bits per second; the former rate stays then.
    void SetRate(unsigned bits_per_second);

    /// Waits until bytes are there, and takes at most so many of them; 0 when none came in time.
    std::size_t Read(std::span<std::byte> bytes, std::chrono::milliseconds timeout);
    /// Hands all bytes to the system; throws when it does not take them in time.
    void Write(std::span<const std::byte> bytes, std::chrono::milliseconds timeout);
    /// Forgets what was received and not yet read.
    void DiscardInput();

private:
    struct Device;
    std::unique_ptr<Device> device_;
};

/// The serial ports that have hardware behind them, in the order of their names. None when the system does not tell.
std::vector<std::string> list_serial_ports();

}  // namespace kiv::platform
