#include "link/name_table.h"

#include <functional>

namespace kiv::genapi {

void NameTable::Reserve(size_t count) {
    size_t size = 16;
    while (size < count * 2) size *= 2;
    slots_.assign(size, nothing);
}

uint32_t NameTable::Add(uint32_t index, const std::vector<Record>& records) {
    const auto name = records[index].name;
    const auto mask = slots_.size() - 1;
    auto slot = std::hash<std::string_view>()(name) & mask;
    for (; slots_[slot] != nothing; slot = (slot + 1) & mask)
        if (records[slots_[slot]].name == name) return slots_[slot];
    slots_[slot] = index;
    return nothing;
}

uint32_t NameTable::Find(std::string_view name, const std::vector<Record>& records) const noexcept {
    const auto mask = slots_.size() - 1;
    for (auto slot = std::hash<std::string_view>()(name) & mask; slots_[slot] != nothing; slot = (slot + 1) & mask)
        if (records[slots_[slot]].name == name) return slots_[slot];
    return nothing;
}

}  // namespace kiv::genapi
