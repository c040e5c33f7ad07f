// The arithmetic of formulas: one set of operations for 64-bit integers, one for double, under the same names.
//
// Nothing here has undefined behaviour, whatever the operands: integers wrap, shifts beyond the width give what shifting bit by
// bit would give. What has no result (a division by zero among integers, a double too large for a bit operation) throws.
#pragma once

#include <cmath>
#include <cstdint>

#include "formula/formula.h"

namespace kiv::genapi {

/// `value` without its fraction. Throws where it is no number or does not fit.
int64_t integer_of(double value, uint32_t column);
/// Halves away from zero; `decimals` digits after the point are kept, before it where negative.
double round_to(double value, double decimals);
double apply(Function function, double value);

struct IntegerArithmetic {
    using Number = int64_t;

    static uint64_t Bits(int64_t a) { return static_cast<uint64_t>(a); }
    static int64_t Add(int64_t a, int64_t b) { return static_cast<int64_t>(Bits(a) + Bits(b)); }
    static int64_t Subtract(int64_t a, int64_t b) { return static_cast<int64_t>(Bits(a) - Bits(b)); }
    static int64_t Multiply(int64_t a, int64_t b) { return static_cast<int64_t>(Bits(a) * Bits(b)); }
    static int64_t Negate(int64_t a) { return static_cast<int64_t>(0 - Bits(a)); }
    static int64_t Divide(int64_t a, int64_t b, uint32_t column);
    static int64_t Modulo(int64_t a, int64_t b, uint32_t column);
    static int64_t Power(int64_t base, int64_t exponent);
    static int64_t And(int64_t a, int64_t b, uint32_t) { return a & b; }
    static int64_t Or(int64_t a, int64_t b, uint32_t) { return a | b; }
    static int64_t Xor(int64_t a, int64_t b, uint32_t) { return a ^ b; }
    static int64_t Complement(int64_t a, uint32_t) { return ~a; }
    static int64_t ShiftLeft(int64_t a, int64_t count, uint32_t) {
        return count < 0 || count > 63 ? 0 : static_cast<int64_t>(Bits(a) << count);
    }
    static int64_t ShiftRight(int64_t a, int64_t count, uint32_t) { return a >> (count < 0 || count > 63 ? 63 : count); }
    static int64_t Round(int64_t a, int64_t decimals, uint32_t column);
    static int64_t Call(Function function, int64_t a, uint32_t column);
};

struct FloatArithmetic {
    using Number = double;
    using Int = IntegerArithmetic;

    static double Add(double a, double b) { return a + b; }
    static double Subtract(double a, double b) { return a - b; }
    static double Multiply(double a, double b) { return a * b; }
    static double Negate(double a) { return -a; }
    // Infinite where b is zero: only the result of the whole formula must be finite.
    static double Divide(double a, double b, uint32_t) { return a / b; }
    static double Modulo(double a, double b, uint32_t column);
    static double Power(double base, double exponent) { return std::pow(base, exponent); }
    static double And(double a, double b, uint32_t column);
    static double Or(double a, double b, uint32_t column);
    static double Xor(double a, double b, uint32_t column);
    static double Complement(double a, uint32_t column);
    static double ShiftLeft(double a, double count, uint32_t column);
    static double ShiftRight(double a, double count, uint32_t column);
    static double Round(double a, double decimals, uint32_t) { return round_to(a, decimals); }
    static double Call(Function function, double a, uint32_t) { return apply(function, a); }
};

}  // namespace kiv::genapi
