/// From names to record numbers.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "record/records.h"

namespace kiv::genapi {

/// The names stand in the records; the table holds numbers only.
class NameTable {
public:
    void Reserve(size_t count);
    /// The number that had the name before; `nothing` when the name is new and now belongs to `index`.
    uint32_t Add(uint32_t index, const std::vector<Record>& records);
    /// `nothing` when there is none.
    uint32_t Find(std::string_view name, const std::vector<Record>& records) const noexcept;

private:
    std::vector<uint32_t> slots_;  // a power of two, at most half of it in use
};

}  // namespace kiv::genapi
