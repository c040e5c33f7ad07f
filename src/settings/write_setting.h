/// Writing one setting, and telling the debugger output when that fails.
#pragma once

#include <GenApi/i_node.h>

#include "settings/setting.h"

namespace kiv {

/// False when the node does not take the value; GenICam errors go to `record`.
bool write_setting(GenApi::INode& node, const std::string& value, const RecordError& record);

}  // namespace kiv
