/// A camera on the far end of a serial line: and a thread that answers the GenICam control protocol on it.
///
/// Written apart from the library's own protocol code, so that a fault there is not repeated here. It is deaf while the line's
/// rate is not its own, as a real one is.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/system/serial_line.h"

namespace kiv_test {

struct SerialCommand {
    std::uint16_t flags = 0, id = 0, request = 0;
    std::uint64_t address = 0;
    SerialBytes data;        // of a write
    std::size_t length = 0;  // of a read
    std::size_t number = 0;  // the how manieth, from 0
    bool Resent() const { return (flags & 0x8000) != 0; }
};

struct SerialReply {
    SerialBytes bytes;
    bool hang_up = false;  // afterwards the line is dead
};

/// An answer with correct checksums.
SerialBytes serial_ack(std::uint16_t status, std::uint16_t id, std::uint16_t request, const SerialBytes& payload);
void put_number(SerialBytes& bytes, std::uint64_t number, std::size_t size);

class SerialCamera {
public:
    /// Decides what is sent, given what a well-behaved camera would send. Runs on the camera's thread.
    using Manners = std::function<SerialReply(const SerialCommand& command, const SerialBytes& proper)>;

    /// Manufacturer "Kiv Ltd", family "Line", model "KIV-SIM-1", version "1.0", serial number "4F01"; 9600 of 9600 and 115200
    /// baud.
    SerialCamera();
    ~SerialCamera();
    SerialCamera(const SerialCamera&) = delete;
    SerialCamera& operator=(const SerialCamera&) = delete;

    /// What the system calls the near end of the line.
    const std::string& Path() const { return line_.Path(); }

    // Before the probe begins.
    void SetManners(Manners manners);
    void SetText(std::uint64_t address, const std::string& text);
    void SetNumber(std::uint64_t address, std::uint64_t number, std::size_t size);
    void Remove(std::uint64_t address);
    /// In bits per second and as the bit of the register.
    void SetRate(unsigned rate, std::uint32_t bit);

    /// What was heard so far.
    std::vector<SerialCommand> Commands() const;
    std::size_t BytesHeard() const;

private:
    void Run();
    /// False when the line is dead.
    bool Hear(const SerialBytes& bytes);
    bool TakeCommand(SerialCommand& command);
    SerialBytes ProperAnswer(const SerialCommand& command);

    std::mutex settings_lock_;  // for the next two; held while a command is answered
    std::map<std::uint64_t, SerialBytes> memory_;
    Manners manners_;

    SerialBytes heard_;
    std::uint16_t last_request_ = 0;
    SerialBytes last_answer_;

    mutable std::mutex lock_;
    std::vector<SerialCommand> commands_;  // under lock_
    std::size_t bytes_heard_ = 0;          // under lock_

    SerialLine line_;
    std::thread thread_;
};

}  // namespace kiv_test
