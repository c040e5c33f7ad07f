#include "lut/lut_handles.h"

namespace kiv::vl {

HandleTable<VL_LUT_HANDLE, Lut>& luts() {
    static auto& table = make_table<VL_LUT_HANDLE, Lut>("look-up table");
    return table;
}

}  // namespace kiv::vl
