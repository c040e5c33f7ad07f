#include "runtime/node.h"

#include <algorithm>
#include <unordered_set>

#include "GenApi/i_enumeration.h"
#include "runtime/access_reason.h"

namespace kiv::genapi {

using namespace GenApi;
using GenICam::AccessException;
using GenICam::LogicalErrorException;
using GenICam::RuntimeException;

// ---- numbers of other nodes ----

template <>
int64_t read_from<int64_t>(Node& node) {
    return node.ReadInteger();
}
template <>
double read_from<double>(Node& node) {
    return node.ReadFloat();
}

namespace {

[[noreturn]] void refuse(Node& node, std::string_view what) {
    throw LogicalErrorException(
        "A node of kind " + std::string(name_of(node.GetRecord().element)) + " has no " + std::string(what) + ".", node.Place());
}

}  // namespace

int64_t Node::ReadInteger() { refuse(*this, "value that is a number"); }
double Node::ReadFloat() { refuse(*this, "value that is a number"); }
std::string Node::ReadString() { refuse(*this, "value that is a text"); }
void Node::WriteInteger(int64_t, bool) { refuse(*this, "value that is a number"); }
void Node::WriteFloat(double, bool) { refuse(*this, "value that is a number"); }
void Node::WriteString(std::string_view, bool) { refuse(*this, "value that is a text"); }
Range<int64_t> Node::IntegerLimits() { refuse(*this, "value that is a number"); }
Range<double> Node::FloatLimits() { refuse(*this, "value that is a number"); }
int64_t Node::LongestString() { refuse(*this, "value that is a text"); }

// ---- access ----

const std::string* Node::Fault() const {
    const auto found = engine_.faults.find(this);
    return found == engine_.faults.end() ? nullptr : &found->second;
}

void Node::RefuseValue() const {
    const auto* fault = Fault();
    throw RuntimeException(fault ? "The description of the node is faulty: " + *fault
                                 : "Nodes of kind " + std::string(name_of(GetRecord().element)) + " are not supported.",
                           Place());
}

Node::Truth Node::Ask(Node& condition) {
    try {
        const auto mode = condition.Mode();
        if (!IsReadable(mode) && mode != _CycleDetectAccesMode) return Truth::Unknown;
        return condition.ReadTruth() ? Truth::Yes : Truth::No;
    } catch (const std::exception&) {
        condition.engine_.evaluator.tainted = true;  // it may be readable the next time
        return Truth::Unknown;
    }
}

EAccessMode Node::WorkOutMode() {
    if (Fault()) return NI;
    if (!conditions_) return Combine(Combine(SourceMode(), described_), imposed_);
    for (auto* condition : {conditions_->implemented, conditions_->available}) {
        const auto truth = condition ? Ask(*condition) : Truth::Yes;
        if (truth == Truth::No && condition == conditions_->implemented) return NI;
        if (truth != Truth::Yes) return NA;
    }
    const auto mode = Combine(Combine(SourceMode(), described_), imposed_);
    if (!conditions_->locked || !IsWritable(mode) || Ask(*conditions_->locked) != Truth::Yes) return mode;
    return mode == RW ? RO : NA;
}

EAccessMode Node::Mode() {
    Asked(facet::mode);
    if (engine_.states.Has(index_, kept::mode)) return mode_;
    if (evaluating_ & static_cast<uint8_t>(Question::Mode)) {
        engine_.evaluator.tainted = true;
        return _CycleDetectAccesMode;
    }
    const Evaluation step(*this, Question::Mode);
    const Taint taint(engine_.evaluator);
    const auto mode = WorkOutMode();
    if (taint.IsClean()) {
        mode_ = mode;
        engine_.states.Keep(index_, kept::mode | (IsReadable(mode) ? kept::readable : 0));
    }
    return mode;
}

std::string Node::OwnObstacle(bool forWriting) const {
    switch (GetRecord().element) {
        case Element::IntSwissKnife:
        case Element::SwissKnife:
            return forWriting ? "is computed by a formula." : "";
        case Element::Category:
        case Element::EnumEntry:
            return forWriting ? "is of kind " + std::string(name_of(GetRecord().element)) + "." : "";
        default:
            return {};
    }
}

namespace {

std::string refusal(Node& node, const char* text, bool forWriting) {
    const auto reason = access_reason(node, forWriting);
    return reason.empty() ? text : std::string(text) + " " + reason;
}

}  // namespace

void Node::RequireReadable() {
    if (!IsReadable(Mode())) throw AccessException(refusal(*this, "Node is not readable.", false), Place());
}

void Node::RequireWritable() {
    if (!IsWritable(Mode())) throw AccessException(refusal(*this, "Node is not writable.", true), Place());
}

EAccessMode Node::AccessModeFromOutside() const {
    auto& self = Changeable();
    {
        const AutoLock hold(engine_.lock);
        if (engine_.states.Has(index_, kept::mode)) return mode_;
    }
    try {
        return self.Run("GetAccessMode", [&] { return self.Mode(); });
    } catch (const std::exception&) {
        return NA;  // asking for the mode is not to fail
    }
}

void Node::ImposeAccessMode(EAccessMode mode) {
    Run("ImposeAccessMode", [&] {
        imposed_ = mode;
        engine_.Changed(index_, facet::mode);
    });
}

void Node::ImposeVisibility(EVisibility visibility) {
    Run("ImposeVisibility", [&] {
        imposedVisibility_ = visibility;
        engine_.Changed(index_, facet::all);
    });
}

void Node::CheckErrors() {
    const Bypass bypass(engine_.evaluator, true);
    for (const auto& property : engine_.table.Properties(GetRecord())) {
        if (property.tag != Tag::pError) continue;
        auto* error = dynamic_cast<IEnumeration*>(Target(&property));
        if (!error || Target(&property)->ReadInteger() == 0) continue;
        auto* entry = error->GetCurrentEntry();
        const auto* node = entry ? entry->GetNode() : nullptr;
        throw RuntimeException(node ? std::string(node->GetDisplayName()) + " : " + std::string(node->GetToolTip())
                                    : "The device reports the error " + std::to_string(Target(&property)->ReadInteger()) + ".",
                               Place());
    }
}

// ---- invalidation and callbacks ----

bool Node::IsFresh() {
    if (IsValueFresh()) return true;
    const Evaluation step(*this, Question::Freshness);
    return IsSourceFresh();
}

void Node::InvalidateNode() {
    Run("InvalidateNode", [&] { engine_.Outdated(index_); });
}

CallbackHandleType Node::RegisterCallback(CNodeCallback* callback) {
    std::unique_ptr<CNodeCallback> owned(callback);
    if (!owned) throw GenICam::InvalidArgumentException("The callback is a null pointer.", {Name(), "RegisterCallback"});
    const AutoLock hold(engine_.lock);
    return engine_.AddCallback(*this, std::move(owned));
}

bool Node::DeregisterCallback(CallbackHandleType handle) {
    const AutoLock hold(engine_.lock);
    return engine_.RemoveCallback(*this, handle);
}

// ---- selectors ----

bool Node::IsSelector() const {
    constexpr int deepest = 256;
    const Node* node = this;
    for (int depth = 0; node && depth < deepest; ++depth, node = node->Target(Tag::pValue))
        if (node->Find(Tag::pSelected)) return true;
    return false;
}

/// The node's own list, then that of the node that it shows, and so on.
void Node::GetSelectedFeatures(FeatureList_t& features) const {
    features.clear();
    constexpr int deepest = 256;
    std::unordered_set<const Node*> seen;
    const Node* node = this;
    for (int depth = 0; node && depth < deepest; ++depth, node = node->Target(Tag::pValue)) {
        for (const auto& property : engine_.table.Properties(node->GetRecord())) {
            if (property.tag != Tag::pSelected) continue;
            auto* target = Target(&property);
            auto* value = target ? target->Value() : nullptr;
            if (value && seen.insert(target).second) features.push_back(value);
        }
    }
}

void Node::GetSelectingFeatures(FeatureList_t& features) const {
    features.clear();
    if (engine_.selecting.empty()) return;
    for (const auto index : engine_.selecting[index_])
        if (auto* value = engine_.nodes[index]->Value()) features.push_back(value);
}

}  // namespace kiv::genapi
