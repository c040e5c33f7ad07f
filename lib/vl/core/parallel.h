/// Work on the lines of an image, by several threads where that is worth it and allowed.
#pragma once

#include <cstdint>
#include <functional>

namespace kiv::vl {

/// Calls `work(first, last)` for runs of lines that together are all of 0 ... lines. `pixels` tells how much work it is.
/// The first exception of a run is thrown on.
void in_parallel(std::uint32_t lines, std::uint64_t pixels, const std::function<void(std::uint32_t, std::uint32_t)>& work);

/// For the whole process; the libraries underneath follow.
void enable_parallel(bool enable);

}  // namespace kiv::vl
