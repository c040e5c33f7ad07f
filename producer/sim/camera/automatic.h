/// Exposure, gain and white balance that the camera sets itself.
#pragma once

#include "renderer.h"

namespace kivsim {

/// Takes a step towards the wanted brightness and colour after a frame of these settings. A function that runs once switches
/// itself off when it is there, or when it can do no more.
void adjust_automatic(RegisterFile& registers, const Brightness& seen, const ImageSettings& settings);

}  // namespace kivsim
