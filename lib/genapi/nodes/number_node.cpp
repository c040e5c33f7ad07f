#include "nodes/number_node.h"

#include <algorithm>
#include <cmath>

#include "GenApi/i_enumeration.h"
#include "link/number_text.h"
#include "runtime/value_text.h"

namespace kiv::genapi {

using namespace GenApi;
using GenICam::LogicalErrorException;
using GenICam::OutOfRangeException;

// ---- both kinds ----

template <class T, class I, EInterfaceType k>
NumberRules<T>& NumberNode<T, I, k>::ChangeableRules() {
    if (!rules_) rules_ = &this->engine_.arena.template Make<NumberRules<T>>();
    return *rules_;
}

namespace {

/// A limit that is given by a node counts only while that node can be read. False when nothing was taken.
template <class T>
bool take(const Setting<T>& setting, T& limit) {
    auto* target = setting.Target();
    if (!setting || (target && !IsReadable(Combine(target->Mode(), RW)))) return false;
    limit = setting();
    return true;
}

}  // namespace

template <class T, class I, EInterfaceType k>
Range<T> NumberNode<T, I, k>::Limits() {
    const Evaluation step(*this, Question::Limits);
    if (!rules_) return source_->Limits(*this);
    Range<T> own;
    const bool hasMin = take(rules_->min, own.min), hasMax = take(rules_->max, own.max);
    own.hasInc = take(rules_->inc, own.inc);
    auto range = hasMin && hasMax && own.hasInc ? own : source_->Limits(*this);
    if (hasMin) range.min = own.min;
    if (hasMax) range.max = own.max;
    if (own.hasInc) range.inc = own.inc, range.hasInc = true;
    if (std::is_integral_v<T> && range.inc < 1) range.inc = 1;
    if (rules_->imposedMin) range.min = std::max(range.min, *rules_->imposedMin);
    if (rules_->imposedMax) range.max = std::min(range.max, *rules_->imposedMax);
    return range;
}

template <class T, class I, EInterfaceType k>
std::string NumberNode<T, I, k>::OriginOf(const char* name, const Setting<T> NumberRules<T>::*setting,
                                          const std::optional<T>& imposed, T limit) {
    const auto is = " " + std::string(name) + " is ";
    const auto named = [](const Node& node) { return "'" + std::string(node.Name()) + "'."; };
    if (imposed == limit) return is + "imposed by the application.";
    if (rules_ && rules_->*setting) {
        const auto* node = (rules_->*setting).Target();
        return node ? is + "the value of " + named(*node) : "";
    }
    if (auto* shown = Shown()) return is + "that of " + named(*shown);
    if (auto* converted = this->Target(Tag::pValue)) return is + "computed from that of " + named(*converted);
    return this->Find(Tag::pPort) ? is + "what the register can hold." : "";
}

template <class T, class I, EInterfaceType k>
void NumberNode<T, I, k>::RequireInRange(T value) {
    const auto range = Limits();
    using Rules = NumberRules<T>;
    const auto none = std::optional<T>();
    if (!(value <= range.max))
        throw OutOfRangeException(
            above_text(value, range.max) + OriginOf("Max", &Rules::max, rules_ ? rules_->imposedMax : none, range.max),
            this->Place());
    if (!(value >= range.min))
        throw OutOfRangeException(
            below_text(value, range.min) + OriginOf("Min", &Rules::min, rules_ ? rules_->imposedMin : none, range.min),
            this->Place());
    if constexpr (std::is_integral_v<T>) {
        const auto& valid = rules_ ? rules_->validValues : std::vector<T>();
        if (!valid.empty()) {
            if (std::find(valid.begin(), valid.end(), value) != valid.end()) return;
            throw OutOfRangeException("Value = " + number_text(value) + " is none of the valid values.", this->Place());
        }
        const auto difference = static_cast<uint64_t>(value) - static_cast<uint64_t>(range.min);
        if (difference % static_cast<uint64_t>(range.inc) != 0)
            throw OutOfRangeException("The difference between Value = " + number_text(value) +
                                          " and Min = " + number_text(range.min) + " must be dividable without rest by Inc = " +
                                          number_text(range.inc) + "." + OriginOf("Inc", &Rules::inc, none, range.inc),
                                      this->Place());
    }
}

template <class T, class I, EInterfaceType k>
void NumberNode<T, I, k>::WriteNumber(T value, bool verify) {
    const Evaluation step(*this, Question::Write);
    if (verify) RequireInRange(value);
    source_->Write(*this, value, verify);
}

template <class T, class I, EInterfaceType k>
std::vector<T> NumberNode<T, I, k>::Listed() {
    const Evaluation step(*this, Question::Limits);
    return rules_ && !rules_->validValues.empty() ? rules_->validValues : source_->Listed(*this);
}

template <class T, class I, EInterfaceType k>
EIncMode NumberNode<T, I, k>::GetIncMode() {
    return this->Run("GetIncMode", [&] {
        if (!Listed().empty()) return listIncrement;
        return Limits().hasInc ? fixedIncrement : noIncrement;
    });
}

template <class T, class I, EInterfaceType k>
T NumberNode<T, I, k>::GetInc() {
    return this->Run("GetInc", [&] {
        const auto range = Limits();
        if (!range.hasInc) throw LogicalErrorException("The node has no increment.", this->Place());
        return range.inc;
    });
}

template <class T, class I, EInterfaceType k>
std::vector<T> NumberNode<T, I, k>::GetListOfValidValues(bool bounded) {
    return this->Run("GetListOfValidValues", [&] {
        auto values = Listed();
        if (!bounded || values.empty()) return values;
        const auto range = Limits();
        std::erase_if(values, [&](T value) { return value < range.min || value > range.max; });
        return values;
    });
}

template <class T, class I, EInterfaceType k>
std::string_view NumberNode<T, I, k>::ForwardedText(Tag tag) {
    constexpr int deepest = 256;
    Node* node = this;
    for (int depth = 0; node && depth < deepest; ++depth, node = node->Shown())
        if (const auto* property = node->Find(tag)) return property->Text();
    return {};
}

template <class T, class I, EInterfaceType k>
ERepresentation NumberNode<T, I, k>::GetRepresentation() {
    return this->Run("GetRepresentation", [&] {
        auto representation = PureNumber;
        ERepresentationClass::FromString(ForwardedText(Tag::Representation), &representation);
        return representation;
    });
}

template <class T, class I, EInterfaceType k>
gcstring NumberNode<T, I, k>::GetUnit() {
    return this->Run("GetUnit", [&] { return gcstring(ForwardedText(Tag::Unit)); });
}

template <class T, class I, EInterfaceType k>
void NumberNode<T, I, k>::ImposeMin(T value) {
    this->Run("ImposeMin", [&] {
        ChangeableRules().imposedMin = value;
        this->engine_.Changed(this->Index(), facet::limits);
    });
}

template <class T, class I, EInterfaceType k>
void NumberNode<T, I, k>::ImposeMax(T value) {
    this->Run("ImposeMax", [&] {
        ChangeableRules().imposedMax = value;
        this->engine_.Changed(this->Index(), facet::limits);
    });
}

template class NumberNode<int64_t, IInteger, intfIInteger>;
template class NumberNode<double, IFloat, intfIFloat>;

// ---- integers ----

namespace {

/// The node that `node` can be cast to, as the wanted interface.
template <class Wanted>
Wanted* alias_of(const Node& node) {
    if (auto* cast = dynamic_cast<Wanted*>(node.GetCastAlias())) return cast;
    return dynamic_cast<Wanted*>(node.GetAlias());
}

}  // namespace

int64_t rounded(double value, Node& node) {
    const double whole = std::round(value);
    if (!(whole >= -0x1p63 && whole < 0x1p63))
        throw OutOfRangeException("Value = " + number_text(value) + " is no 64-bit integer.", node.Place());
    return static_cast<int64_t>(whole);
}

IFloat* IntegerNode::GetFloatAlias() { return alias_of<IFloat>(*this); }

void IntegerNode::WriteFloat(double value, bool verify) { WriteNumber(rounded(value, *this), verify); }

Range<double> IntegerNode::FloatLimits() {
    const auto range = Limits();
    return {static_cast<double>(range.min), static_cast<double>(range.max), static_cast<double>(range.inc), false};
}

std::vector<double> IntegerNode::ListedFloats() {
    const auto listed = Listed();
    return {listed.begin(), listed.end()};
}

std::string IntegerNode::CurrentText() {
    auto representation = PureNumber;
    ERepresentationClass::FromString(ForwardedText(Tag::Representation), &representation);
    return integer_text(ReadNumber(), representation);
}

void IntegerNode::SetText(std::string_view text, bool verify) {
    const auto value = integer_from_text(text);
    if (!value) RefuseText(text);
    WriteNumber(*value, verify);
}

// ---- floats ----

bool FloatNode::HasInc() {
    return Run("HasInc", [&] { return Limits().hasInc; });
}

EDisplayNotation FloatNode::GetDisplayNotation() {
    return Run("GetDisplayNotation", [&] {
        auto notation = fnAutomatic;
        EDisplayNotationClass::FromString(ForwardedText(Tag::DisplayNotation), &notation);
        return notation;
    });
}

int64_t FloatNode::GetDisplayPrecision() {
    constexpr int64_t usual = 6;
    return Run("GetDisplayPrecision", [&] { return parse_integer(ForwardedText(Tag::DisplayPrecision)).value_or(usual); });
}

IInteger* FloatNode::GetIntAlias() { return alias_of<IInteger>(*this); }
IEnumeration* FloatNode::GetEnumAlias() { return alias_of<IEnumeration>(*this); }

int64_t FloatNode::ReadInteger() { return rounded(std::trunc(ReadNumber()), *this); }

Range<int64_t> FloatNode::IntegerLimits() {
    const auto limits = Limits();
    const auto clipped = [](double value) {
        if (!(value > -0x1p63)) return INT64_MIN;
        return value < 0x1p63 ? static_cast<int64_t>(value) : INT64_MAX;
    };
    Range<int64_t> range;
    range.min = clipped(std::ceil(limits.min));
    range.max = clipped(std::floor(limits.max));
    return range;
}

std::string FloatNode::CurrentText() { return float_text(ReadNumber()); }

void FloatNode::SetText(std::string_view text, bool verify) {
    const auto value = parse_double(text);
    if (!value) RefuseText(text);
    WriteNumber(*value, verify);
}

}  // namespace kiv::genapi
