/// What a thread is inside of that a producer does not let go of: it stays in memory until the process ends.
#pragma once

#include <memory>

namespace kiv {

/// May throw std::bad_alloc.
void keep_forever(std::shared_ptr<const void> thing);

}  // namespace kiv
