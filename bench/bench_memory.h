// The device behind the node maps that are measured: zeros, and a few registers with values to check the features by.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace kiv::bench {

class BenchMemory {
public:
    static constexpr size_t size = 1 << 20;

    BenchMemory() : bytes_(size) {
        Put(0x10, 42);
        Put(0x14, 43);
        Put(0x18, 250);
        Put(0x20, 2);
        Put(0x24, 640);
        Put(0x28, 7);
        Put(0x2C, 7);
    }
    /// What the features over those registers show.
    static constexpr int64_t cachedInteger = 42, uncachedInteger = 43;
    static constexpr double convertedFloat = 25, oneVariable = 2, fourVariables = 158.25;

    bool Read(uint64_t address, void* buffer, uint64_t length) const {
        if (address > bytes_.size() || length > bytes_.size() - address) return false;
        std::memcpy(buffer, &bytes_[address], length);
        return true;
    }
    bool Write(uint64_t address, const void* buffer, uint64_t length) {
        if (address > bytes_.size() || length > bytes_.size() - address) return false;
        std::memcpy(&bytes_[address], buffer, length);
        return true;
    }

private:
    void Put(size_t address, uint32_t value) {
        for (size_t i = 0; i < 4; ++i) bytes_[address + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
    }
    std::vector<uint8_t> bytes_;
};

}  // namespace kiv::bench
