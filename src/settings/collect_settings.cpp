#include "settings/collect_settings.h"

#include <GenApi/i_enumeration.h>
#include <GenApi/i_numeric.h>
#include <kiv/platform/debug_output.h>

#include <algorithm>

#include "features/node_cast.h"

namespace kiv {

namespace {

// A script of more settings than this is no use to anybody, and a selector without end must not take the memory.
constexpr std::size_t most_settings = 1'000'000;

bool may_read(GenApi::EAccessMode mode) { return mode == GenApi::RO || mode == GenApi::RW; }
bool may_write(GenApi::EAccessMode mode) { return mode == GenApi::WO || mode == GenApi::RW; }
bool is_there(GenApi::EAccessMode mode) { return mode != GenApi::NI && mode != GenApi::NA; }

/// Gives a selector its value back, whatever happened meanwhile.
class RestoredValue {
public:
    RestoredValue(GenApi::INode& node, GenApi::IValue& value) : node_(node), value_(value), former_(value.ToString()) {}
    ~RestoredValue() {
        try {
            if (may_write(node_.GetAccessMode())) value_.FromString(former_);
        } catch (const GenICam::GenericException& error) {
            platform::debug_print(std::string("Selector '") + node_.GetName().c_str() +
                                  "' could not be restored: " + error.GetDescription() + "\n");
        }
    }
    RestoredValue(const RestoredValue&) = delete;
    RestoredValue& operator=(const RestoredValue&) = delete;

private:
    GenApi::INode& node_;
    GenApi::IValue& value_;
    GenICam::gcstring former_;
};

class Walk {
public:
    Walk(SaveMode mode, const RecordError& record) : mode_(mode), record_(record) {}

    /// Begins at a category that is in nobody's list.
    void From(GenApi::INode& root, GenApi::ICategory& category) {
        path_.push_back(&root);
        GenApi::FeatureList_t features;
        category.GetFeatures(features);
        Features(features);
    }
    Settings Take() { return std::move(settings_); }

private:
    void Features(const GenApi::FeatureList_t& features) {
        for (auto* each : features)
            if (auto* node = each ? each->GetNode() : nullptr) Feature(*node, *each);
    }

    void Feature(GenApi::INode& node, GenApi::IValue& value) {
        // What selects or contains itself is in the list already.
        if (std::ranges::find(path_, &node) != path_.end() || !is_there(node.GetAccessMode())) return;
        GenICam::gcstring type, attribute;
        if (!node.GetProperty("NodeType", type, attribute)) return;
        path_.push_back(&node);
        struct Leave {
            std::vector<const GenApi::INode*>& path;
            ~Leave() { path.pop_back(); }
        } leave{path_};
        if (type == "Category") {
            GenApi::FeatureList_t features;
            if (auto* category = interface_of<GenApi::ICategory>(node)) category->GetFeatures(features);
            return Features(features);
        }
        auto* selector = interface_of<GenApi::ISelector>(node);
        if (selector && selector->IsSelector()) Selector(node, value, *selector, type);
        if (IsSetting(node)) Save(node, value);
    }

    void Selector(GenApi::INode& node, GenApi::IValue& value, GenApi::ISelector& selector, const GenICam::gcstring& type) {
        RestoredValue restored(node, value);
        GenApi::FeatureList_t selected;
        selector.GetSelectedFeatures(selected);
        if (auto* integer = type == "Integer" ? interface_of<GenApi::IInteger>(node) : nullptr)
            StepInteger(node, value, *integer, selected);
        else if (auto* enumeration = type == "Enumeration" ? interface_of<GenApi::IEnumeration>(node) : nullptr)
            StepEnumeration(node, value, *enumeration, selected);
    }

    void StepInteger(GenApi::INode& node, GenApi::IValue& value, GenApi::IInteger& integer,
                     const GenApi::FeatureList_t& selected) {
        const auto last = integer.GetMax();
        const auto step = std::max<std::int64_t>(integer.GetInc(), 1);
        for (auto v = integer.GetMin(); v <= last; v += step) {
            if (may_write(node.GetAccessMode())) integer.SetValue(v, true);
            Save(node, value);
            Features(selected);
            if (v > last - step) break;  // the next one may not be a number any more
        }
    }

    void StepEnumeration(GenApi::INode& node, GenApi::IValue& value, GenApi::IEnumeration& enumeration,
                         const GenApi::FeatureList_t& selected) {
        GenApi::NodeList_t entries;
        enumeration.GetEntries(entries);
        for (auto* each : entries) try {
                auto* entry = interface_of<GenApi::IEnumEntry>(*each);
                if (!entry || !is_there(each->GetAccessMode())) continue;
                enumeration.SetIntValue(entry->GetValue(), true);
                if (IsSetting(node)) Save(node, value);
                Features(selected);
            } catch (const GenICam::GenericException& error) {
                record_(error);
            }
    }

    bool IsSetting(GenApi::INode& node) const {
        auto mode = node.GetAccessMode();
        return may_read(mode) && may_write(mode) && (mode_ == SaveMode::all || node.IsStreamable());
    }

    void Save(GenApi::INode& node, GenApi::IValue& value) {
        if (settings_.size() == most_settings)
            throw GenICam::RuntimeException("the camera's selectors have too many values to save", "collect_settings", __LINE__);
        settings_.push_back({node.GetName().c_str(), value.ToString().c_str()});
    }

    SaveMode mode_;
    const RecordError& record_;
    Settings settings_;
    std::vector<const GenApi::INode*> path_;  // from the root to where the walk is
};

}  // namespace

SaveMode suitable_save_mode(const GenApi::INodeMap& map) {
    GenApi::NodeList_t nodes;
    map.GetNodes(nodes);
    for (auto* node : nodes)
        if (node->IsStreamable()) return SaveMode::streamable_only;
    return SaveMode::all;
}

Settings collect_settings(GenApi::INodeMap& map, SaveMode mode, const RecordError& record) {
    auto* root = map.GetNode("Root");
    auto* category = root ? interface_of<GenApi::ICategory>(*root) : nullptr;
    if (!category) throw GenICam::LogicalErrorException("NULL pointer dereferenced", "collect_settings", __LINE__);
    Walk walk(mode, record);
    walk.From(*root, *category);
    return walk.Take();
}

}  // namespace kiv
