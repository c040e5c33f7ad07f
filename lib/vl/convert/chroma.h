/// Luma and colour differences to blue, green, red.
#pragma once

#include <cstddef>

#include "format/pixel_format.h"

namespace kiv::vl {

/// Converts `pixels` pixels of a Chroma format, given as components over the whole range of their type. Pixels of a group share
/// its colour. `out` has room for three components a pixel.
template <class Component>
void chroma_to_bgr(const PixelFormat& format, const Component* components, std::size_t pixels, Component* out);

}  // namespace kiv::vl
