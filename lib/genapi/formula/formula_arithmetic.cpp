#include "formula/formula_arithmetic.h"

#include <limits>

namespace kiv::genapi {

namespace {

constexpr double twoTo63 = 9223372036854775808.0;

int sign_of(auto value) { return (value > 0) - (value < 0); }

}  // namespace

int64_t integer_of(double value, uint32_t column) {
    if (value >= -twoTo63 && value < twoTo63) return static_cast<int64_t>(value);
    throw FormulaError("a value is no number or does not fit into 64 bits", column);
}

double round_to(double value, double decimals) {
    decimals = std::trunc(decimals);
    if (decimals == 0) return std::round(value);
    // Beyond this a double has no such digit, and the scale itself would overflow.
    if (!(std::abs(decimals) <= 300)) return decimals < 0 ? 0.0 : value;
    // Scaling by a power of ten with a positive exponent only, because the negative ones are not exact.
    double scale = std::pow(10.0, std::abs(decimals));
    double scaled = decimals > 0 ? value * scale : value / scale;
    if (!std::isfinite(scaled)) return value;
    double rounded = std::round(scaled);
    return decimals > 0 ? rounded / scale : rounded * scale;
}

double apply(Function function, double value) {
    switch (function) {
        case Function::Sgn:
            return sign_of(value);
        case Function::Neg:
            return -value;
        case Function::Abs:
            return std::abs(value);
        case Function::Sqrt:
            return std::sqrt(value);
        case Function::Exp:
            return std::exp(value);
        case Function::Ln:
            return std::log(value);
        case Function::Lg:
            return std::log10(value);
        case Function::Sin:
            return std::sin(value);
        case Function::Cos:
            return std::cos(value);
        case Function::Tan:
            return std::tan(value);
        case Function::Asin:
            return std::asin(value);
        case Function::Acos:
            return std::acos(value);
        case Function::Atan:
            return std::atan(value);
        case Function::Trunc:
            return std::trunc(value);
        case Function::Floor:
            return std::floor(value);
        case Function::Ceil:
            return std::ceil(value);
        case Function::Round:
            return std::round(value);
    }
    return std::numeric_limits<double>::quiet_NaN();
}

int64_t IntegerArithmetic::Divide(int64_t a, int64_t b, uint32_t column) {
    if (b == 0) throw FormulaError("division by zero", column);
    return b == -1 ? Negate(a) : a / b;  // the lowest number has no positive counterpart: it wraps
}

int64_t IntegerArithmetic::Modulo(int64_t a, int64_t b, uint32_t column) {
    if (b == 0) throw FormulaError("modulo by zero", column);
    return b == -1 ? 0 : a % b;
}

int64_t IntegerArithmetic::Power(int64_t base, int64_t exponent) {
    if (exponent < 0) return 0;
    int64_t result = 1;
    for (; exponent != 0; exponent >>= 1) {
        if (exponent & 1) result = Multiply(result, base);
        base = Multiply(base, base);
    }
    return result;
}

int64_t IntegerArithmetic::Round(int64_t a, int64_t decimals, uint32_t column) {
    return decimals >= 0 ? a : integer_of(round_to(static_cast<double>(a), static_cast<double>(decimals)), column);
}

int64_t IntegerArithmetic::Call(Function function, int64_t a, uint32_t column) {
    switch (function) {  // those that need no detour over double stay exact
        case Function::Sgn:
            return sign_of(a);
        case Function::Neg:
            return Negate(a);
        case Function::Abs:
            return a < 0 ? Negate(a) : a;
        case Function::Trunc:
        case Function::Floor:
        case Function::Ceil:
        case Function::Round:
            return a;
        default:
            return integer_of(apply(function, static_cast<double>(a)), column);
    }
}

double FloatArithmetic::Modulo(double a, double b, uint32_t column) {
    return static_cast<double>(Int::Modulo(integer_of(a, column), integer_of(b, column), column));
}

double FloatArithmetic::And(double a, double b, uint32_t column) {
    return static_cast<double>(integer_of(a, column) & integer_of(b, column));
}

double FloatArithmetic::Or(double a, double b, uint32_t column) {
    return static_cast<double>(integer_of(a, column) | integer_of(b, column));
}

double FloatArithmetic::Xor(double a, double b, uint32_t column) {
    return static_cast<double>(integer_of(a, column) ^ integer_of(b, column));
}

double FloatArithmetic::Complement(double a, uint32_t column) { return static_cast<double>(~integer_of(a, column)); }

double FloatArithmetic::ShiftLeft(double a, double count, uint32_t column) {
    return static_cast<double>(Int::ShiftLeft(integer_of(a, column), integer_of(count, column), column));
}

double FloatArithmetic::ShiftRight(double a, double count, uint32_t column) {
    return static_cast<double>(Int::ShiftRight(integer_of(a, column), integer_of(count, column), column));
}

}  // namespace kiv::genapi
