#include "formula/formula_lexer.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <string>

#include "formula/formula_arithmetic.h"

namespace kiv::genapi {

namespace {

// The longer one first where one operator begins with another.
constexpr Operator operators[] = {
    {"||", logicalOrLevel, Opcode::OrSkip},
    {"&&", logicalAndLevel, Opcode::AndSkip},
    {"**", powerLevel, Opcode::Power},
    {"==", 7, Opcode::Equal},
    {"<>", 7, Opcode::NotEqual},
    {"!=", 7, Opcode::NotEqual},
    {"<=", 8, Opcode::LessEqual},
    {">=", 8, Opcode::GreaterEqual},
    {"<<", 9, Opcode::ShiftLeft},
    {">>", 9, Opcode::ShiftRight},
    {"|", 4, Opcode::Or},
    {"^", 5, Opcode::Xor},
    {"&", 6, Opcode::And},
    {"=", 7, Opcode::Equal},
    {"<", 8, Opcode::Less},
    {">", 8, Opcode::Greater},
    {"+", 10, Opcode::Add},
    {"-", 10, Opcode::Subtract},
    {"*", 11, Opcode::Multiply},
    {"/", 11, Opcode::Divide},
    {"%", 11, Opcode::Modulo},
    {"~", unaryLevel, Opcode::Complement},
    {"!", unaryLevel, Opcode::Not},
};

struct Punctuation {
    char character;
    TokenKind kind;
};
constexpr Punctuation punctuation[] = {
    {'(', TokenKind::Open}, {')', TokenKind::Close}, {',', TokenKind::Comma}, {'?', TokenKind::Question}, {':', TokenKind::Colon},
};

// Not those of <cctype>: a formula means the same in every locale.
constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
constexpr bool is_hex_digit(char c) { return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
constexpr bool is_name_character(char c) { return is_letter(c) || is_digit(c) || c == '.'; }

size_t skip(std::string_view text, size_t at, bool (*belongs)(char)) {
    while (at < text.size() && belongs(text[at])) ++at;
    return at;
}

bool is_hex(std::string_view number) { return number.size() > 1 && number[0] == '0' && (number[1] == 'x' || number[1] == 'X'); }

[[noreturn]] void refuse_number(std::string_view number, uint32_t column) {
    throw FormulaError("'" + std::string(number.substr(0, 40)) + "' is no number that fits", column);
}

template <typename T>
T whole_number(std::string_view digits, std::string_view number, uint32_t column, auto... base) {
    T value{};
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base...);
    if (error != std::errc{} || end != digits.data() + digits.size()) refuse_number(number, column);
    return value;
}

}  // namespace

void FormulaLexer::SkipBlanks() { at_ = skip(text_, at_, is_blank); }

bool FormulaLexer::TakeOpen() {
    SkipBlanks();
    if (at_ >= text_.size() || text_[at_] != '(') return false;
    ++at_;
    return true;
}

std::string_view FormulaLexer::NumberText() const {
    std::string_view rest = text_.substr(at_);
    if (is_hex(rest)) return rest.substr(0, skip(rest, 2, is_hex_digit));
    size_t end = skip(rest, 0, is_digit);
    if (end < rest.size() && rest[end] == '.') end = skip(rest, end + 1, is_digit);
    if (end < rest.size() && (rest[end] == 'e' || rest[end] == 'E')) {
        size_t digits = end + 1;
        if (digits < rest.size() && (rest[digits] == '+' || rest[digits] == '-')) ++digits;
        if (size_t after = skip(rest, digits, is_digit); after > digits) end = after;
    }
    return rest.substr(0, end);
}

Token FormulaLexer::Next() {
    SkipBlanks();
    Token token{.column = static_cast<uint32_t>(at_ + 1)};
    if (at_ == text_.size()) return token;
    std::string_view rest = text_.substr(at_);
    char c = rest[0];
    if (is_letter(c)) {
        token.kind = TokenKind::Name;
        token.text = rest.substr(0, skip(rest, 0, is_name_character));
    } else if (is_digit(c) || (c == '.' && rest.size() > 1 && is_digit(rest[1]))) {
        token.kind = TokenKind::Number;
        token.text = NumberText();
        size_t end = token.text.size();
        if (end < rest.size() && is_name_character(rest[end]))
            throw FormulaError("a number with '" + std::string(1, rest[end]) + "' behind it", token.column);
    } else if (auto* mark = std::ranges::find(punctuation, c, &Punctuation::character); mark != std::end(punctuation)) {
        token.kind = mark->kind;
        token.text = rest.substr(0, 1);
    } else {
        auto* op = std::ranges::find_if(operators, [rest](const Operator& o) { return rest.starts_with(o.text); });
        if (op == std::end(operators)) throw FormulaError("a character that means nothing in a formula", token.column);
        token.kind = TokenKind::Operator;
        token.text = op->text;
        token.op = op;
    }
    at_ += token.text.size();
    return token;
}

uint64_t literal_bits(std::string_view number, Formula::Mode mode, uint32_t column) {
    bool integer = mode == Formula::Mode::Integer;
    if (is_hex(number)) {
        uint64_t bits = whole_number<uint64_t>(number.substr(2), number, column, 16);
        return integer ? bits : std::bit_cast<uint64_t>(static_cast<double>(static_cast<int64_t>(bits)));
    }
    if (integer && number.find_first_of(".eE") == number.npos) return whole_number<uint64_t>(number, number, column);
    double value = whole_number<double>(number, number, column);
    return integer ? static_cast<uint64_t>(integer_of(value, column)) : std::bit_cast<uint64_t>(value);
}

uint64_t constant_bits(const FormulaText& constant, Formula::Mode mode, uint32_t column) {
    std::string_view text = constant.text;
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    // A sign, INF and the like are accepted by the conversion, but are no literals.
    if (text.empty() || !(is_digit(text[0]) || text[0] == '.')) refuse_number(constant.text, column);
    uint64_t bits = literal_bits(text, mode, column);
    if (!negative) return bits;
    return mode == Formula::Mode::Integer ? 0 - bits : std::bit_cast<uint64_t>(-std::bit_cast<double>(bits));
}

}  // namespace kiv::genapi
