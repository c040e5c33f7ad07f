// What a compiled formula is made of: a flat list of steps for a small stack machine.
//
// Both number types share the list; a literal is kept as the 64 bits of the type that the formula computes in.
#pragma once

#include <cstdint>

namespace kiv::genapi {

/// What a step does. "top" is the value on top of the stack.
enum class Opcode : uint8_t {
    // values
    Literal,  ///< push the number in `bits`
    Slot,     ///< push the variable `index`
    // flow; `index` is the step to go on at, always a later one
    Jump,
    JumpIfZero,  ///< takes the top
    AndSkip,     ///< top is zero: it becomes 0 and the right side is left out; otherwise it is taken
    OrSkip,      ///< top is not zero: it becomes 1 and the right side is left out; otherwise it is taken
    Truth,       ///< top becomes 0 or 1
    // one operand
    Negate,
    Complement,
    Not,
    Call,  ///< the function `function` of the top
    // two operands: the one below the top and the top; the result replaces both
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    Power,
    And,
    Or,
    Xor,
    ShiftLeft,
    ShiftRight,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Round,  ///< ROUND(value, decimals)
};

enum class Function : uint8_t {
    Sgn,
    Neg,
    Abs,
    Sqrt,
    Exp,
    Ln,
    Lg,
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Trunc,
    Floor,
    Ceil,
    Round,
};

struct Step {
    Opcode code;
    Function function = {};
    uint32_t index = 0;  ///< slot, or step to jump to; of everything else the column in the text, for messages
    uint64_t bits = 0;
};

/// The deepest stack that a program may need; a formula that needs more is refused when it is compiled.
inline constexpr uint32_t maxStackDepth = 128;

}  // namespace kiv::genapi
