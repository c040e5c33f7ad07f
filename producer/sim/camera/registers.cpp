#include "registers.h"

#include <algorithm>
#include <array>

namespace kivsim {
namespace {

constexpr auto RO = Access::RO;
constexpr auto RW = Access::RW;
constexpr auto WO = Access::WO;

constexpr size_t kRegisters = static_cast<size_t>(Reg::Count);
constexpr uint32_t align8(uint32_t size) { return (size + 7U) & ~7U; }

consteval std::array<RegisterRow, kRegisters> make_table() {
#define KIVSIM_ROW(name, address, kind, bytes, count, access, flags, initial, min, max) \
    RegisterRow{#name, address, Kind::kind, bytes, count, access, static_cast<uint8_t>(flags), initial, min, max, 0},
    std::array<RegisterRow, kRegisters> rows{{KIVSIM_REGISTERS(KIVSIM_ROW)}};
#undef KIVSIM_ROW
    uint32_t store = 0;
    for (auto& row : rows) {
        row.store = store;
        store += align8(row.bytes * row.count);
    }
    return rows;
}

constexpr auto kTable = make_table();

static_assert(
    [] {
        for (size_t i = 1; i < kTable.size(); ++i)
            if (kTable[i - 1].address + kTable[i - 1].bytes * kTable[i - 1].count > kTable[i].address) return false;
        return true;
    }(),
    "the table is searched by bisection: keep it sorted by address, without overlap");

}  // namespace

const RegisterRow& row_of(Reg reg) { return kTable[static_cast<size_t>(reg)]; }

const RegisterRow* find_register(std::string_view name) {
    const auto* found = std::find_if(kTable.begin(), kTable.end(), [&](const RegisterRow& row) { return row.name == name; });
    return found == kTable.end() ? nullptr : found;
}

const RegisterRow* register_at(uint64_t address) {
    const auto* next = std::upper_bound(kTable.begin(), kTable.end(), address,
                                        [](uint64_t value, const RegisterRow& row) { return value < row.address; });
    if (next == kTable.begin()) return nullptr;
    const auto* row = next - 1;
    return address < row->End() ? row : nullptr;
}

Reg reg_of(const RegisterRow& row) { return static_cast<Reg>(&row - kTable.data()); }

uint32_t register_store_size() {
    const auto& last = kTable.back();
    return last.store + align8(last.bytes * last.count);
}

uint64_t register_layout_hash() {
    uint64_t hash = 0xCBF29CE484222325U;
    auto mix = [&](uint64_t value) { hash = (hash ^ value) * 0x100000001B3U; };
    for (const auto& row : kTable) {
        for (char c : row.name) mix(static_cast<unsigned char>(c));
        for (uint64_t value : {row.address, uint64_t{row.bytes}, uint64_t{row.count}, uint64_t{row.flags}}) mix(value);
    }
    return hash;
}

}  // namespace kivsim
