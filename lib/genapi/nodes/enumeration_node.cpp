#include "nodes/enumeration_node.h"

#include <algorithm>
#include <cmath>

#include "runtime/access_reason.h"
#include "runtime/value_text.h"

namespace kiv::genapi {

using namespace GenApi;

// ---- entries ----

/// An entry that stands outside its enumeration may say by which name it is known inside.
std::string_view EnumEntryNode::Symbolic() const {
    const auto& record = GetRecord();
    if (!record.symbolic.empty()) return record.symbolic;
    const auto text = Text(Tag::Symbolic);
    return text.empty() ? record.name : text;
}

void EnumEntryNode::SetText(std::string_view, bool) {
    throw GenICam::AccessException("Node is not writable. It " + OwnObstacle(true), Place());
}

// ---- finding entries ----

void EnumerationNode::Sort() {
    if (byValue_.size() == entries_.size()) return;
    byValue_.clear();
    for (auto* entry : entries_) byValue_.push_back({entry->value_, entry});
    byName_.assign(entries_.begin(), entries_.end());
    std::ranges::stable_sort(byValue_, {}, &ByValue::value);
    std::ranges::stable_sort(byName_, {}, &EnumEntryNode::Symbolic);
}

EnumEntryNode* EnumerationNode::Named(std::string_view symbolic) {
    Sort();
    const auto it = std::ranges::lower_bound(byName_, symbolic, {}, &EnumEntryNode::Symbolic);
    return it != byName_.end() && (*it)->Symbolic() == symbolic ? *it : nullptr;
}

EnumEntryNode* EnumerationNode::Valued(int64_t value) {
    Sort();
    const auto first = std::ranges::lower_bound(byValue_, value, {}, &ByValue::value);
    const auto end = std::find_if(first, byValue_.end(), [&](const ByValue& other) { return other.value != value; });
    if (first == end) return nullptr;
    if (end - first == 1) return first->entry;
    engine_.evaluator.tainted = true;  // the entries' modes decide, and nobody tells when they change
    const auto available =
        std::find_if(first, end, [](const ByValue& equal) { return IsAvailable(Combine(equal.entry->Mode(), RW)); });
    return (available == end ? first : available)->entry;
}

EnumEntryNode& EnumerationNode::RequiredEntry(int64_t value) {
    auto* entry = Valued(value);
    if (!entry) RefuseText(number_text(value));
    return *entry;
}

IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& symbolic) {
    const AutoLock hold(engine_.lock);
    return Named(symbolic);
}

IEnumEntry* EnumerationNode::GetEntry(int64_t value) {
    return Run("GetEntry", [&] { return Valued(value); });
}

IEnumEntry* EnumerationNode::GetCurrentEntry(bool, bool ignoreCache) {
    return RunRead("GetCurrentEntry", ignoreCache, [&] { return Valued(ReadInteger()); });
}

namespace {

/// An order in which most texts are told apart by their lengths alone.
bool shorter_or_less(std::string_view a, std::string_view b) { return a.size() != b.size() ? a.size() < b.size() : a < b; }

}  // namespace

/// The texts stand beside the entries, because finding the display name of a node means looking through its properties.
IEnumEntry* EnumerationNode::GetEntryByDisplayName(std::string_view shown) {
    const AutoLock hold(engine_.lock);
    if (byDisplayName_.empty()) {
        byDisplayName_.reserve(entries_.size());
        for (auto* entry : entries_) byDisplayName_.push_back({entry->DisplayName(), entry});
        std::ranges::stable_sort(byDisplayName_, shorter_or_less, &Displayed::text);
    }
    const auto it = std::ranges::lower_bound(byDisplayName_, shown, shorter_or_less, &Displayed::text);
    return it != byDisplayName_.end() && it->text == shown ? it->entry : nullptr;
}

void EnumerationNode::GetEntries(NodeList_t& entries) {
    entries.clear();
    entries.reserve(entries_.size());
    for (auto* entry : entries_) entries.push_back(entry);
}

void EnumerationNode::GetSymbolics(StringList_t& symbolics) {
    symbolics.clear();
    Run("GetSymbolics", [&] {
        for (auto* entry : entries_)
            if (IsAvailable(Combine(entry->Mode(), RW))) symbolics.push_back(entry->Symbolic());
    });
}

// ---- the value ----

int64_t EnumerationNode::ReadInteger() {
    if (!hasSelfClearing_) return kept_.Read(*this, *source_);
    const Bypass bypass(engine_.evaluator, isSelfClearing_);
    const auto value = kept_.Read(*this, *source_);
    const auto it = std::find_if(entries_.begin(), entries_.end(), [&](auto* entry) { return entry->value_ == value; });
    isSelfClearing_ = it != entries_.end() && (*it)->isSelfClearing_;
    if (isSelfClearing_) ForgetValue();
    return value;
}

double EnumerationNode::ReadFloat() {
    const auto value = ReadInteger();
    const auto* entry = Valued(value);
    return entry ? entry->numericValue_ : static_cast<double>(value);
}

int64_t EnumerationNode::GetIntValue(bool verify, bool ignoreCache) {
    if (!verify && !ignoreCache) {
        const AutoLock hold(engine_.lock);
        if (IsReadyToRead()) return kept_.Last();
    }
    return RunRead("GetIntValue", ignoreCache, [&] {
        const auto value = ReadInteger();
        if (verify) RequiredEntry(value);
        return value;
    });
}

void EnumerationNode::Write(EnumEntryNode& entry, bool verify) {
    const Evaluation step(*this, Question::Write);
    if (verify && !IsAvailable(Combine(entry.Mode(), RW)))
        throw GenICam::AccessException("Node is not writable. The entry '" + std::string(entry.Symbolic()) +
                                           "' cannot be chosen. " + access_reason(entry, false),
                                       Place());
    source_->Write(*this, entry.value_, verify);
    isSelfClearing_ = entry.isSelfClearing_;
}

void EnumerationNode::WriteInteger(int64_t value, bool verify) { Write(RequiredEntry(value), verify); }

void EnumerationNode::WriteFloat(double value, bool verify) {
    EnumEntryNode* nearest = nullptr;
    for (auto* entry : entries_) {
        if (!IsAvailable(Combine(entry->Mode(), RW))) continue;
        if (!nearest || std::fabs(entry->numericValue_ - value) < std::fabs(nearest->numericValue_ - value)) nearest = entry;
    }
    if (!nearest) throw GenICam::AccessException("Node is not writable. It has no entry that is available.", Place());
    Write(*nearest, verify);
}

void EnumerationNode::SetIntValue(int64_t value, bool verify) {
    RunWrite("SetIntValue", [&] { WriteInteger(value, verify); });
}

Range<int64_t> EnumerationNode::IntegerLimits() {
    Range<int64_t> range;
    if (entries_.empty()) return range;
    Sort();
    range.min = byValue_.front().value;
    range.max = byValue_.back().value;
    return range;
}

Range<double> EnumerationNode::FloatLimits() {
    Range<double> range;
    if (entries_.empty()) return range;
    const auto [least, most] = std::minmax_element(entries_.begin(), entries_.end(),
                                                   [](auto* a, auto* b) { return a->numericValue_ < b->numericValue_; });
    range.min = (*least)->numericValue_;
    range.max = (*most)->numericValue_;
    return range;
}

std::string EnumerationNode::CurrentText() {
    const auto value = ReadInteger();
    const auto* entry = Valued(value);
    if (!entry)
        throw GenICam::RuntimeException("The current value " + number_text(value) + " belongs to no entry of the enumeration.",
                                        Place());
    return std::string(entry->Symbolic());
}

void EnumerationNode::SetText(std::string_view text, bool verify) {
    auto* entry = Named(text);
    if (!entry) RefuseText(text);
    Write(*entry, verify);
}

void EnumerationNode::VerifyValue() { RequiredEntry(ReadInteger()); }

}  // namespace kiv::genapi
