/// Finding nodes: by name, and the features of a category.
#pragma once

#include <GenApi/i_category.h>
#include <GenApi/i_node_map.h>

namespace kiv {

/// The direct features of a category in the description's order, unfiltered. False when the name is missing or no category.
bool sub_features(const GenApi::INodeMap& map, const char* category, GenApi::FeatureList_t& features);

}  // namespace kiv
