/// Asking the system not to fall asleep while images are taken.
///
/// A wish: without a power service to ask, nothing happens. Neither call blocks for longer than about 200 ms.
#pragma once

namespace kiv::platform {

/// From now on, until let_system_sleep. Asking twice is asking once.
void keep_system_awake() noexcept;
void let_system_sleep() noexcept;

}  // namespace kiv::platform
