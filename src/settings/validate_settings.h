/// Comparing settings with what a camera would take, before they are written.
#pragma once

#include <GenApi/i_node_map.h>

#include <string>

#include "settings/setting.h"

namespace kiv {

struct Validation {
    bool has_errors = false;
    bool has_warnings = false;
    std::string text;  ///< a finding a line; cut after 10,000 characters
};

/// Checks each setting in order. Selectors are written on the way, so that what follows is checked under them, and are left where
/// the settings put them. Findings also go to the debugger output. GenICam errors go to `record` and end the check of their
/// setting.
Validation validate_settings(GenApi::INodeMap& map, const Settings& settings, const RecordError& record);

}  // namespace kiv
