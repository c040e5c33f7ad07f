#include "record/merge_records.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "GenICam/exceptions.h"

namespace kiv::genapi {

namespace {

/// A node with all that stands inside it: entries, formulas of its address.
struct Group {
    RecordTable* table;
    size_t first, end;

    const Record& Head() const { return table->records[first]; }
};

std::vector<Group> groups_of(RecordTable& table) {
    std::vector<Group> groups;
    for (size_t i = 0; i < table.records.size(); ++i) {
        if (!table.records[i].isInner || groups.empty()) groups.push_back({&table, i, i});
        groups.back().end = i + 1;
    }
    return groups;
}

class Merger {
public:
    explicit Merger(RecordTable& target) : target_(target) { records_.reserve(target.records.size()); }

    /// Entries know their enumeration by its place, which is another one now.
    void Put(const Group& group) {
        const auto place = static_cast<uint32_t>(records_.size());
        for (size_t i = group.first; i < group.end; ++i) {
            auto record = group.table->records[i];
            if (record.owner != nothing) record.owner = place + (record.owner - static_cast<uint32_t>(group.first));
            if (group.table != &target_) {
                const auto properties = group.table->Properties(record);
                record.firstProperty = static_cast<uint32_t>(target_.properties.size());
                target_.properties.insert(target_.properties.end(), properties.begin(), properties.end());
            }
            records_.push_back(record);
        }
    }

    void PutUnion(const Group& category, const Group& more) {
        auto record = category.Head();
        std::vector<Property> properties;
        std::unordered_set<std::string_view> listed;
        for (const auto& property : category.table->Properties(record)) {
            properties.push_back(property);
            if (property.tag == Tag::pFeature) listed.insert(property.Text());
        }
        for (const auto& property : more.table->Properties(more.Head()))
            if (property.tag == Tag::pFeature && listed.insert(property.Text()).second) properties.push_back(property);
        record.firstProperty = static_cast<uint32_t>(target_.properties.size());
        record.propertyCount = static_cast<uint32_t>(properties.size());
        target_.properties.insert(target_.properties.end(), properties.begin(), properties.end());
        records_.push_back(record);
    }

    void Finish() { target_.records = std::move(records_); }

private:
    RecordTable& target_;
    std::vector<Record> records_;
};

}  // namespace

void merge_records(RecordTable& target, std::unique_ptr<RecordTable> injected) {
    const auto own = groups_of(target), added = groups_of(*injected);
    std::unordered_map<std::string_view, const Group*> addedByName;
    for (const auto& group : added) addedByName.emplace(group.Head().name, &group);
    std::unordered_set<const Group*> met;
    Merger merger(target);
    for (const auto& group : own) {
        const auto found = addedByName.find(group.Head().name);
        if (found == addedByName.end()) {
            merger.Put(group);
            continue;
        }
        const auto& other = *found->second;
        met.insert(&other);
        const int advantage = other.Head().mergePriority - group.Head().mergePriority;
        if (group.Head().element == Element::Category && other.Head().element == Element::Category)
            merger.PutUnion(group, other);
        else if (advantage != 0)
            merger.Put(advantage > 0 ? other : group);
        else
            throw GenICam::RuntimeException("Both descriptions have a node '" + std::string(group.Head().name) +
                                            "', and neither has the higher MergePriority.");
    }
    for (const auto& group : added)
        if (!met.contains(&group)) merger.Put(group);
    merger.Finish();
    target.faults.insert(target.faults.end(), injected->faults.begin(), injected->faults.end());
    target.merged = std::move(injected);
}

}  // namespace kiv::genapi
