/// One description put into another: how a producer adds to what a device says about itself.
#pragma once

#include <memory>

#include "record/records.h"

namespace kiv::genapi {

/// What `injected` has and `target` has not is added. Of two nodes of one name the one of the higher merge priority stays;
/// categories become one that lists what either lists. Throws RuntimeException for two other nodes of equal priority.
void merge_records(RecordTable& target, std::unique_ptr<RecordTable> injected);

}  // namespace kiv::genapi
