#include "genapi/src/formula/FormulaLexer.h"

namespace GENAPI_NAMESPACE::inside {

namespace {

// The order of the language, loosest first.
constexpr BinaryOperator kOperators[] = {
    {"||", 2, Op::Truth},        {"&&", 3, Op::Truth},     {"|", 4, Op::Or},          {"^", 5, Op::Xor},
    {"&", 6, Op::And},           {"=", 7, Op::Equal},      {"==", 7, Op::Equal},      {"<>", 7, Op::NotEqual},
    {"!=", 7, Op::NotEqual},     {"<", 8, Op::Less},       {"<=", 8, Op::LessEqual},  {">", 8, Op::Greater},
    {">=", 8, Op::GreaterEqual}, {"<<", 9, Op::ShiftLeft}, {">>", 9, Op::ShiftRight}, {"+", 10, Op::Add},
    {"-", 10, Op::Subtract},     {"*", 11, Op::Multiply},  {"/", 11, Op::Divide},     {"%", 11, Op::Modulo},
};

const BinaryOperator* FindOperator(std::string_view symbol) {
    for (const BinaryOperator& op : kOperators)
        if (op.symbol.size() == symbol.size() && op.symbol[0] == symbol[0] &&
            op.symbol.back() == symbol.back())
            return &op;
    return nullptr;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool IsNamePart(char c) {
    return IsNameStart(c) || IsDigit(c) || c == '.';
}
bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

} // namespace

void FormulaLexer::Next() {
    while (m_offset < m_text.size() && IsBlank(m_text[m_offset]))
        ++m_offset;
    m_start = m_offset;
    text = {};
    m_operator = nullptr;
    if (m_offset == m_text.size()) {
        token = Token::End;
        return;
    }
    const char c = m_text[m_offset];
    const bool fraction = c == '.' && m_offset + 1 < m_text.size() && IsDigit(m_text[m_offset + 1]);
    if (IsDigit(c) || fraction) {
        LexNumber();
    } else if (IsNameStart(c)) {
        while (m_offset < m_text.size() && IsNamePart(m_text[m_offset]))
            ++m_offset;
        token = Token::Name;
        text = m_text.substr(m_start, m_offset - m_start);
    } else {
        LexSymbol();
    }
}

void FormulaLexer::LexNumber() {
    const auto digits = [this](auto accepts) {
        while (m_offset < m_text.size() && accepts(m_text[m_offset]))
            ++m_offset;
    };
    const auto at = [this](size_t offset) { return offset < m_text.size() ? m_text[offset] : '\0'; };
    if (m_text[m_offset] == '0' && (at(m_offset + 1) == 'x' || at(m_offset + 1) == 'X')) {
        m_offset += 2;
        digits(IsHexDigit);
    } else {
        digits(IsDigit);
        if (at(m_offset) == '.') {
            ++m_offset;
            digits(IsDigit);
        }
        if (at(m_offset) == 'e' || at(m_offset) == 'E') {
            const size_t sign = at(m_offset + 1) == '+' || at(m_offset + 1) == '-' ? 1 : 0;
            if (IsDigit(at(m_offset + 1 + sign))) {
                m_offset += 1 + sign;
                digits(IsDigit);
            }
        }
    }
    token = Token::Number;
    text = m_text.substr(m_start, m_offset - m_start);
    const auto value = ParseNumber(text);
    if (!value || (m_offset < m_text.size() && IsNamePart(m_text[m_offset])))
        throw FormulaError("bad number at position " + std::to_string(m_start));
    // A decimal literal above INT64_MAX is meant as a float, unlike a hexadecimal bit pattern.
    number = value->isInteger && value->integer < 0 && text.find_first_of("xX") == text.npos
                 ? Number::Of(static_cast<double>(static_cast<uint64_t>(value->integer)))
                 : *value;
}

void FormulaLexer::LexSymbol() {
    static constexpr std::string_view kSymbols[] = {
        "**", "||", "&&", "<>", "<=", ">=", "<<", ">>", "==", "!="};
    token = Token::Symbol;
    const char second = m_offset + 1 < m_text.size() ? m_text[m_offset + 1] : '\0';
    for (const std::string_view symbol : kSymbols)
        if (m_text[m_offset] == symbol[0] && second == symbol[1]) {
            text = symbol;
            m_offset += 2;
            m_operator = FindOperator(text);
            return;
        }
    static constexpr std::string_view kSingle = "?:|^&=<>+-*/%~!(),";
    if (kSingle.find(m_text[m_offset]) == kSingle.npos)
        throw FormulaError("unexpected character at position " + std::to_string(m_offset));
    text = m_text.substr(m_offset, 1);
    ++m_offset;
    m_operator = FindOperator(text);
}

bool FormulaLexer::Take(std::string_view symbol) {
    if (token != Token::Symbol || text != symbol)
        return false;
    Next();
    return true;
}

bool FormulaLexer::NextIsParenthesis() const {
    size_t offset = m_offset;
    while (offset < m_text.size() && IsBlank(m_text[offset]))
        ++offset;
    return offset < m_text.size() && m_text[offset] == '(';
}

} // namespace GENAPI_NAMESPACE::inside
