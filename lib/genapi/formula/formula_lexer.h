// Takes the text of a formula apart into numbers, names, operators and brackets.
#pragma once

#include <cstdint>
#include <string_view>

#include "formula/formula.h"

namespace kiv::genapi {

/// How an operator binds and what it becomes. A higher level binds tighter.
struct Operator {
    std::string_view text;
    uint8_t level;
    Opcode code;
};

enum class TokenKind : uint8_t { Number, Name, Operator, Open, Close, Comma, Question, Colon, End };

struct Token {
    TokenKind kind = TokenKind::End;
    uint32_t column = 1;  ///< of the first character, from 1
    std::string_view text = {};
    const Operator* op = nullptr;  ///< of an operator, as one with two operands
};

class FormulaLexer {
public:
    explicit FormulaLexer(std::string_view text) : text_(text) {}

    /// End from the end of the text on. Throws FormulaError at what is no token.
    Token Next();
    /// Whether the next token opens a bracket; takes it if so.
    bool TakeOpen();

private:
    void SkipBlanks();
    std::string_view NumberText() const;

    std::string_view text_;
    size_t at_ = 0;
};

/// The value of a number token as the 64 bits of a number of `mode`; `column` is for the message.
uint64_t literal_bits(std::string_view number, Formula::Mode mode, uint32_t column);
/// Likewise of a whole text with blanks around it and perhaps a sign: the value of a constant.
uint64_t constant_bits(const FormulaText& constant, Formula::Mode mode, uint32_t column);

/// The levels that do not stand in the operator table.
inline constexpr uint8_t conditionalLevel = 1;
inline constexpr uint8_t logicalOrLevel = 2;
inline constexpr uint8_t logicalAndLevel = 3;
inline constexpr uint8_t powerLevel = 12;
inline constexpr uint8_t unaryLevel = 13;

}  // namespace kiv::genapi
