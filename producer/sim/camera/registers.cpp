#include "registers.h"

#include <algorithm>

namespace kivsim {
namespace {

/// Searched instead of the table itself: all addresses together lie in few cache lines.
constexpr auto kAddresses = [] {
    std::array<uint32_t, kRegisters.size()> addresses{};
    for (size_t i = 0; i < addresses.size(); ++i) addresses[i] = static_cast<uint32_t>(kRegisters[i].address);
    return addresses;
}();

static_assert(
    [] {
        for (size_t i = 1; i < kRegisters.size(); ++i)
            if (kRegisters[i - 1].End() > kRegisters[i].address) return false;
        return kRegisters.back().End() <= UINT32_MAX;
    }(),
    "the table is searched by bisection: keep it sorted by address, without overlap");

}  // namespace

const RegisterRow* find_register(std::string_view name) {
    const auto* found =
        std::find_if(kRegisters.begin(), kRegisters.end(), [&](const RegisterRow& row) { return row.name == name; });
    return found == kRegisters.end() ? nullptr : found;
}

const RegisterRow* register_at(uint64_t address) {
    if (address > kAddresses.back() && address >= kRegisters.back().End()) return nullptr;
    const auto next = std::upper_bound(kAddresses.begin(), kAddresses.end(), static_cast<uint32_t>(address));
    if (next == kAddresses.begin()) return nullptr;
    const auto& row = kRegisters[static_cast<size_t>(next - kAddresses.begin()) - 1];
    return address < row.End() ? &row : nullptr;
}

Reg reg_of(const RegisterRow& row) { return static_cast<Reg>(&row - kRegisters.data()); }

uint32_t register_store_size() {
    const auto& last = kRegisters.back();
    return last.store + aligned_to_8(last.bytes * last.count);
}

uint64_t register_layout_hash() {
    uint64_t hash = 0xCBF29CE484222325U;
    auto mix = [&](uint64_t value) { hash = (hash ^ value) * 0x100000001B3U; };
    for (const auto& row : kRegisters) {
        for (char c : row.name) mix(static_cast<unsigned char>(c));
        for (uint64_t value : {row.address, uint64_t{row.bytes}, uint64_t{row.count}, uint64_t{row.flags}}) mix(value);
    }
    return hash;
}

}  // namespace kivsim
