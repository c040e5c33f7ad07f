/// The imaging library as the display of image streams: the last view window, white balance by the middle of an image.
#pragma once

#include "imaging/image_display.h"

namespace kiv {

/// Makes it the process's display, unless there is one. Any thread.
void provide_view_display() noexcept;

}  // namespace kiv
