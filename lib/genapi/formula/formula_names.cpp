#include "formula/formula_names.h"

#include <algorithm>
#include <numbers>

namespace kiv::genapi {

namespace {

constexpr FunctionEntry functions[] = {
    {"SGN", Function::Sgn, 1},     {"NEG", Function::Neg, 1},     {"ABS", Function::Abs, 1},     {"SQRT", Function::Sqrt, 1},
    {"EXP", Function::Exp, 1},     {"LN", Function::Ln, 1},       {"LG", Function::Lg, 1},       {"SIN", Function::Sin, 1},
    {"COS", Function::Cos, 1},     {"TAN", Function::Tan, 1},     {"ASIN", Function::Asin, 1},   {"ACOS", Function::Acos, 1},
    {"ATAN", Function::Atan, 1},   {"TRUNC", Function::Trunc, 1}, {"FLOOR", Function::Floor, 1}, {"CEIL", Function::Ceil, 1},
    {"ROUND", Function::Round, 2},
};

struct NumberName {
    std::string_view name;
    double value;
};
constexpr NumberName numberNames[] = {{"E", std::numbers::e}, {"PI", std::numbers::pi}};

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool same_in_any_case(std::string_view name, std::string_view upperCase) {
    return std::ranges::equal(name, upperCase, {}, upper);
}

}  // namespace

FormulaNameTable::FormulaNameTable(const FormulaNames& names) : names_(names) {
    size_t count = names.variables.size() + names.constants.size() + names.expressions.size();
    if (count < hashFrom) return;
    hash_.reserve(count);
    auto add = [this](std::string_view name, NameKind kind, size_t index) {
        hash_.try_emplace(name, FoundName{kind, static_cast<uint32_t>(index)});
    };
    for (size_t i = 0; i < names.variables.size(); ++i) add(names.variables[i], NameKind::Variable, i);
    for (size_t i = 0; i < names.constants.size(); ++i) add(names.constants[i].name, NameKind::Constant, i);
    for (size_t i = 0; i < names.expressions.size(); ++i) add(names.expressions[i].name, NameKind::Expression, i);
}

FoundName FormulaNameTable::Find(std::string_view name) const {
    if (!hash_.empty()) {
        auto found = hash_.find(name);
        return found == hash_.end() ? FoundName{} : found->second;
    }
    for (size_t i = 0; i < names_.variables.size(); ++i)
        if (names_.variables[i] == name) return {NameKind::Variable, static_cast<uint32_t>(i)};
    for (size_t i = 0; i < names_.constants.size(); ++i)
        if (names_.constants[i].name == name) return {NameKind::Constant, static_cast<uint32_t>(i)};
    for (size_t i = 0; i < names_.expressions.size(); ++i)
        if (names_.expressions[i].name == name) return {NameKind::Expression, static_cast<uint32_t>(i)};
    return {};
}

const FunctionEntry* find_function(std::string_view name) {
    auto* found = std::ranges::find_if(functions, [name](auto& entry) { return same_in_any_case(name, entry.name); });
    return found == std::end(functions) ? nullptr : found;
}

const double* find_number_name(std::string_view name) {
    auto* found = std::ranges::find_if(numberNames, [name](auto& entry) { return same_in_any_case(name, entry.name); });
    return found == std::end(numberNames) ? nullptr : &found->value;
}

}  // namespace kiv::genapi
