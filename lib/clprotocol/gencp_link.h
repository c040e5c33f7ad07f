/// Reads and writes a camera's memory over a serial line: one command at a time, repeated when its answer does not come.
///
/// Whatever the line does (silence, noise, answers to others, endless requests for patience) a command ends after
/// `longest_command` at the latest. Silence is a TimeoutException, a camera's refusal a RefusedException. Lengths are those of
/// one packet.
#pragma once

#include <GenICam/exceptions.h>

#include <chrono>
#include <string>

#include "CLProtocol/serial.h"
#include "gencp_packet.h"

namespace CLProtocol {

/// The camera answered that it will not.
class RefusedException : public GenICam::RuntimeException {
public:
    RefusedException(const std::string& text, std::uint16_t status) : RuntimeException(text), status_(status) {}
    std::uint16_t Status() const noexcept { return status_; }

private:
    std::uint16_t status_;
};

class GenCpLink {
public:
    using Milliseconds = std::chrono::milliseconds;

    static constexpr Milliseconds longest_command{5000};
    /// What the protocol allows a camera, as long as it has not told its own time.
    static constexpr Milliseconds default_response_time{300};
    static constexpr std::size_t most_to_read = largest_payload;
    static constexpr std::size_t most_to_write = largest_payload - 8;

    GenCpLink(Serial& serial, const Checkpoint& checkpoint) : serial_(serial), checkpoint_(checkpoint) {}

    /// How fast the port is set; what was received so far is forgotten.
    void SetRate(unsigned bits_per_second);
    void SetResponseTime(Milliseconds time) { response_time_ = time; }
    void SetTries(int tries) { tries_ = tries; }
    /// The next command gets request 0, which a camera carries out whatever it has heard before.
    void Restart() { next_request_ = 0; }

    void Read(std::uint64_t address, std::span<std::byte> bytes);
    void Write(std::uint64_t address, std::span<const std::byte> bytes);
    std::uint64_t ReadNumber(std::uint64_t address, std::size_t size);

private:
    using Time = std::chrono::steady_clock::time_point;

    Bytes Execute(Command command, const Bytes& payload, std::size_t answer_size);
    Ack Exchange(Command command, const Bytes& payload, std::size_t answer_size, Time give_up);
    std::optional<Ack> Await(Command command, std::uint16_t request, Time deadline, Time give_up);
    void Drain(Milliseconds quiet, Time give_up);
    std::size_t ReadSlice(std::span<std::byte> bytes, Time deadline);
    std::uint16_t TakeRequest();
    Milliseconds TransferTime(std::size_t bytes) const;

    Serial& serial_;
    const Checkpoint& checkpoint_;
    AckReader reader_;
    unsigned bits_per_second_ = 9600;
    Milliseconds response_time_ = default_response_time;
    int tries_ = 4;  // the first, and three more
    std::uint16_t next_request_ = 0;
};

}  // namespace CLProtocol
