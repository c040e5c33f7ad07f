// Any text as a formula: compiles and runs, or says why not.

#include <string_view>

#include "formula/formula.h"
#include "fuzz_target.h"

using kiv::genapi::Formula;
using kiv::genapi::FormulaError;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    static constexpr std::string_view variables[] = {"A", "B.Max"};
    static constexpr kiv::genapi::FormulaText constants[] = {{"K", "0x10"}, {"H", "-0.5"}};
    // The second half of the input is what a sub-expression says, so that it can use itself, too.
    const kiv::genapi::FormulaText expressions[] = {{"S", text.substr(size / 2)}, {"T", "A ? S : 1"}};
    const kiv::genapi::FormulaNames names{variables, constants, expressions};
    const int64_t integers[] = {-3, INT64_MAX};
    const double reals[] = {0.25, -1e300};
    for (std::string_view formula : {text, text.substr(0, size / 2)}) {
        try {
            Formula::Compile(formula, Formula::Mode::Integer, names).RunInteger(integers);
        } catch (const FormulaError&) {
        }
        try {
            Formula::Compile(formula, Formula::Mode::Float, names).RunFloat(reals);
        } catch (const FormulaError&) {
        }
    }
    return 0;
}
