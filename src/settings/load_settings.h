/// Writing a camera's settings, in order.
#pragma once

#include <GenApi/i_node_map.h>

#include "settings/setting.h"

namespace kiv {

enum class AfterFailure { go_on, stop };

/// Writes each setting with verification. One that fails is told to the debugger output; GenICam errors go to `record`.
void replay_settings(GenApi::INodeMap& map, const Settings& settings, AfterFailure after_failure, const RecordError& record);

}  // namespace kiv
