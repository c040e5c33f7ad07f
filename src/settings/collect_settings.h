/// Reading all settings out of a camera.
#pragma once

#include <GenApi/i_node_map.h>

#include "settings/setting.h"

namespace kiv {

/// Which features are settings.
enum class SaveMode { streamable_only, all };

/// The mode that suits a camera: whether it says anywhere what is streamable.
SaveMode suitable_save_mode(const GenApi::INodeMap& map);

/// Walks the category "Root". Selectors are stepped through all their values, and have their former value again when this returns
/// or throws. Throws GenICam exceptions; errors in single entries of a selecting enumeration go to `record` and the entries that
/// follow are still tried.
Settings collect_settings(GenApi::INodeMap& map, SaveMode mode, const RecordError& record);

}  // namespace kiv
