#include "settings/load_settings.h"

#include <kiv/platform/debug_output.h>

#include "features/node_value.h"
#include "settings/write_setting.h"

namespace kiv {

bool write_setting(GenApi::INode& node, const std::string& value, const RecordError& record) {
    try {
        if (set_text(node, true, value.c_str())) return true;
        platform::debug_print("K_Node_SetValueString() failed!\n");
    } catch (const GenICam::GenericException& error) {
        record(error);
        platform::debug_print("K_Node_SetValueString() failed!\n");
        platform::debug_print(std::string("Node '") + error.GetNodeName() + "' reported the following error: '" +
                              error.GetDescription() + "\n");
    }
    return false;
}

namespace {

bool replay(GenApi::INodeMap& map, const Setting& setting, const RecordError& record) try {
    auto* node = setting.feature.empty() ? nullptr : map.GetNode(setting.feature.c_str());
    if (node) return write_setting(*node, setting.value, record);
    platform::debug_print("Node '" + setting.feature + "' not found in node tree! Skipping write\n");
    return false;
} catch (const GenICam::GenericException& error) {
    record(error);
    return false;
}

}  // namespace

void replay_settings(GenApi::INodeMap& map, const Settings& settings, AfterFailure after_failure, const RecordError& record) {
    for (auto& setting : settings)
        if (!replay(map, setting, record) && after_failure == AfterFailure::stop) return;
}

}  // namespace kiv
