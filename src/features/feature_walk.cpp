#include "features/feature_walk.h"

#include "features/node_cast.h"

namespace kiv {

bool sub_features(const GenApi::INodeMap& map, const char* category, GenApi::FeatureList_t& features) {
    auto* node = map.GetNode(category);
    auto* found = node ? interface_of<GenApi::ICategory>(*node) : nullptr;
    if (!found) return false;
    found->GetFeatures(features);
    return true;
}

}  // namespace kiv
