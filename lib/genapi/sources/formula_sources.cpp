#include "sources/formula_sources.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kiv::genapi {

using namespace GenApi;
using GenICam::RuntimeException;

// ---- formulas ----

template <class T>
T FormulaSet<T>::Read(Node& self, const Variable& variable) const {
    auto& node = *variable.node;
    switch (variable.part) {
        case Part::Value:
            // In a formula an enumeration is its integer, whatever number it shows as a float.
            return node.GetRecord().element == Element::Enumeration ? static_cast<T>(node.ReadInteger()) : read_from<T>(node);
        case Part::Min:
            return limits_of<T>(node).min;
        case Part::Max:
            return limits_of<T>(node).max;
        case Part::Inc:
            return limits_of<T>(node).inc;
        case Part::AccessMode:
            return static_cast<T>(node.Mode());
        case Part::Visibility:
            node.Asked(facet::all);  // an imposed visibility is told as a change of everything
            return static_cast<T>(node.GetVisibility());
        case Part::CachingMode:
            return static_cast<T>(node.GetCachingMode());
        case Part::Constant:
            return static_cast<T>(variable.constant);
    }
    throw GenICam::LogicalErrorException("A variable of the formula has no meaning.", self.Place());
}

template <class T>
const Formula& FormulaSet<T>::Compiled(Node& self, Tag tag, std::string_view operand) {
    for (const auto& program : programs_)
        if (program->tag == tag) return program->formula;
    std::vector<std::string_view> names;
    std::vector<FormulaText> constants, expressions;
    std::string_view text;
    for (const auto& property : self.Context().table.Properties(self.GetRecord())) {
        if (property.tag == Tag::pVariable) names.push_back(property.AttributeText());
        if (property.tag == Tag::Constant) constants.push_back({property.AttributeText(), property.Text()});
        if (property.tag == Tag::Expression) expressions.push_back({property.AttributeText(), property.Text()});
        if (property.tag == tag) text = property.Text();
    }
    if (!operand.empty()) names.push_back(operand);
    constexpr auto mode = std::is_integral_v<T> ? Formula::Mode::Integer : Formula::Mode::Float;
    try {
        auto formula = Formula::Compile(text, mode, {names, constants, expressions});
        programs_.push_back(std::make_unique<Program>(Program{tag, std::move(formula)}));
    } catch (const FormulaError& error) {
        throw RuntimeException("The formula \"" + std::string(text.substr(0, 200)) + "\" is faulty: " + error.what(),
                               self.Place());
    }
    return programs_.back()->formula;
}

template <class T>
void FormulaSet<T>::Compile(Node& self, Tag tag, std::string_view operand) {
    Compiled(self, tag, operand);
}

template <class T>
T FormulaSet<T>::Run(Node& self, Tag tag, std::string_view operand, T value) {
    const auto& formula = Compiled(self, tag, operand);
    std::array<T, 16> few{};
    std::vector<T> many;
    const size_t count = variables_.size() + 1;
    if (count > few.size()) many.resize(count);
    const std::span<T> slots = count > few.size() ? std::span<T>(many) : std::span<T>(few).first(count);
    for (const auto slot : formula.UsedSlots()) slots[slot] = slot < variables_.size() ? Read(self, variables_[slot]) : value;
    try {
        if constexpr (std::is_integral_v<T>)
            return formula.RunInteger(slots);
        else
            return formula.RunFloat(slots);
    } catch (const FormulaError& error) {
        throw RuntimeException(std::string("The formula has no result: ") + error.what(), self.Place());
    }
}

template <class T>
bool FormulaSet<T>::IsReadable(const Node* except) const {
    return std::all_of(variables_.begin(), variables_.end(), [&](const Variable& variable) {
        const bool isRead = variable.part == Part::Value && variable.node != except;
        return !isRead || GenApi::IsReadable(Combine(variable.node->Mode(), RW));
    });
}

template <class T>
bool FormulaSet<T>::IsFresh() const {
    return std::all_of(variables_.begin(), variables_.end(),
                       [](const Variable& variable) { return variable.part != Part::Value || variable.node->IsFresh(); });
}

// ---- converters ----

template <class T>
void ConverterSource<T>::Write(Node& self, T value, bool verify) {
    write_to(target_, formulas_.Run(self, Tag::FormulaTo, "FROM", value), verify);
}

namespace {

/// A limit that is only the end of the numbers says nothing about the device, and converting it would make a number of it.
bool is_end_of_numbers(int64_t value) { return value == INT64_MIN || value == INT64_MAX; }
bool is_end_of_numbers(double value) { return std::fabs(value) >= 0x1p63; }

}  // namespace

template <class T>
std::optional<T> ConverterSource<T>::TryFrom(Node& self, T limit) {
    if (is_end_of_numbers(limit)) return std::nullopt;
    try {
        return From(self, limit);
    } catch (const RuntimeException&) {
        return std::nullopt;  // as 1 / TO at 0: on that side there is no limit
    }
}

template <class T>
Range<T> ConverterSource<T>::Limits(Node& self) {
    const auto inner = limits_of<T>(target_);
    Range<T> range;
    if (slope_ == Varying) return range;
    const auto low = TryFrom(self, inner.min);
    const auto high = TryFrom(self, inner.max);
    const bool isProbed = low.has_value() && high.has_value() && *low != *high;
    // What the formula does is trusted more than what is said about it.
    const bool falls = isProbed ? low.value() > high.value() : slope_ == Decreasing;
    if (low) (falls ? range.max : range.min) = *low;
    if (high) (falls ? range.min : range.max) = *high;
    if constexpr (std::is_floating_point_v<T>) {
        if (isLinear_ && low && inner.inc != 0) {
            if (const auto next = TryFrom(self, inner.min + inner.inc)) range.inc = std::fabs(*next - *low), range.hasInc = true;
        }
    }
    return range;
}

template <class T>
std::vector<T> ConverterSource<T>::Listed(Node& self) {
    std::vector<T> listed;
    for (const auto value : listed_in<T>(target_))
        if (const auto converted = TryFrom(self, value)) listed.push_back(*converted);
    return listed;
}

template <class T>
void ConverterSource<T>::CompileAll(Node& self) {
    formulas_.Compile(self, Tag::FormulaFrom, "TO");
    formulas_.Compile(self, Tag::FormulaTo, "FROM");
}

template class FormulaSet<int64_t>;
template class FormulaSet<double>;
template class ConverterSource<int64_t>;
template class ConverterSource<double>;

}  // namespace kiv::genapi
