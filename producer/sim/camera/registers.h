/// What the camera's registers are: names, addresses, kinds, limits. Their content is in RegisterFile.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "register_list.h"

namespace kivsim {

#define KIVSIM_NAME(name, ...) name,
enum class Reg : uint16_t { KIVSIM_REGISTERS(KIVSIM_NAME) Count };
#undef KIVSIM_NAME

enum class Kind : uint8_t { Uint, Int, Float, Text, Bytes };
enum class Access : uint8_t { RO, RW, WO };

enum RegisterFlags : uint8_t {
    kUserSet = 1,    ///< part of a user set
    kLasting = 2,    ///< survives a power cycle
    kFormat = 4,     ///< may not be written while images are acquired: the size of the image hangs on it
    kCommand = 8,    ///< a write of something other than 0 does something; reads as 0
    kComputed = 16,  ///< its value is worked out when it is read
    kIdentity = 32,  ///< fixed by the camera's configuration
};

struct RegisterRow {
    std::string_view name;
    uint64_t address;
    Kind kind;
    uint32_t bytes;  ///< of one element
    uint32_t count;
    Access access;
    uint8_t flags;
    double initial, min, max;
    uint32_t store;  ///< offset of the first element in the register file

    constexpr uint64_t End() const { return address + uint64_t{bytes} * count; }
    constexpr bool Has(RegisterFlags flag) const { return (flags & flag) != 0; }
};

constexpr uint32_t aligned_to_8(uint32_t size) { return (size + 7U) & ~7U; }

/// By Reg, which is the order of their addresses too. Here, so that what is asked of a certain register is known to the compiler.
inline constexpr auto kRegisters = [] {
    constexpr auto RO = Access::RO, RW = Access::RW, WO = Access::WO;
#define KIVSIM_ROW(name, address, kind, bytes, count, access, flags, initial, min, max) \
    RegisterRow{#name, address, Kind::kind, bytes, count, access, static_cast<uint8_t>(flags), initial, min, max, 0},
    std::array<RegisterRow, static_cast<size_t>(Reg::Count)> rows{{KIVSIM_REGISTERS(KIVSIM_ROW)}};
#undef KIVSIM_ROW
    uint32_t store = 0;
    for (auto& row : rows) {
        row.store = store;
        store += aligned_to_8(row.bytes * row.count);
    }
    return rows;
}();

/// No element of a register has more bytes.
inline constexpr uint32_t kLargestElement = [] {
    uint32_t largest = 0;
    for (const auto& row : kRegisters) largest = row.bytes > largest ? row.bytes : largest;
    return largest;
}();

/// The properties of a register.
constexpr const RegisterRow& row_of(Reg reg) { return kRegisters[static_cast<size_t>(reg)]; }
/// Null when there is no register of that name.
const RegisterRow* find_register(std::string_view name);
/// The register that contains the address, or null.
const RegisterRow* register_at(uint64_t address);
Reg reg_of(const RegisterRow& row);

/// Bytes that all registers take together, each aligned to 8.
uint32_t register_store_size();
/// Changes when the list of registers changes: a state file of another list is not usable.
uint64_t register_layout_hash();

}  // namespace kivsim
