#include "gencp_packet.h"

#include <algorithm>
#include <array>

namespace CLProtocol {
namespace {

constexpr std::array preamble{std::byte{0x01}, std::byte{0x00}};
constexpr std::uint16_t request_ack = 0x4000, command_resend = 0x8000;

// Where the fields stand.
constexpr std::size_t at_header_checksum = 2, at_packet_checksum = 4, at_channel = 6, at_status = 8, at_command = 10,
                      at_length = 12, at_request = 14;

bool sums_up(std::span<const std::byte> bytes, std::uint64_t expected) {
    const std::uint16_t sum = checksum(bytes);
    // 0 and FFFF are the same number in ones' complement, and there are devices that send either.
    return sum == expected || (sum == 0 && expected == 0xFFFF) || (sum == 0xFFFF && expected == 0);
}

}  // namespace

void append(Bytes& bytes, std::uint64_t number, std::size_t size) {
    for (std::size_t i = size; i > 0; --i) bytes.push_back(static_cast<std::byte>(number >> (8 * (i - 1))));
}

std::uint64_t number_at(std::span<const std::byte> bytes, std::size_t offset, std::size_t size) {
    std::uint64_t number = 0;
    for (const std::byte byte : bytes.subspan(offset, size)) number = number << 8 | std::to_integer<std::uint64_t>(byte);
    return number;
}

std::uint16_t checksum(std::span<const std::byte> bytes) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) sum += std::to_integer<std::uint32_t>(bytes[i]) << (i % 2 == 0 ? 8 : 0);
    while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<std::uint16_t>(~sum);
}

Bytes command_packet(Command command, std::uint16_t request, std::span<const std::byte> payload, bool resent) {
    Bytes covered;  // by the second checksum
    append(covered, 0, 2);
    append(covered, resent ? request_ack | command_resend : request_ack, 2);
    append(covered, static_cast<std::uint16_t>(command), 2);
    append(covered, payload.size(), 2);
    append(covered, request, 2);
    const std::uint16_t of_header = checksum(covered);
    covered.insert(covered.end(), payload.begin(), payload.end());
    Bytes packet(preamble.begin(), preamble.end());
    append(packet, of_header, 2);
    append(packet, checksum(covered), 2);
    packet.insert(packet.end(), covered.begin(), covered.end());
    return packet;
}

/// Brings the next thing that looks like a packet to the front; false when there is nothing like it yet.
bool AckReader::DropNoise() {
    for (;;) {
        auto found = std::search(pending_.begin(), pending_.end(), preamble.begin(), preamble.end());
        if (found == pending_.end() && !pending_.empty() && pending_.back() == preamble[0]) --found;  // its first half, so far
        pending_.erase(pending_.begin(), found);
        if (pending_.size() < header_size) return false;
        const std::span header(pending_.data(), header_size);
        if (sums_up(header.subspan(at_channel), number_at(header, at_header_checksum, 2)) &&
            number_at(header, at_length, 2) <= largest_payload)
            return true;
        Drop(1);
    }
}

std::optional<Ack> AckReader::Next() {
    while (DropNoise()) {
        const std::span bytes(pending_);
        const auto length = static_cast<std::size_t>(number_at(bytes, at_length, 2));
        if (bytes.size() < header_size + length) return std::nullopt;
        const auto packet = bytes.first(header_size + length);
        if (!sums_up(packet.subspan(at_channel), number_at(packet, at_packet_checksum, 2))) {
            Drop(1);  // the length may be the wrong part of it: a whole packet may stand inside
            continue;
        }
        const auto channel = number_at(packet, at_channel, 2);
        Ack ack{static_cast<std::uint16_t>(number_at(packet, at_status, 2)),
                static_cast<std::uint16_t>(number_at(packet, at_command, 2)),
                static_cast<std::uint16_t>(number_at(packet, at_request, 2)), Bytes(packet.begin() + header_size, packet.end())};
        Drop(packet.size());
        if (channel == 0) return ack;
    }
    return std::nullopt;
}

}  // namespace CLProtocol
