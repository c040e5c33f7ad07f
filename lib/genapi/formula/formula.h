// A formula of a description, compiled once and run often.
//
//     FormulaNames names{.variables = {{"RAW", "GAIN.Max"}}};
//     Formula formula = Formula::Compile("RAW = 0 ? GAIN.Max : RAW * 4", Formula::Mode::Integer, names);
//     int64_t value = formula.RunInteger(slots);   // slots[0] is RAW, slots[1] is GAIN.Max
//
// Integer formulas compute in 64-bit integers throughout and wrap on overflow, floating point formulas compute in double.
// Names are turned into slot numbers when the formula is compiled; running one looks up nothing and allocates nothing.
// The text may come from anywhere: compiling takes time in proportion to its length, and what is too large is refused.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "formula/formula_program.h"

namespace kiv::genapi {

/// Says what is wrong with a formula or with its numbers, and at which column of the text (from 1; 0 where there is none).
class FormulaError : public std::runtime_error {
public:
    explicit FormulaError(const std::string& what, uint32_t column = 0);
    uint32_t Column() const noexcept { return column_; }

private:
    uint32_t column_;
};

/// A name and what stands for it: the number of a constant, the text of a sub-expression.
struct FormulaText {
    std::string_view name;
    std::string_view text;
};

/// The names that a formula may use, besides functions, E and PI. Where a name stands twice, variables go before constants,
/// constants before expressions, and of two of a kind the first one counts. Needed only while compiling.
struct FormulaNames {
    std::span<const std::string_view> variables = {};  ///< the position is the slot; a name may have dots (Gain.Max)
    std::span<const FormulaText> constants = {};
    std::span<const FormulaText> expressions = {};
};

/// Immutable after compilation, so that any number of threads may run one formula.
class Formula {
public:
    enum class Mode : uint8_t { Integer, Float };

    /// Throws FormulaError.
    static Formula Compile(std::string_view text, Mode mode, const FormulaNames& names);

    Mode GetMode() const noexcept { return mode_; }
    /// The slots that the formula reads, each once, in rising order: only these need a value.
    std::span<const uint32_t> UsedSlots() const noexcept { return usedSlots_; }

    /// `slots` holds a number for every variable up to the last used one. Throws FormulaError on a division by zero, where
    /// the result of a function is no 64-bit integer, and where the formula is not an integer one.
    int64_t RunInteger(std::span<const int64_t> slots) const;
    /// Likewise; throws where the result is infinite or no number at all.
    double RunFloat(std::span<const double> slots) const;

private:
    friend class FormulaCompiler;
    Formula(Mode mode, std::vector<Step> program, std::vector<uint32_t> usedSlots);
    void RequireRunnable(Mode mode, size_t slots) const;

    std::vector<Step> program_;
    std::vector<uint32_t> usedSlots_;
    uint32_t slotsNeeded_;
    Mode mode_;
};

}  // namespace kiv::genapi
