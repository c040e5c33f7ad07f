#include "formula/formula_compiler.h"

#include <bit>
#include <string>

#include "formula/formula_arithmetic.h"

namespace kiv::genapi {

namespace {

// Far above what descriptions have (the longest formulas are tables of a few hundred conditions), far below what hurts.
constexpr size_t mostSteps = 32768;
constexpr size_t mostCharacters = 1 << 20;  // with the text of a sub-expression counted as often as it is used
constexpr uint32_t mostBrackets = 1024;
constexpr uint32_t mostExpressionDepth = 16;

std::string quoted(std::string_view text) { return "'" + std::string(text.substr(0, 80)) + "'"; }

}  // namespace

Formula Formula::Compile(std::string_view text, Mode mode, const FormulaNames& names) {
    return FormulaCompiler(mode, names).Compile(text);
}

FormulaCompiler::FormulaCompiler(Formula::Mode mode, const FormulaNames& names)
    : mode_(mode), names_(names), table_(names), slotUsed_(names.variables.size()), charactersLeft_(mostCharacters) {
    program_.reserve(16);
    waiting_.reserve(8);
}

Formula FormulaCompiler::Compile(std::string_view text) {
    CompileText(text);
    std::vector<uint32_t> used;
    for (size_t slot = 0; slot < slotUsed_.size(); ++slot)
        if (slotUsed_[slot]) used.push_back(static_cast<uint32_t>(slot));
    program_.shrink_to_fit();
    return Formula(mode_, std::move(program_), std::move(used));
}

void FormulaCompiler::CompileText(std::string_view text) {
    if (text.size() > charactersLeft_) throw FormulaError("the formula with its sub-expressions is too long");
    charactersLeft_ -= text.size();
    Wait({.what = Waits::Bottom, .column = 1});
    FormulaLexer lexer(text);
    bool wantsValue = true;
    bool begun = false;
    for (Token token = lexer.Next(); token.kind != TokenKind::End || wantsValue; token = lexer.Next(), begun = true) {
        if (token.kind == TokenKind::End)
            throw FormulaError(begun ? "the formula ends where a value is missing" : "the formula is empty", token.column);
        wantsValue = wantsValue ? TakeValue(token, lexer) : TakeOperator(token);
    }
    FinishAbove(0);
    const Waiting& last = waiting_.back();
    if (last.what == Waits::Then) throw FormulaError("a '?' without its ':'", last.column);
    if (last.what != Waits::Bottom) throw FormulaError("a bracket that is never closed", last.column);
    waiting_.pop_back();
}

bool FormulaCompiler::TakeValue(const Token& token, FormulaLexer& lexer) {
    switch (token.kind) {
        case TokenKind::Number:
            EmitLiteral(literal_bits(token.text, mode_, token.column), token.column);
            return false;
        case TokenKind::Name:
            return TakeName(token, lexer);
        case TokenKind::Open:
            Wait({.what = Waits::Open, .column = token.column});
            return true;
        case TokenKind::Operator:
            if (token.op->code == Opcode::Add) return true;  // a plus sign changes nothing
            if (token.op->code == Opcode::Subtract || token.op->level == unaryLevel) {
                Opcode code = token.op->code == Opcode::Subtract ? Opcode::Negate : token.op->code;
                Wait({.what = Waits::Unary, .level = unaryLevel, .code = code, .column = token.column});
                return true;
            }
            break;
        default:
            break;
    }
    throw FormulaError(quoted(token.text) + " where a value is expected", token.column);
}

bool FormulaCompiler::TakeOperator(const Token& token) {
    switch (token.kind) {
        case TokenKind::Question:
            TakeQuestion(token);
            return true;
        case TokenKind::Colon:
            TakeColon(token);
            return true;
        case TokenKind::Comma:
            TakeComma(token);
            return true;
        case TokenKind::Close:
            TakeClose(token);
            return false;
        case TokenKind::Operator:
            if (token.op->level == unaryLevel) break;
            TakeBinary(token);
            return true;
        default:
            break;
    }
    throw FormulaError(quoted(token.text) + " where an operator is expected", token.column);
}

bool FormulaCompiler::TakeName(const Token& token, FormulaLexer& lexer) {
    bool opened = lexer.TakeOpen();
    if (opened) {
        if (auto* entry = find_function(token.text)) {
            Wait({.what = Waits::Call,
                  .code = Opcode::Call,
                  .function = entry->function,
                  .arguments = 1,
                  .mostArguments = entry->mostArguments,
                  .column = token.column});
            return true;
        }
        if (auto* value = find_number_name(token.text)) return TakeNumberName(token, *value, opened, lexer);
        throw FormulaError("there is no function " + quoted(token.text), token.column);
    }
    FoundName found = table_.Find(token.text);
    switch (found.kind) {
        case NameKind::Variable:
            slotUsed_[found.index] = true;
            Push({.code = Opcode::Slot, .index = found.index}, token.column);
            return false;
        case NameKind::Constant:
            EmitLiteral(constant_bits(names_.constants[found.index], mode_, token.column), token.column);
            return false;
        case NameKind::Expression:
            TakeExpression(names_.expressions[found.index], token.column);
            return false;
        case NameKind::Unknown:
            break;
    }
    if (auto* value = find_number_name(token.text)) return TakeNumberName(token, *value, opened, lexer);
    throw FormulaError("the name " + quoted(token.text) + " is not declared", token.column);
}

bool FormulaCompiler::TakeNumberName(const Token& token, double value, bool opened, FormulaLexer& lexer) {
    if (opened && lexer.Next().kind != TokenKind::Close)
        throw FormulaError(quoted(token.text) + " takes no argument", token.column);
    bool integer = mode_ == Formula::Mode::Integer;
    EmitLiteral(integer ? static_cast<uint64_t>(integer_of(value, token.column)) : std::bit_cast<uint64_t>(value), token.column);
    return false;
}

void FormulaCompiler::TakeExpression(const FormulaText& expression, uint32_t column) {
    if (++expressionDepth_ > mostExpressionDepth)
        throw FormulaError("the expression " + quoted(expression.name) + " uses itself or others too deeply", column);
    try {
        CompileText(expression.text);
    } catch (const FormulaError& e) {
        // Said once, for the expression where it happened: the levels above would only repeat it.
        if (std::string_view(e.what()).starts_with("in the expression")) throw;
        throw FormulaError("in the expression " + quoted(expression.name) + ": " + e.what());
    }
    --expressionDepth_;
}

void FormulaCompiler::TakeBinary(const Token& token) {
    const Operator& op = *token.op;
    FinishAbove(op.level, op.level == powerLevel);
    Waiting waiting{.what = Waits::Binary, .level = op.level, .code = op.code, .column = token.column};
    if (op.code == Opcode::AndSkip || op.code == Opcode::OrSkip) {
        waiting.what = Waits::Logical;
        waiting.jump = Emit({.code = op.code});
        --stackDepth_;
    }
    Wait(waiting);
}

void FormulaCompiler::TakeQuestion(const Token& token) {
    FinishAbove(conditionalLevel, true);
    uint32_t jump = Emit({.code = Opcode::JumpIfZero});
    --stackDepth_;
    Wait({.what = Waits::Then, .column = token.column, .jump = jump});
}

void FormulaCompiler::TakeColon(const Token& token) {
    FinishAbove(0);
    Waiting& open = waiting_.back();
    if (open.what != Waits::Then) throw FormulaError("a ':' without its '?'", token.column);
    uint32_t jump = Emit({.code = Opcode::Jump});
    --stackDepth_;  // at run time only one of the branches leaves its value
    LandHere(open.jump);
    open = {.what = Waits::Else, .level = conditionalLevel, .column = token.column, .jump = jump};
}

void FormulaCompiler::TakeClose(const Token& token) {
    FinishAbove(0);
    const Waiting open = waiting_.back();
    if (open.what == Waits::Then) throw FormulaError("a '?' without its ':'", open.column);
    if (open.what == Waits::Bottom) throw FormulaError("a ')' that nothing opened", token.column);
    waiting_.pop_back();
    --brackets_;
    if (open.what == Waits::Open) return;
    if (open.arguments == 1) {
        Emit({.code = Opcode::Call, .function = open.function, .index = open.column});
        return;
    }
    Emit({.code = Opcode::Round, .index = open.column});
    --stackDepth_;
}

void FormulaCompiler::TakeComma(const Token& token) {
    FinishAbove(0);
    Waiting& open = waiting_.back();
    if (open.what != Waits::Call) throw FormulaError("a ',' outside the arguments of a function", token.column);
    if (++open.arguments > open.mostArguments) throw FormulaError("too many arguments for a function", token.column);
}

void FormulaCompiler::Wait(const Waiting& waiting) {
    bool bracket = waiting.what == Waits::Open || waiting.what == Waits::Call;
    if (bracket && ++brackets_ > mostBrackets) throw FormulaError("brackets are nested too deeply", waiting.column);
    waiting_.push_back(waiting);
}

void FormulaCompiler::FinishAbove(uint8_t level, bool rightFirst) {
    while (waiting_.back().level > level || (!rightFirst && level != 0 && waiting_.back().level == level)) FinishLast();
}

void FormulaCompiler::FinishLast() {
    const Waiting last = waiting_.back();
    waiting_.pop_back();
    switch (last.what) {
        case Waits::Unary:
            Emit({.code = last.code, .index = last.column});
            return;
        case Waits::Binary:
            Emit({.code = last.code, .index = last.column});
            --stackDepth_;
            return;
        case Waits::Logical:
            Emit({.code = Opcode::Truth});
            LandHere(last.jump);
            return;
        default:
            LandHere(last.jump);
            return;  // the end of a right branch
    }
}

void FormulaCompiler::Push(Step step, uint32_t column) {
    if (++stackDepth_ > maxStackDepth) throw FormulaError("the formula has too many intermediate results", column);
    Emit(step);
}

uint32_t FormulaCompiler::Emit(Step step) {
    if (program_.size() >= mostSteps) throw FormulaError("the formula with its sub-expressions has too many steps");
    program_.push_back(step);
    return static_cast<uint32_t>(program_.size() - 1);
}

void FormulaCompiler::EmitLiteral(uint64_t bits, uint32_t column) {
    Push({.code = Opcode::Literal, .index = column, .bits = bits}, column);
}

void FormulaCompiler::LandHere(uint32_t jump) { program_[jump].index = static_cast<uint32_t>(program_.size()); }

}  // namespace kiv::genapi
