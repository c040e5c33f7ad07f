// What formulas refuse, with which message, and that nothing in a text makes the compiler crash, hang or recurse.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "formula/formula.h"

namespace kiv::genapi {
namespace {

using testing::HasSubstr;

struct Refusal {
    std::string message;
    uint32_t column = 0;
};

Refusal refusal(std::string_view text, Formula::Mode mode = Formula::Mode::Integer, const FormulaNames& names = {}) {
    try {
        Formula formula = Formula::Compile(text, mode, names);
        if (mode == Formula::Mode::Integer)
            formula.RunInteger({});
        else
            formula.RunFloat({});
    } catch (const FormulaError& e) {
        return {e.what(), e.Column()};
    }
    return {"accepted"};
}

std::string repeated(std::string_view piece, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) text += piece;
    return text;
}

TEST(FormulaError, SaysWhatIsWrongAndWhere) {
    struct {
        const char* text;
        const char* message;
        uint32_t column;
    } const rows[] = {
        {"", "empty", 1},
        {"  \n ", "empty", 5},
        {"1 +", "a value is missing", 4},
        {"1 + * 2", "'*' where a value is expected", 5},
        {"1 2", "'2' where an operator is expected", 3},
        {"(1 + 2", "never closed", 1},
        {"1 + 2)", "')' that nothing opened", 6},
        {"()", "')' where a value is expected", 2},
        {"1 ? 2", "'?' without its ':'", 3},
        {"(1 ? 2)", "'?' without its ':'", 4},
        {"1 : 2", "':' without its '?'", 3},
        {"1 ? (2 : 3)", "':' without its '?'", 8},
        {"1, 2", "outside the arguments", 2},
        {"ABS(1, 2)", "too many arguments", 6},
        {"ROUND(1, 2, 3)", "too many arguments", 11},
        {"SIN()", "')' where a value is expected", 5},
        {"ABS(1", "never closed", 1},
        {"PI(1)", "takes no argument", 1},
        {"FP(1)", "no function 'FP'", 1},
        {"1 + Gain", "'Gain' is not declared", 5},
        {"ABS + 1", "'ABS' is not declared", 1},
        {"1 $ 2", "means nothing", 3},
        {"\xC2\xB5 + 1", "means nothing", 1},
        {"1.2.3", "a number with '.'", 1},
        {"12px", "a number with 'p'", 1},
        {"1e", "a number with 'e'", 1},
        {"0x", "no number that fits", 1},
        {"0x1FFFFFFFFFFFFFFFF", "no number that fits", 1},
        {"99999999999999999999", "no number that fits", 1},
        {"1e400", "no number that fits", 1},
        {"1e19", "does not fit into 64 bits", 1},
        {"5 ~ 3", "'~' where an operator is expected", 3},
        {"10 / (3 - 3)", "division by zero", 4},
        {"10 % 0", "modulo by zero", 4},
        {"SQRT(-1)", "does not fit into 64 bits", 1},
        {"ABS(1) + EXP(99)", "does not fit into 64 bits", 10},
    };
    for (auto& row : rows) {
        SCOPED_TRACE(row.text);
        Refusal got = refusal(row.text);
        EXPECT_THAT(got.message, HasSubstr(row.message));
        EXPECT_EQ(row.column, got.column);
        EXPECT_THAT(got.message, HasSubstr("at column " + std::to_string(row.column)));
    }
}

TEST(FormulaError, FloatsThatHaveNoResult) {
    for (const char* text : {"1/0", "-1/0", "0/0", "LN(0)", "SQRT(-1)", "1e308*10", "ASIN(2)"}) {
        SCOPED_TRACE(text);
        EXPECT_THAT(refusal(text, Formula::Mode::Float).message, HasSubstr("not a finite number"));
    }
    EXPECT_THAT(refusal("5 % 0.9", Formula::Mode::Float).message, HasSubstr("modulo by zero"));
    for (const char* text : {"1e30 & 1", "1 << 1e19", "~(0/0)", "1e300 % 7"})
        EXPECT_THAT(refusal(text, Formula::Mode::Float).message, HasSubstr("does not fit into 64 bits")) << text;
}

TEST(FormulaError, SubExpressionsAndConstantsAreNamed) {
    const FormulaText constants[] = {{"BAD", "12 apples"}, {"INFINITE", "INF"}, {"SIGNS", "--1"}, {"NONE", ""}};
    const FormulaText expressions[] = {{"LOOP", "LOOP + 1"}, {"PING", "PONG"},     {"PONG", "PING"},
                                       {"HALF", "1 +"},      {"DEEP", "HALF * 2"}, {"OPEN", "(1"}};
    FormulaNames names{{}, constants, expressions};
    auto message = [&](std::string_view text) { return refusal(text, Formula::Mode::Float, names).message; };
    for (const char* name : {"BAD", "INFINITE", "SIGNS", "NONE"}) EXPECT_NE("accepted", message(name)) << name;
    EXPECT_THAT(message("LOOP"), HasSubstr("uses itself"));
    EXPECT_THAT(message("PING"), HasSubstr("uses itself"));
    EXPECT_THAT(message("5 + HALF"),
                HasSubstr("in the expression 'HALF': the formula ends where a value is missing at column 4"));
    EXPECT_THAT(message("DEEP"), HasSubstr("in the expression 'HALF'"));
    EXPECT_THAT(message("OPEN + 1)"), HasSubstr("in the expression 'OPEN'")) << "brackets do not reach out of an expression";
}

TEST(FormulaError, LimitsHoldAndOrdinaryLengthIsFarBelowThem) {
    EXPECT_THAT(refusal(repeated("(", 5000) + "1" + repeated(")", 5000)).message, HasSubstr("nested too deeply"));
    EXPECT_THAT(refusal(repeated("(", 1000000)).message, HasSubstr("nested too deeply"));
    EXPECT_THAT(refusal(repeated("ABS(", 5000)).message, HasSubstr("nested too deeply"));
    EXPECT_THAT(refusal(repeated("1+(", 500) + "1" + repeated(")", 500)).message, HasSubstr("too many intermediate results"));
    EXPECT_THAT(refusal(repeated("2**", 500) + "1").message, HasSubstr("too many intermediate results"));
    EXPECT_THAT(refusal(repeated("1+", 100000) + "1").message, HasSubstr("too many steps"));
    EXPECT_THAT(refusal(std::string(2 << 20, ' ')).message, HasSubstr("too long"));

    const std::string_view variables[] = {"X"};
    std::string table, nested, brackets;
    for (int i = 0; i < 900; ++i) {
        std::string choice = "X=" + std::to_string(i) + "?" + std::to_string(i * i) + ":";
        table += choice;
        nested += "(" + choice;
        brackets += ")";
    }
    const int64_t slots[] = {899};
    for (const std::string& text : {table + "-1", nested + "-1" + brackets})
        EXPECT_EQ(899 * 899, Formula::Compile(text, Formula::Mode::Integer, {variables, {}, {}}).RunInteger(slots));
    EXPECT_EQ(1, Formula::Compile(repeated("-", 30000) + "1", Formula::Mode::Integer, {}).RunInteger({}))
        << "signs need no stack";
}

TEST(FormulaError, DoublingSubExpressionsIsBounded) {
    std::vector<std::string> texts;
    for (char c = 'A'; c < 'A' + 15; ++c) texts.push_back(std::string(1, c));
    std::vector<std::string> bodies;
    for (size_t i = 0; i + 1 < texts.size(); ++i) bodies.push_back(repeated(texts[i + 1] + "+", 20) + "1");
    bodies.push_back(std::string(1000, ' ') + "1");
    std::vector<FormulaText> expressions;
    for (size_t i = 0; i < texts.size(); ++i) expressions.push_back({texts[i], bodies[i]});
    EXPECT_THAT(refusal("A", Formula::Mode::Integer, {{}, {}, expressions}).message, HasSubstr("too "));
}

TEST(FormulaError, RunsOnlyAsWhatItWasCompiledFor) {
    const std::string_view variables[] = {"A", "B"};
    Formula formula = Formula::Compile("B", Formula::Mode::Integer, {variables, {}, {}});
    const int64_t one[] = {1};
    EXPECT_THROW(formula.RunInteger(one), FormulaError);
    const double two[] = {1, 2};
    EXPECT_THROW(formula.RunFloat(two), FormulaError);
}

TEST(FormulaError, NoTextCrashesTheCompiler) {
    // Texts of tokens in random order reach deeper than random bytes.
    const char* const pieces[] = {"1", "0x1F", "2.5", "A", "S",  "ABS(", "ROUND(", "(",  ")",   ",",   "?", ":",
                                  "+", "-",    "*",   "/", "%",  "**",   "<<",     ">>", "&&",  "||",  "&", "|",
                                  "^", "~",    "!",   "=", "<>", "<=",   " ",      "PI", "E()", "\x80"};
    const std::string_view variables[] = {"A"};
    const FormulaText expressions[] = {{"S", "A ? 1 : 2"}};
    FormulaNames names{variables, {}, expressions};
    const int64_t integers[] = {5};
    const double reals[] = {0.25};
    std::mt19937 random(1);
    int ran = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string text;
        for (unsigned length = random() % 12 + 1; length != 0; --length) text += pieces[random() % std::size(pieces)];
        try {
            Formula::Compile(text, Formula::Mode::Integer, names).RunInteger(integers);
            Formula::Compile(text, Formula::Mode::Float, names).RunFloat(reals);
            ++ran;
        } catch (const FormulaError& e) {
            ASSERT_STRNE("", e.what());
        }
    }
    EXPECT_GT(ran, 500) << "too few of the texts were formulas for this to say anything";
}

}  // namespace
}  // namespace kiv::genapi
