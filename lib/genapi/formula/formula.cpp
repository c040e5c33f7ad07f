#include "formula/formula.h"

#include <array>
#include <bit>
#include <cmath>

#include "formula/formula_arithmetic.h"

namespace kiv::genapi {

namespace {

std::string with_column(const std::string& what, uint32_t column) {
    return column == 0 ? what : what + " at column " + std::to_string(column);
}

// The top of the stack is kept apart in `top`, `below` points one past the value below it. The compiler has made sure that the
// stack is deep enough, that each step finds its operands, and that jumps only go forward: nothing is checked here.
template <typename Arithmetic>
typename Arithmetic::Number run(std::span<const Step> program, const typename Arithmetic::Number* slots) {
    using A = Arithmetic;
    using Number = typename Arithmetic::Number;
    std::array<Number, maxStackDepth + 1> stack;
    Number* below = stack.data();
    Number top = 0;
    const Step* const first = program.data();
    const Step* const end = first + program.size();
    for (const Step* step = first; step != end; ++step) {
        switch (step->code) {
            case Opcode::Literal:
                *below++ = top;
                top = std::bit_cast<Number>(step->bits);
                break;
            case Opcode::Slot:
                *below++ = top;
                top = slots[step->index];
                break;
            case Opcode::Jump:
                step = first + step->index - 1;
                break;
            case Opcode::JumpIfZero:
                if (top == 0) step = first + step->index - 1;
                top = *--below;
                break;
            case Opcode::AndSkip:
                if (top != 0) {
                    top = *--below;
                } else {
                    top = 0;
                    step = first + step->index - 1;
                }
                break;
            case Opcode::OrSkip:
                if (top == 0) {
                    top = *--below;
                } else {
                    top = 1;
                    step = first + step->index - 1;
                }
                break;
            case Opcode::Truth:
                top = top != 0;
                break;
            case Opcode::Negate:
                top = A::Negate(top);
                break;
            case Opcode::Complement:
                top = A::Complement(top, step->index);
                break;
            case Opcode::Not:
                top = top == 0;
                break;
            case Opcode::Call:
                top = A::Call(step->function, top, step->index);
                break;
            case Opcode::Add:
                top = A::Add(*--below, top);
                break;
            case Opcode::Subtract:
                top = A::Subtract(*--below, top);
                break;
            case Opcode::Multiply:
                top = A::Multiply(*--below, top);
                break;
            case Opcode::Divide:
                top = A::Divide(*--below, top, step->index);
                break;
            case Opcode::Modulo:
                top = A::Modulo(*--below, top, step->index);
                break;
            case Opcode::Power:
                top = A::Power(*--below, top);
                break;
            case Opcode::And:
                top = A::And(*--below, top, step->index);
                break;
            case Opcode::Or:
                top = A::Or(*--below, top, step->index);
                break;
            case Opcode::Xor:
                top = A::Xor(*--below, top, step->index);
                break;
            case Opcode::ShiftLeft:
                top = A::ShiftLeft(*--below, top, step->index);
                break;
            case Opcode::ShiftRight:
                top = A::ShiftRight(*--below, top, step->index);
                break;
            case Opcode::Equal:
                top = *--below == top;
                break;
            case Opcode::NotEqual:
                top = *--below != top;
                break;
            case Opcode::Less:
                top = *--below < top;
                break;
            case Opcode::LessEqual:
                top = *--below <= top;
                break;
            case Opcode::Greater:
                top = *--below > top;
                break;
            case Opcode::GreaterEqual:
                top = *--below >= top;
                break;
            case Opcode::Round:
                top = A::Round(*--below, top, step->index);
                break;
        }
    }
    return top;
}

}  // namespace

FormulaError::FormulaError(const std::string& what, uint32_t column)
    : std::runtime_error(with_column(what, column)), column_(column) {}

Formula::Formula(Mode mode, std::vector<Step> program, std::vector<uint32_t> usedSlots)
    : program_(std::move(program)),
      usedSlots_(std::move(usedSlots)),
      slotsNeeded_(usedSlots_.empty() ? 0 : usedSlots_.back() + 1),
      mode_(mode) {}

void Formula::RequireRunnable(Mode mode, size_t slots) const {
    if (mode != mode_) throw FormulaError("the formula computes in the other kind of number");
    if (slots < slotsNeeded_) throw FormulaError("the formula has more variables than it was given values");
}

int64_t Formula::RunInteger(std::span<const int64_t> slots) const {
    RequireRunnable(Mode::Integer, slots.size());
    return run<IntegerArithmetic>(program_, slots.data());
}

double Formula::RunFloat(std::span<const double> slots) const {
    RequireRunnable(Mode::Float, slots.size());
    double result = run<FloatArithmetic>(program_, slots.data());
    if (!std::isfinite(result)) throw FormulaError("the result is not a finite number (division by zero, or out of range)");
    return result;
}

}  // namespace kiv::genapi
