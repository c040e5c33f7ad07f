#include "nodes/simple_nodes.h"

namespace kiv::genapi {

void CategoryNode::GetFeatures(GenApi::FeatureList_t& features) const {
    features.clear();
    for (const auto& property : engine_.table.Properties(GetRecord())) {
        if (property.tag != Tag::pFeature) continue;
        auto* feature = Target(&property);
        if (auto* value = feature ? feature->Value() : nullptr) features.push_back(value);
    }
}

void CategoryNode::SetText(std::string_view, bool) {
    throw GenICam::AccessException("Node is not writable. It " + OwnObstacle(true), Place());
}

}  // namespace kiv::genapi
