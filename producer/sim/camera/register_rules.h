/// Which values a register takes, where that hangs on other registers or on more than a range.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "register_file.h"

namespace kivsim {

/// Whether element `index` takes these bytes, with the other registers as they are.
bool takes_value(const RegisterFile& registers, Reg reg, uint32_t index, std::span<const std::byte> bytes);

/// Whether every register that can be written holds a value that it takes.
bool all_values_valid(const RegisterFile& registers);

/// After a change of the binning: size and offset are brought back into the limits.
void fit_region(RegisterFile& registers);

}  // namespace kivsim
