/// A device for descriptions that nobody has looked at: memory at every address, whose bytes come from the input.
#pragma once

#include <cstdint>
#include <cstring>
#include <unordered_map>

#include "GenApi/i_port.h"
#include "GenICam/exceptions.h"

namespace kiv::fuzz {

/// Numbers that look random and are the same for the same seed.
class Dice {
public:
    explicit Dice(uint64_t seed) : state_(seed) {}
    uint64_t Roll() {
        auto z = state_ += 0x9E3779B97F4A7C15u;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
        z = (z ^ z >> 27) * 0x94D049BB133111EBu;
        return z ^ z >> 31;
    }
    uint64_t Below(uint64_t count) { return Roll() % count; }

private:
    uint64_t state_;
};

/// A calm device keeps what is written and changes nothing by itself. A wild one shows other bytes each time, and fails now and
/// then.
class Device final : public GenApi::IPort {
public:
    Device(uint64_t seed, bool isWild) : seed_(seed), dice_(seed), isWild_(isWild) {}

    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { return GenApi::intfIPort; }

    void Read(void* buffer, int64_t address, int64_t length) override {
        Begin(address, length);
        auto* bytes = static_cast<uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i) bytes[i] = At(address, i);
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        Begin(address, length);
        const auto* bytes = static_cast<const uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i) written_[static_cast<uint64_t>(address) + static_cast<uint64_t>(i)] = bytes[i];
    }
    uint64_t Transfers() const { return transfers_; }

private:
    static constexpr int64_t longest = 256;

    void Begin(int64_t address, int64_t length) {
        ++transfers_;
        if (address > INT64_MAX - length) throw GenICam::InvalidArgumentException("The addresses end before that.");
        if (length > longest) throw GenICam::InvalidArgumentException("The transfer is too long.");
        if (isWild_ && dice_.Below(16) == 0) throw GenICam::TimeoutException("The device does not answer.");
    }
    /// Mostly zeros and small numbers, so that what is computed from them leads somewhere.
    uint8_t At(int64_t address, int64_t offset) {
        const auto place = static_cast<uint64_t>(address) + static_cast<uint64_t>(offset);
        if (isWild_) return dice_.Below(3) ? 0 : static_cast<uint8_t>(dice_.Roll());
        if (const auto found = written_.find(place); found != written_.end()) return found->second;
        Dice dice(seed_ ^ place * 0xD1342543DE82EF95u);
        return dice.Below(4) ? 0 : static_cast<uint8_t>(dice.Below(3) ? dice.Below(8) : dice.Roll());
    }

    uint64_t seed_;
    Dice dice_;
    bool isWild_;
    uint64_t transfers_ = 0;
    std::unordered_map<uint64_t, uint8_t> written_;
};

}  // namespace kiv::fuzz
