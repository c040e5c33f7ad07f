/// The packets of the GenICam control protocol as they pass over a serial line. All numbers are big-endian.
///
/// prefix: preamble 01 00, checksum of the header, checksum of the whole, channel; header: flags or status, command, length,
/// request; then `length` bytes of payload. A checksum is the ones' complement of the ones' complement sum of 16-bit words.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace CLProtocol {

using Bytes = std::vector<std::byte>;

enum class Command : std::uint16_t { read_memory = 0x0800, write_memory = 0x0802 };

inline constexpr std::uint16_t pending_ack = 0x0805;
inline constexpr std::size_t header_size = 16;
inline constexpr std::size_t largest_packet = 1024;
inline constexpr std::size_t largest_payload = largest_packet - header_size;

/// Writes and reads big-endian numbers.
void append(Bytes& bytes, std::uint64_t number, std::size_t size);
std::uint64_t number_at(std::span<const std::byte> bytes, std::size_t offset, std::size_t size);

std::uint16_t checksum(std::span<const std::byte> bytes);

/// A command that wants an answer. A resent one says so.
Bytes command_packet(Command command, std::uint16_t request, std::span<const std::byte> payload, bool resent);

struct Ack {
    std::uint16_t status;
    std::uint16_t command;
    std::uint16_t request;
    Bytes payload;
};

/// Finds the answers of the control channel in whatever comes over the line. Noise, packets of other channels, and packets with a
/// wrong checksum are passed over.
class AckReader {
public:
    void Add(std::span<const std::byte> bytes) { pending_.insert(pending_.end(), bytes.begin(), bytes.end()); }
    /// Nothing: more bytes are needed.
    std::optional<Ack> Next();
    void Clear() { pending_.clear(); }

private:
    void Drop(std::size_t count) { pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(count)); }
    bool DropNoise();

    Bytes pending_;
};

}  // namespace CLProtocol
