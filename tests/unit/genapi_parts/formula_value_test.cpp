// What formulas compute: precedence, number types, literals, functions, names.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "formula/formula.h"

namespace kiv::genapi {
namespace {

constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
constexpr int64_t highest = std::numeric_limits<int64_t>::max();

int64_t integer(std::string_view text) { return Formula::Compile(text, Formula::Mode::Integer, {}).RunInteger({}); }
double real(std::string_view text) { return Formula::Compile(text, Formula::Mode::Float, {}).RunFloat({}); }

template <typename T>
struct Row {
    const char* text;
    T expected;
};

void expect_integers(std::span<const Row<int64_t>> rows) {
    for (auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_NO_THROW(EXPECT_EQ(row.expected, integer(row.text)));
    }
}

void expect_reals(std::span<const Row<double>> rows) {
    for (auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_NO_THROW(EXPECT_DOUBLE_EQ(row.expected, real(row.text)));
    }
}

TEST(FormulaValue, OperatorsBindAsTheStandardOrdersThem) {
    // Each row gives another result when its two operators change places.
    constexpr Row<int64_t> rows[] = {
        {"1 || 0 ? 2 : 3", 2}, {"1 || 1 && 0", 1},   {"0 && 0 | 1", 0},   {"1 | 3 ^ 1", 3},     {"1 ^ 3 & 2", 3},
        {"6 & 2 = 2", 0},      {"0 = 5 < 3", 1},     {"1 < 1 << 1", 1},   {"1 << 2 + 1", 8},    {"2 + 3 * 4", 14},
        {"2 * 3 ** 2", 18},    {"-1 ** 2", 1},       {"2 ** -1 + 5", 5},  {"2**3**2", 512},     {"100 - 10 - 1", 89},
        {"100 / 10 / 5", 2},   {"100 / 10 * 5", 50}, {"17 % 10 * 2", 14}, {"256 >> 4 >> 2", 4}, {"3 > 2 > 1", 0},
        {"2 = 2 = 1", 1},      {"(2 + 3) * 4", 20},  {"- - 3", 3},        {"~-1", 0},           {"!0 + !5", 1},
        {"3 - -3", 6},         {"3*-2", -6},         {"4<-1", 0},         {"2=-2", 0},
    };
    expect_integers(rows);
}

TEST(FormulaValue, EveryOperatorAndItsOtherSpelling) {
    constexpr Row<int64_t> rows[] = {
        {"1=1", 1},
        {"1==1", 1},
        {"1<>2", 1},
        {"1!=1", 0},
        {"2<=2", 1},
        {"3<=2", 0},
        {"2>=3", 0},
        {"3>=3", 1},
        {"2<3", 1},
        {"2>3", 0},
        {"6&3", 2},
        {"6|3", 7},
        {"6^3", 5},
        {"~0&0xFF", 255},
        {"7&&0", 0},
        {"7&&9", 1},
        {"0||9", 1},
        {"0||0", 0},
        {"1<<40", 1099511627776},
        {"-16>>2", -4},
        {"+5", 5},
        {"5/3", 1},
        {"-5/3", -1},
        {"-5%3", -2},
        {"5%-3", 2},
        {"2**0", 1},
        {"2**-1", 0},
        {"(-2)**3", -8},
        {"((640-7)/8)*8", 632},
    };
    expect_integers(rows);
}

TEST(FormulaValue, OnlyTheChosenBranchCounts) {
    constexpr Row<int64_t> rows[] = {
        {"0 ? 1/0 : 7", 7},         {"1 ? 7 : 1/0", 7},           {"0 && 1/0", 0},          {"3 || 1/0", 1},
        {"0 && 1/0 || 5", 1},       {"1 ? 0 ? 1/0 : 4 : 1/0", 4}, {"0 ? 1 : 0 ? 2 : 3", 3}, {"0 ? 1 : 1 ? 2 : 3", 2},
        {"1 ? 10 : 0 ? 2 : 3", 10}, {"(1 ? 2 : 3) + 10", 12},     {"1 ? 2 : 3 + 10", 2},    {"2 * (0 ? 5 : 6) ** 2", 72},
        {"1 && 0 ? 5 : 6", 6},      {"0 || 0 || 3", 1},           {"1 && 2 && 3", 1},       {"1 && 2 && 0 && 1/0", 0},
        {"5 + (0 && 1/0) * 2", 5},
    };
    expect_integers(rows);
}

TEST(FormulaValue, IntegersWrapAndNeverOverflow) {
    constexpr Row<int64_t> rows[] = {
        {"0x7FFFFFFFFFFFFFFF + 1", lowest},
        {"0x8000000000000000 - 1", highest},
        {"0x7FFFFFFFFFFFFFFF * 2", -2},
        {"-0x8000000000000000", lowest},
        {"ABS(0x8000000000000000)", lowest},
        {"0x8000000000000000 / -1", lowest},
        {"0x8000000000000000 % -1", 0},
        {"3 ** 64", 8733086111712066817},
        {"1 << 63", lowest},
        {"1 << 64", 0},
        {"1 << -1", 0},
        {"-1 >> 64", -1},
        {"5 >> 64", 0},
        {"-5 >> -1", -1},
        {"-9223372036854775808", lowest},
        {"0xFFFFFFFFFFFFFFFF", -1},
        {"(0xFFFF0000 << 16) >> 16", 0xFFFF0000},
    };
    expect_integers(rows);
}

TEST(FormulaValue, Literals) {
    constexpr Row<int64_t> integers[] = {
        {"0x10+1", 17}, {"0XfF", 255}, {"9 / 4.9", 2}, {"1e3", 1000}, {"2.5E1", 25}, {".9", 0}, {"5.", 5}, {" \t\n42\r ", 42},
    };
    expect_integers(integers);
    constexpr Row<double> reals[] = {
        {".5", 0.5}, {"5.", 5}, {"1.5E-3", 0.0015}, {"1e9", 1e9}, {"0x10", 16}, {"0xFFFFFFFFFFFFFFFF", -1}, {"1e+2", 100},
    };
    expect_reals(reals);
}

TEST(FormulaValue, FloatsDivideAndCompareAsReals) {
    constexpr Row<double> rows[] = {
        {"5/3", 5.0 / 3},   {"1/10", 0.1},          {"625/10", 62.5},
        {"7.9 % 4.9", 3},   {"-7 % 4", -3},         {"2 ** 0.5", std::numbers::sqrt2},
        {"2 ** -1", 0.5},   {"0.1 + 0.2 = 0.3", 0}, {"0.5 && 0.1", 1},
        {"0.0 || -0.0", 0}, {"7.9 & 3.9", 3},       {"6.5 | 1", 7},
        {"6 ^ 3.2", 5},     {"~0.9", -1},           {"1.9 << 3.9", 8},
        {"-16.5 >> 2", -4}, {"0.4 ? 2.5 : 3", 2.5}, {"!0.5", 0},
        {"0 ? 1/0 : 7", 7}, {"1 / (1 / 0)", 0},     {"-0x10", -16},
    };
    expect_reals(rows);
}

TEST(FormulaValue, Functions) {
    constexpr double pi = std::numbers::pi;
    constexpr Row<double> reals[] = {
        {"SGN(-2.5)", -1},
        {"SGN(0)", 0},
        {"sgn(7)", 1},
        {"NEG(3)", -3},
        {"Abs(-2.5)", 2.5},
        {"SQRT(2.25)", 1.5},
        {"EXP(0)", 1},
        {"LN(E)", 1},
        {"LG(1000)", 3},
        {"SIN(PI/2)", 1},
        {"COS(PI)", -1},
        {"TAN(0)", 0},
        {"ASIN(1)", pi / 2},
        {"ACOS(-1)", pi},
        {"ATAN(1)", pi / 4},
        {"TRUNC(-2.7)", -2},
        {"FLOOR(-2.2)", -3},
        {"CEIL(2.1)", 3},
        {"ROUND(2.5)", 3},
        {"ROUND(-2.5)", -3},
        {"ROUND(1.234,2)", 1.23},
        {"round(1250,-2)", 1300},
        {"ROUND(7.5, 400)", 7.5},
        {"ROUND(7.5,-400)", 0},
        {"E()", std::numbers::e},
        {"PI ( )", pi},
        {"2 * sqrt ( 16 ) + 1", 9},
        {"SQRT(SQRT(81))", 3},
        {"ROUND(ABS(-1.26), 0 ? 2 : 1)", 1.3},
    };
    expect_reals(reals);
    constexpr Row<int64_t> integers[] = {
        {"ABS(-7)", 7},
        {"SGN(-7)", -1},
        {"NEG(7)", -7},
        {"SQRT(17)", 4},
        {"ROUND(17,-1)", 20},
        {"ROUND(17,3)", 17},
        {"LG(999)", 2},
        {"TRUNC(0x7FFFFFFFFFFFFFFF)", highest},
        {"PI", 3},
        {"CEIL(9007199254740993)", 9007199254740993},
    };
    expect_integers(integers);
}

TEST(FormulaValue, VariablesConstantsAndSubExpressions) {
    const std::string_view variables[] = {"A", "a", "Gain.Max", "UNUSED", "Mode.Entry.8Bit", "ABS", "E"};
    const FormulaText constants[] = {{"OFFSET", " -0x10 "}, {"HALF", "0.5"}, {"A", "999"}};
    const FormulaText expressions[] = {{"SUM", "A + a"}, {"TWICE", "SUM * 2"}};
    FormulaNames names{variables, constants, expressions};

    Formula formula = Formula::Compile("TWICE + Gain.Max * OFFSET - Mode.Entry.8Bit", Formula::Mode::Integer, names);
    EXPECT_EQ((std::vector<uint32_t>{0, 1, 2, 4}), std::vector<uint32_t>(formula.UsedSlots().begin(), formula.UsedSlots().end()));
    const int64_t slots[] = {3, 4, 5, 0, 6};
    EXPECT_EQ((3 + 4) * 2 + 5 * -16 - 6, formula.RunInteger(slots));

    const double reals[] = {3, 4, 5, 0, 6, 100, 200};
    auto run = [&](std::string_view text) { return Formula::Compile(text, Formula::Mode::Float, names).RunFloat(reals); };
    EXPECT_EQ(3.5, run("A + HALF")) << "a variable goes before a constant of its name";
    EXPECT_EQ(101, run("ABS(-1) + ABS")) << "a function is one only with its bracket";
    EXPECT_EQ(200, run("E")) << "a variable of that name wins over the number";
    EXPECT_EQ(-14, run("-SUM * 2")) << "a sub-expression is a value, as if it stood in brackets";
    EXPECT_EQ(49, run("SUM ** 2"));
}

TEST(FormulaValue, ManyNamesAreFoundToo) {
    std::vector<std::string> texts;
    for (int i = 0; i < 500; ++i) texts.push_back("V" + std::to_string(i));
    std::vector<std::string_view> variables(texts.begin(), texts.end());
    const FormulaText constants[] = {{"V7", "1"}, {"K", "1000"}};
    Formula formula = Formula::Compile("V7 + V499 * K", Formula::Mode::Integer, {variables, constants, {}});
    std::vector<int64_t> slots(500, 3);
    EXPECT_EQ(3003, formula.RunInteger(slots));
}

}  // namespace
}  // namespace kiv::genapi
