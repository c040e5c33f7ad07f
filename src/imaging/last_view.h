/// The view window that was opened last: where image streams without a callback show their images.
///
/// One for the process, as callers know it. A window that is closed stays the last one until another is opened; showing into it
/// fails in the imaging library, which knows its own handles.
#pragma once

#include <VL.h>

namespace kiv {

void set_last_view(VL_VIEW_HANDLE view) noexcept;
/// Null before any window was opened.
VL_VIEW_HANDLE last_view() noexcept;

}  // namespace kiv
