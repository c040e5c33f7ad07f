/// The look-up tables that callers hold.
#pragma once

#include "core/handle_table.h"
#include "lut/lut.h"

namespace kiv::vl {

HandleTable<VL_LUT_HANDLE, Lut>& luts();

}  // namespace kiv::vl
