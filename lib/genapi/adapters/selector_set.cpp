#include "GenApi/selector_set.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "GenApi/i_enumeration.h"
#include "GenApi/i_node.h"
#include "GenApi/i_numeric.h"
#include "GenICam/exceptions.h"

namespace GenApi {

namespace {

constexpr size_t mostSelectors = 16;  // also ends the walk through a description whose selectors select each other in long chains
constexpr uint64_t mostValues = 65536;

template <class Interface>
Interface* as(IBase& object, EInterfaceType type) {
    return static_cast<Interface*>(object.AsInterface(type));
}

std::vector<int64_t> values_of(IInteger& integer) {
    if (integer.GetIncMode() == listIncrement) return integer.GetListOfValidValues();
    const int64_t min = integer.GetMin();
    const int64_t max = integer.GetMax();
    const uint64_t inc = static_cast<uint64_t>(std::max<int64_t>(integer.GetInc(), 1));
    if (min > max) return {};
    const uint64_t steps = (static_cast<uint64_t>(max) - static_cast<uint64_t>(min)) / inc;
    if (steps >= mostValues) return {integer.GetValue()};
    std::vector<int64_t> values;
    for (uint64_t i = 0; i <= steps; ++i) values.push_back(static_cast<int64_t>(static_cast<uint64_t>(min) + i * inc));
    return values;
}

std::vector<int64_t> values_of(IEnumeration& enumeration) {
    NodeList_t entries;
    enumeration.GetEntries(entries);
    std::vector<int64_t> values;
    for (INode* node : entries)
        if (auto* entry = as<IEnumEntry>(*node, intfIEnumEntry); entry && IsAvailable(node)) values.push_back(entry->GetValue());
    return values;
}

/// One selector and the values that it takes in turn.
class Digit {
public:
    explicit Digit(IValue& selector) : selector_(&selector) {
        if (!IsReadable(selector) || !IsWritable(selector)) return;
        try {
            original_ = selector.ToString();
            moves_ = true;
        } catch (const GenICam::GenericException&) {  // what cannot be put back is not touched
        }
    }

    IValue* Selector() const { return selector_; }

    bool SetFirst() {
        next_ = 0;
        values_ = moves_ ? Values() : std::vector<int64_t>{};
        return moves_ ? SetNext() : true;
    }

    bool SetNext() {
        if (!moves_) return false;
        while (next_ < values_.size()) {
            if (Set(values_[next_++])) return true;
        }
        return false;
    }

    void Restore() const {
        if (moves_) selector_->FromString(original_);
    }

private:
    std::vector<int64_t> Values() const {
        if (auto* integer = as<IInteger>(*selector_, intfIInteger)) return values_of(*integer);
        if (auto* enumeration = as<IEnumeration>(*selector_, intfIEnumeration)) return values_of(*enumeration);
        if (as<IBoolean>(*selector_, intfIBoolean)) return {0, 1};
        return {};
    }

    bool Set(int64_t value) const {
        try {
            if (auto* integer = as<IInteger>(*selector_, intfIInteger))
                integer->SetValue(value);
            else if (auto* enumeration = as<IEnumeration>(*selector_, intfIEnumeration))
                enumeration->SetIntValue(value);
            else
                as<IBoolean>(*selector_, intfIBoolean)->SetValue(value != 0);
            return true;
        } catch (const GenICam::OutOfRangeException&) {  // listed, but not to be had now
            return false;
        } catch (const GenICam::InvalidArgumentException&) {
            return false;
        }
    }

    IValue* selector_;
    gcstring original_;
    std::vector<int64_t> values_;
    size_t next_ = 0;
    bool moves_ = false;
};

/// What only passes on the value of a selector counts as a selector, too; in a set it would be the same digit twice.
bool says_what_it_selects(const INode& node) {
    gcstring selected, attributes;
    return node.GetProperty("pSelected", selected, attributes);
}

/// Selectors before what they select; each once, also where they select each other.
void collect(INode* node, std::vector<INode*>& visited, std::vector<Digit>& digits) {
    auto* selected = dynamic_cast<ISelector*>(node);
    if (!selected) return;
    FeatureList_t selectors;
    selected->GetSelectingFeatures(selectors);
    for (IValue* selector : selectors) {
        INode* at = selector->GetNode();
        if (!says_what_it_selects(*at) || visited.size() > mostSelectors) continue;
        if (std::ranges::find(visited, at) != visited.end()) continue;
        visited.push_back(at);
        collect(at, visited, digits);
        digits.emplace_back(*selector);
    }
}

}  // namespace

struct CSelectorSet::Digits {
    std::vector<Digit> digits;
    size_t setFrom = 0;  // the first digit that the last move set

    /// Sets digit `at` and all behind it. A digit that has no value left makes the one before it go on.
    bool Move(size_t at, bool next) {
        setFrom = at;
        while (at < digits.size()) {
            if (next ? digits[at].SetNext() : digits[at].SetFirst()) {
                ++at;
                next = false;
                continue;
            }
            if (at == 0) return false;
            setFrom = std::min(setFrom, --at);
            next = true;
        }
        return true;
    }
};

CSelectorSet::CSelectorSet(IBase* feature) : digits_(std::make_shared<Digits>()) {
    INode* node = feature ? feature->AsNode() : nullptr;
    if (!node) throw GenICam::InvalidArgumentException("Only a node has selectors.");
    std::vector<INode*> visited{node};
    collect(node, visited, digits_->digits);
}

CSelectorSet::CSelectorSet(const CSelectorSet&) = default;
CSelectorSet& CSelectorSet::operator=(const CSelectorSet&) = default;
CSelectorSet::~CSelectorSet() = default;

bool CSelectorSet::IsEmpty() const { return digits_->digits.empty(); }

void CSelectorSet::GetSelectorList(FeatureList_t& selectors, bool incremental) const {
    selectors.clear();
    for (size_t i = incremental ? digits_->setFrom : 0; i < digits_->digits.size(); ++i)
        selectors.push_back(digits_->digits[i].Selector());
}

bool CSelectorSet::SetFirst() { return digits_->Move(0, false); }

bool CSelectorSet::SetNext() { return !IsEmpty() && digits_->Move(digits_->digits.size() - 1, true); }

void CSelectorSet::Restore() {
    std::exception_ptr failure;
    for (const Digit& digit : digits_->digits) {
        try {
            digit.Restore();
        } catch (...) {
            if (!failure) failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

gcstring CSelectorSet::ToString() const {
    gcstring text;
    for (const Digit& digit : digits_->digits) {
        if (!text.empty()) text += ',';
        text += digit.Selector()->GetNode()->GetName();
        text += '=';
        text += digit.Selector()->ToString();
    }
    return text;
}

}  // namespace GenApi
