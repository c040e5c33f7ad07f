#include "kiv/platform/keep_awake.h"

#include "win32/windows_lean.h"

namespace kiv::platform {

void keep_system_awake() noexcept { SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED); }

void let_system_sleep() noexcept { SetThreadExecutionState(ES_CONTINUOUS); }

}  // namespace kiv::platform
