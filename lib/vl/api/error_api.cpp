#include <VL.h>

#include "core/error.h"

const char* VL_CALL vlGetLastErrorText(void) { return kiv::vl::last_error_text(); }
