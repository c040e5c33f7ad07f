#include "gencp_link.h"

#include <kiv/log/text.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "line_log.h"

namespace CLProtocol {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// For the system, and for adapters that gather bytes before they hand them on.
constexpr milliseconds margin{150};
/// At least so long a line is listened to before it counts as quiet.
constexpr milliseconds shortest_quiet{10};
/// How long one waits without asking the checkpoint.
constexpr milliseconds slice{20};

struct StatusName {
    std::uint16_t status;
    const char* name;
    bool worth_repeating;  // a fault of the transfer, or of the moment
};
constexpr StatusName status_names[] = {{0x8001, "NOT_IMPLEMENTED", false},
                                       {0x8002, "INVALID_PARAMETER", false},
                                       {0x8003, "INVALID_ADDRESS", false},
                                       {0x8004, "WRITE_PROTECT", false},
                                       {0x8005, "BAD_ALIGNMENT", false},
                                       {0x8006, "ACCESS_DENIED", false},
                                       {0x8007, "BUSY", true},
                                       {0x800B, "MSG_TIMEOUT", true},
                                       {0x800E, "INVALID_HEADER", true},
                                       {0x800F, "WRONG_CONFIG", false},
                                       {0x8FFF, "ERROR", true}};

const StatusName* find_status(std::uint16_t status) {
    const auto* const row = std::ranges::find(status_names, status, &StatusName::status);
    return row == std::end(status_names) ? nullptr : row;
}

std::string operation(Command command, std::span<const std::byte> payload) {
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%s at 0x%llX", command == Command::read_memory ? "reading" : "writing",
                  static_cast<unsigned long long>(number_at(payload, 0, 8)));
    return text.data();
}

std::string refusal(Command command, std::span<const std::byte> payload, std::uint16_t status) {
    std::array<char, 8> number;
    std::snprintf(number.data(), number.size(), "0x%04X", static_cast<unsigned>(status));
    const StatusName* const known = find_status(status);
    return "the camera refuses " + operation(command, payload) + ": status " + number.data() +
           (known ? std::string(" ") + known->name : "");
}

std::string answer_text(const Ack& ack) {
    return "answer to request " + std::to_string(ack.request) + ": " + kiv::log::hex(ack.command) + ", status " +
           kiv::log::hex(ack.status) + ": " + kiv::log::hex_bytes(ack.payload);
}

bool is_error(std::uint16_t status) { return (status & 0x8000) != 0; }  // without that bit it is a warning

}  // namespace

void GenCpLink::SetRate(unsigned bits_per_second) {
    bits_per_second_ = bits_per_second;
    serial_.Discard();
    reader_.Clear();
}

milliseconds GenCpLink::TransferTime(std::size_t bytes) const {
    return milliseconds(bytes * 10 * 1000 / bits_per_second_ + 1);  // a start and a stop bit with each byte
}

std::uint16_t GenCpLink::TakeRequest() {
    const std::uint16_t request = next_request_++;
    if (next_request_ == 0) next_request_ = 1;
    return request;
}

std::size_t GenCpLink::ReadSlice(std::span<std::byte> bytes, Time deadline) {
    checkpoint_();
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    return serial_.ReadSome(bytes, std::clamp(left, milliseconds(0), slice));
}

/// Waits until the line is quiet for so long: a late or broken answer is not to be taken for the one to come.
void GenCpLink::Drain(milliseconds quiet, Time give_up) {
    const Time enough = std::min(give_up, Clock::now() + 4 * quiet);  // a line that never is quiet is tried as it is
    std::array<std::byte, 256> bytes;
    for (Time silence = Clock::now() + quiet; Clock::now() < std::min(silence, enough);)
        if (ReadSlice(bytes, silence) > 0) silence = Clock::now() + quiet;
    serial_.Discard();
    reader_.Clear();
}

std::optional<Ack> GenCpLink::Await(Command command, std::uint16_t request, Time deadline, Time give_up) {
    const auto answer = static_cast<std::uint16_t>(static_cast<std::uint16_t>(command) | 1);
    std::array<std::byte, 256> bytes;
    for (;;) {
        while (auto ack = reader_.Next()) {
            if (log_wanted(Level::debug)) log_line(Level::debug, answer_text(*ack));
            if (ack->request != request) continue;  // an answer to an earlier one, late
            if (ack->command == answer) return ack;
            if (ack->command == pending_ack && ack->payload.size() == 4)
                deadline = std::min(give_up, Clock::now() + margin + milliseconds(number_at(ack->payload, 2, 2)));
        }
        if (Clock::now() >= deadline) return std::nullopt;
        reader_.Add(std::span(bytes).first(ReadSlice(bytes, deadline)));
    }
}

Ack GenCpLink::Exchange(Command command, const Bytes& payload, std::size_t answer_size, Time give_up) {
    const std::uint16_t request = TakeRequest();
    const std::size_t sent = header_size + payload.size(), received = header_size + answer_size;
    const milliseconds timeout = TransferTime(sent) + response_time_ + TransferTime(received) + margin;
    for (int attempt = 0; attempt < tries_ && Clock::now() < give_up; ++attempt) {
        checkpoint_();
        if (attempt > 0) Drain(TransferTime(received) + shortest_quiet, give_up);
        checkpoint_();
        const Bytes packet = command_packet(command, request, payload, attempt > 0);
        if (log_wanted(Level::debug))
            log_line(Level::debug, operation(command, payload) + ", request " + std::to_string(request) + ", attempt " +
                                       std::to_string(attempt + 1) + ": " + kiv::log::hex_bytes(packet));
        serial_.Write(packet, TransferTime(sent) + margin);
        if (auto ack = Await(command, request, std::min(give_up, Clock::now() + timeout), give_up)) return *ack;
    }
    throw GenICam::TimeoutException("no answer to " + operation(command, payload));
}

Bytes GenCpLink::Execute(Command command, const Bytes& payload, std::size_t answer_size) {
    const Time give_up = Clock::now() + longest_command;
    for (int attempt = 1;; ++attempt) {
        Ack ack = Exchange(command, payload, answer_size, give_up);
        if (!is_error(ack.status)) {
            if (command == Command::read_memory && ack.payload.size() != answer_size)
                throw GenICam::RuntimeException(operation(command, payload) + " gave " + std::to_string(ack.payload.size()) +
                                                " bytes instead of " + std::to_string(answer_size));
            return std::move(ack.payload);
        }
        const StatusName* const known = find_status(ack.status);
        if (attempt >= tries_ || !known || !known->worth_repeating || Clock::now() >= give_up)
            throw RefusedException(refusal(command, payload, ack.status), ack.status);
        // As a new command: to the same request the camera would only repeat what it said.
        Drain(std::max(response_time_, TransferTime(header_size + answer_size) + shortest_quiet), give_up);
    }
}

void GenCpLink::Read(std::uint64_t address, std::span<std::byte> bytes) {
    Bytes payload;
    append(payload, address, 8);
    append(payload, 0, 2);
    append(payload, bytes.size(), 2);
    std::ranges::copy(Execute(Command::read_memory, payload, bytes.size()), bytes.begin());
}

void GenCpLink::Write(std::uint64_t address, std::span<const std::byte> bytes) {
    Bytes payload;
    append(payload, address, 8);
    payload.insert(payload.end(), bytes.begin(), bytes.end());
    if (next_request_ == 0) TakeRequest();  // request 0 is for reading only
    Execute(Command::write_memory, payload, 4);
}

std::uint64_t GenCpLink::ReadNumber(std::uint64_t address, std::size_t size) {
    std::array<std::byte, 8> bytes;
    Read(address, std::span(bytes).first(size));
    return number_at(bytes, 0, size);
}

}  // namespace CLProtocol
