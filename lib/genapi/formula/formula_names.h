// Finds what a name in a formula stands for.
#pragma once

#include <string_view>
#include <unordered_map>

#include "formula/formula.h"

namespace kiv::genapi {

enum class NameKind : uint8_t { Unknown, Variable, Constant, Expression };

struct FoundName {
    NameKind kind = NameKind::Unknown;
    uint32_t index = 0;
};

/// The names of one formula. Real formulas have a handful, which are compared one by one; a hash is made only for many, so that
/// a description with thousands of them does not take quadratic time.
class FormulaNameTable {
public:
    explicit FormulaNameTable(const FormulaNames& names);

    FoundName Find(std::string_view name) const;

private:
    static constexpr size_t hashFrom = 24;

    const FormulaNames& names_;
    std::unordered_map<std::string_view, FoundName> hash_;
};

/// A function and how many arguments it takes.
struct FunctionEntry {
    std::string_view name;
    Function function;
    uint8_t mostArguments;
};

/// Null when there is none; upper and lower case are the same.
const FunctionEntry* find_function(std::string_view name);

/// E or PI in any case; null for every other name.
const double* find_number_name(std::string_view name);

}  // namespace kiv::genapi
