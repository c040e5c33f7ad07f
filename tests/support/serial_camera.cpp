#include "support/serial_camera.h"

#include <algorithm>
#include <array>

namespace kiv_test {
namespace {

constexpr std::uint64_t kOwnRegisters = 0x10000;

std::uint64_t number_in(const SerialBytes& bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) number = number * 256 + bytes.at(at + i);
    return number;
}

/// The checksum of the Internet protocols.
std::uint16_t sum_of(const SerialBytes& bytes, std::size_t from, std::size_t to) {
    std::uint64_t sum = 0;
    for (std::size_t i = from; i < to; i += 2) sum += bytes[i] * 256u + (i + 1 < to ? bytes[i + 1] : 0u);
    while (sum >> 16 != 0) sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<std::uint16_t>(0xFFFF - sum);
}

}  // namespace

void put_number(SerialBytes& bytes, std::uint64_t number, std::size_t size) {
    while (size-- > 0) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * size)));
}

SerialBytes serial_ack(std::uint16_t status, std::uint16_t id, std::uint16_t request, const SerialBytes& payload) {
    SerialBytes bytes{1, 0, 0, 0, 0, 0, 0, 0};
    put_number(bytes, status, 2);
    put_number(bytes, id, 2);
    put_number(bytes, payload.size(), 2);
    put_number(bytes, request, 2);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    SerialBytes sums;
    put_number(sums, sum_of(bytes, 6, 16), 2);
    put_number(sums, sum_of(bytes, 6, bytes.size()), 2);
    std::copy(sums.begin(), sums.end(), bytes.begin() + 2);
    return bytes;
}

SerialCamera::SerialCamera() {
    SetText(0x04, "Kiv Ltd");
    SetText(0x44, "KIV-SIM-1");
    SetText(0x84, "Line");
    SetText(0xC4, "1.0");
    SetText(0x144, "4F01");
    SetNumber(0x1C4, 0x302, 8);
    SetNumber(0x1CC, 50, 4);
    SetNumber(0x1D8, kOwnRegisters, 8);
    SetNumber(kOwnRegisters, 0x11, 4);
    SetRate(9600, 0x01);
    thread_ = std::thread([this] { Run(); });
}

SerialCamera::~SerialCamera() {
    line_.Stop();
    thread_.join();
}

void SerialCamera::SetManners(Manners manners) {
    std::lock_guard guard(settings_lock_);
    manners_ = std::move(manners);
}

void SerialCamera::Remove(std::uint64_t address) {
    std::lock_guard guard(settings_lock_);
    memory_.erase(address);
}

void SerialCamera::SetText(std::uint64_t address, const std::string& text) {
    std::lock_guard guard(settings_lock_);
    SerialBytes& room = memory_[address];
    room.assign(64, 0);
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), 64), room.begin());
}

void SerialCamera::SetNumber(std::uint64_t address, std::uint64_t number, std::size_t size) {
    std::lock_guard guard(settings_lock_);
    memory_[address].clear();
    put_number(memory_[address], number, size);
}

void SerialCamera::SetRate(unsigned rate, std::uint32_t bit) {
    SetNumber(kOwnRegisters + 4, bit, 4);
    line_.SetRate(rate);
}

std::vector<SerialCommand> SerialCamera::Commands() const {
    std::lock_guard guard(lock_);
    return commands_;
}

std::size_t SerialCamera::BytesHeard() const {
    std::lock_guard guard(lock_);
    return bytes_heard_;
}

void SerialCamera::Run() {
    for (SerialBytes bytes = line_.Read(); !bytes.empty(); bytes = line_.Read()) {
        {
            std::lock_guard guard(lock_);
            bytes_heard_ += bytes.size();
        }
        std::lock_guard guard(settings_lock_);
        if (line_.IsTuned() && !Hear(bytes)) return;
    }
}

bool SerialCamera::Hear(const SerialBytes& bytes) {
    heard_.insert(heard_.end(), bytes.begin(), bytes.end());
    for (SerialCommand command; TakeCommand(command);) {
        {
            std::lock_guard guard(lock_);
            command.number = commands_.size();
            commands_.push_back(command);
        }
        const SerialBytes proper = ProperAnswer(command);
        const SerialReply reply = manners_ ? manners_(command, proper) : SerialReply{proper};
        if (!line_.Write(reply.bytes)) return false;
        if (!reply.hang_up) continue;
        line_.HangUp();
        return false;
    }
    return true;
}

bool SerialCamera::TakeCommand(SerialCommand& command) {
    for (;;) {
        constexpr std::array<std::uint8_t, 2> preamble{1, 0};
        heard_.erase(heard_.begin(), std::search(heard_.begin(), heard_.end(), preamble.begin(), preamble.end()));
        if (heard_.size() < 16) return false;
        const std::size_t size = 16 + number_in(heard_, 12, 2);
        const bool header_is_right = sum_of(heard_, 6, 16) == number_in(heard_, 2, 2);
        if (header_is_right && heard_.size() < size) return false;
        if (header_is_right && sum_of(heard_, 6, size) == number_in(heard_, 4, 2) && size >= 24) break;
        heard_.erase(heard_.begin());
    }
    const std::size_t size = 16 + number_in(heard_, 12, 2);
    command.flags = static_cast<std::uint16_t>(number_in(heard_, 8, 2));
    command.id = static_cast<std::uint16_t>(number_in(heard_, 10, 2));
    command.request = static_cast<std::uint16_t>(number_in(heard_, 14, 2));
    command.address = number_in(heard_, 16, 8);
    command.length = command.id == 0x0800 && size == 28 ? number_in(heard_, 26, 2) : 0;
    command.data = {heard_.begin() + 24, heard_.begin() + static_cast<std::ptrdiff_t>(size)};
    heard_.erase(heard_.begin(), heard_.begin() + static_cast<std::ptrdiff_t>(size));
    return true;
}

SerialBytes SerialCamera::ProperAnswer(const SerialCommand& command) {
    if (command.request != 0 && command.request == last_request_) return last_answer_;
    const auto block = memory_.find(command.address);
    const auto answer = static_cast<std::uint16_t>(command.id | 1);
    last_request_ = command.request;
    if (command.id != 0x0800 && command.id != 0x0802)
        last_answer_ = serial_ack(0x8001, answer, command.request, {});
    else if (block == memory_.end() ||
             std::max(command.length, command.id == 0x0802 ? command.data.size() : 0) > block->second.size())
        last_answer_ = serial_ack(0x8003, answer, command.request, {});
    else if (command.id == 0x0800)
        last_answer_ = serial_ack(0, answer, command.request,
                                  {block->second.begin(), block->second.begin() + static_cast<std::ptrdiff_t>(command.length)});
    else {
        std::copy(command.data.begin(), command.data.end(), block->second.begin());
        last_answer_ = serial_ack(0, answer, command.request, {});
    }
    return last_answer_;
}

}  // namespace kiv_test
