/// Encoded files are built in memory and written in one step, so that no half file can be left behind.
#pragma once

#include <cstddef>
#include <vector>

namespace kiv::vl {

using EncodedFile = std::vector<std::byte>;

}  // namespace kiv::vl
