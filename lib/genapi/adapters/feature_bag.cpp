#include "GenApi/feature_bag.h"

#include <algorithm>
#include <map>
#include <vector>

#include "GenApi/i_node.h"
#include "GenApi/i_node_map.h"
#include "GenApi/i_value.h"
#include "GenApi/selector_set.h"
#include "GenICam/exceptions.h"
#include "adapters/command_bracket.h"

namespace GenApi {

namespace {

using Values = std::vector<IValue*>;

/// Features that the same selectors select; they are stored together, so that each combination is set once.
struct Group {
    Values selectors;
    Values features;
};

bool is_storable_kind(EInterfaceType type) {
    return type == intfIInteger || type == intfIFloat || type == intfIBoolean || type == intfIString || type == intfIEnumeration;
}

Values streamable_features(INodeMap& map) {
    NodeList_t nodes;
    map.GetNodes(nodes);
    Values features;
    for (INode* node : nodes)
        if (node->IsStreamable() && is_storable_kind(node->GetPrincipalInterfaceType()))
            features.push_back(static_cast<IValue*>(node->AsInterface(intfIValue)));
    std::erase(features, nullptr);
    return features;
}

Values selectors_of(IValue& feature) {
    FeatureList_t list;
    CSelectorSet(&feature).GetSelectorList(list);
    Values selectors;
    for (IValue* selector : list) selectors.push_back(selector);
    return selectors;
}

/// In the order of the description. A feature without selectors is a group of its own, at its own place.
std::vector<Group> grouped(const Values& features) {
    std::vector<Group> groups;
    std::map<Values, size_t> known;
    for (IValue* feature : features) {
        Values selectors = selectors_of(*feature);
        if (!selectors.empty()) {
            auto [place, isNew] = known.try_emplace(selectors, groups.size());
            if (!isNew) {
                groups[place->second].features.push_back(feature);
                continue;
            }
        }
        groups.push_back({std::move(selectors), {feature}});
    }
    return groups;
}

/// Every selector of a group, once, in the order of setting.
Values used_selectors(const std::vector<Group>& groups) {
    Values used;
    for (const Group& group : groups)
        for (IValue* selector : group.selectors)
            if (std::ranges::find(used, selector) == used.end()) used.push_back(selector);
    return used;
}

/// Takes entries until there are as many as allowed.
class Collector {
public:
    Collector(gcstring_vector& names, gcstring_vector& values, int limit) : names_(names), values_(values), limit_(limit) {}

    bool IsFull() const { return limit_ >= 0 && names_.size() >= static_cast<size_t>(limit_); }

    /// Leaves out what cannot be read and written now.
    void Take(IValue& feature) {
        if (IsFull() || !IsReadable(feature) || !IsWritable(feature)) return;
        gcstring text;
        try {
            text = feature.ToString();
        } catch (const GenICam::GenericException&) {
            // An enumeration may stand at a number that no entry has; every other failure is one of the device.
            if (feature.GetPrincipalInterfaceType() == intfIEnumeration) return;
            throw;
        }
        names_.push_back(feature.GetNode()->GetName());
        values_.push_back(text);
    }

private:
    gcstring_vector& names_;
    gcstring_vector& values_;
    int limit_;
};

/// Puts the selectors back when storing ends early.
class SelectorsInUse {
public:
    explicit SelectorsInUse(IValue& feature) : set_(&feature) {}
    ~SelectorsInUse() {
        try {
            if (!restored_) set_.Restore();
        } catch (...) {  // another failure is on its way already
        }
    }
    SelectorsInUse(const SelectorsInUse&) = delete;
    SelectorsInUse& operator=(const SelectorsInUse&) = delete;

    CSelectorSet& Set() { return set_; }
    void Restore() {
        restored_ = true;
        set_.Restore();
    }

private:
    CSelectorSet set_;
    bool restored_ = false;
};

void store(const Group& group, Collector& entries) {
    SelectorsInUse selectors(*group.features.front());
    FeatureList_t changed;
    for (bool more = selectors.Set().SetFirst(); more && !entries.IsFull(); more = selectors.Set().SetNext()) {
        selectors.Set().GetSelectorList(changed, true);
        for (IValue* selector : changed) entries.Take(*selector);
        for (IValue* feature : group.features) entries.Take(*feature);
    }
    selectors.Restore();
}

}  // namespace

CFeatureBag::CFeatureBag() = default;
CFeatureBag::CFeatureBag(const CFeatureBag&) = default;
CFeatureBag& CFeatureBag::operator=(const CFeatureBag&) = default;
CFeatureBag::~CFeatureBag() = default;

int64_t CFeatureBag::StoreToBag(INodeMap* map, int maxEntries) {
    if (!map) throw GenICam::InvalidArgumentException("A feature bag was given no node map to store.");
    names_.clear();
    values_.clear();
    const AutoLock lock(map->GetLock());
    const Values features = streamable_features(*map);
    if (features.empty()) return 0;
    kiv::genapi::CommandBracket persistence(*map, "DeviceFeaturePersistenceStart", "DeviceFeaturePersistenceEnd");
    const std::vector<Group> groups = grouped(features);
    const Values selectors = used_selectors(groups);
    Collector entries(names_, values_, maxEntries);
    for (const Group& group : groups) {
        // A selector stands in front of what it selects, and at the end; alone it would say nothing.
        const bool isSelector =
            group.features.size() == 1 && std::ranges::find(selectors, group.features.front()) != selectors.end();
        if (!isSelector) store(group, entries);
    }
    for (IValue* selector : selectors) entries.Take(*selector);
    persistence.End();
    return static_cast<int64_t>(names_.size());
}

void CFeatureBag::PersistFeature(IValue& feature) {
    const gcstring value = feature.ToString();
    names_.push_back(feature.GetNode()->GetName());
    values_.push_back(value);
}

void CFeatureBag::SetInfo(const gcstring& info) { name_ = info; }

bool operator==(const CFeatureBag& a, const CFeatureBag& b) { return a.names_ == b.names_ && a.values_ == b.values_; }

}  // namespace GenApi
