// Turns the text of a formula into steps.
//
// Operators that wait for their right side stand on a list of the compiler's own instead of the call stack, so that the depth
// of a formula is bounded by what is allowed and not by the thread's stack. Only sub-expressions recurse, and they are counted.
#pragma once

#include <vector>

#include "formula/formula_lexer.h"
#include "formula/formula_names.h"

namespace kiv::genapi {

class FormulaCompiler {
public:
    FormulaCompiler(Formula::Mode mode, const FormulaNames& names);

    Formula Compile(std::string_view text);

private:
    enum class Waits : uint8_t {
        Bottom,   ///< below everything of one text
        Open,     ///< a bracket that is not closed yet
        Call,     ///< likewise, behind the name of a function
        Then,     ///< a condition, until its ':'
        Else,     ///< behind the ':', until the end of the right branch
        Logical,  ///< && or ||, whose right side may be skipped
        Binary,
        Unary,
    };
    struct Waiting {
        Waits what;
        uint8_t level = 0;  ///< 0 for what only its own mark ends
        Opcode code = {};
        Function function = {};
        uint8_t arguments = 0;  ///< of a call: begun so far
        uint8_t mostArguments = 0;
        uint32_t column = 0;
        uint32_t jump = 0;  ///< the step whose target is not known yet
    };

    void CompileText(std::string_view text);
    /// Both return whether a value is expected next.
    bool TakeValue(const Token& token, FormulaLexer& lexer);
    bool TakeOperator(const Token& token);

    bool TakeName(const Token& token, FormulaLexer& lexer);
    bool TakeNumberName(const Token& token, double value, bool opened, FormulaLexer& lexer);
    void TakeExpression(const FormulaText& expression, uint32_t column);
    void TakeBinary(const Token& token);
    void TakeQuestion(const Token& token);
    void TakeColon(const Token& token);
    void TakeClose(const Token& token);
    void TakeComma(const Token& token);

    void Wait(const Waiting& waiting);
    /// Finishes what binds tighter than `level`, and what binds as tight unless `rightFirst`.
    void FinishAbove(uint8_t level, bool rightFirst = false);
    void FinishLast();

    void Push(Step step, uint32_t column);
    uint32_t Emit(Step step);
    void EmitLiteral(uint64_t bits, uint32_t column);
    /// The step at `jump` goes on at the next step to come.
    void LandHere(uint32_t jump);

    Formula::Mode mode_;
    const FormulaNames& names_;
    FormulaNameTable table_;
    std::vector<Step> program_;
    std::vector<Waiting> waiting_;
    std::vector<bool> slotUsed_;
    uint32_t stackDepth_ = 0;
    uint32_t brackets_ = 0;
    uint32_t expressionDepth_ = 0;
    size_t charactersLeft_;
};

}  // namespace kiv::genapi
