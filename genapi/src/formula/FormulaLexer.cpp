#include "genapi/src/formula/FormulaLexer.h"

#include <array>
#include <iterator>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr SymbolRow Row(std::string_view symbol, int precedence = 0, Op op = Op::Truth) {
    return {SymbolCode(symbol), precedence, op};
}

// By first character; the longer ones first, and for each character one of it alone.
constexpr SymbolRow kSymbols[] = {
    Row("!=", 7, Op::NotEqual),
    Row("!"),
    Row("%", 11, Op::Modulo),
    Row("&&", 3),
    Row("&", 6, Op::And),
    Row("("),
    Row(")"),
    Row("**"),
    Row("*", 11, Op::Multiply),
    Row("+", 10, Op::Add),
    Row(","),
    Row("-", 10, Op::Subtract),
    Row("/", 11, Op::Divide),
    Row(":"),
    Row("<<", 9, Op::ShiftLeft),
    Row("<=", 8, Op::LessEqual),
    Row("<>", 7, Op::NotEqual),
    Row("<", 8, Op::Less),
    Row("==", 7, Op::Equal),
    Row("=", 7, Op::Equal),
    Row(">=", 8, Op::GreaterEqual),
    Row(">>", 9, Op::ShiftRight),
    Row(">", 8, Op::Greater),
    Row("?"),
    Row("^", 5, Op::Xor),
    Row("||", 2),
    Row("|", 4, Op::Or),
    Row("~"),
};

/// The first row for each character, or the end.
constexpr auto kFirstRows = [] {
    std::array<uint8_t, 256> rows{};
    for (uint8_t& row : rows)
        row = static_cast<uint8_t>(std::size(kSymbols));
    for (size_t i = std::size(kSymbols); i-- > 0;)
        rows[kSymbols[i].code & 0xFF] = static_cast<uint8_t>(i);
    return rows;
}();

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
    m_symbol = nullptr;
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
    const auto first = static_cast<unsigned char>(m_text[m_offset]);
    const auto second =
        static_cast<unsigned char>(m_offset + 1 < m_text.size() ? m_text[m_offset + 1] : '\0');
    const SymbolRow* row = kSymbols + kFirstRows[first];
    while (row != std::end(kSymbols) && row->code != (first | second << 8) && row->code != first)
        ++row;
    if (row == std::end(kSymbols))
        throw FormulaError("unexpected character at position " + std::to_string(m_offset));
    token = Token::Symbol;
    m_symbol = row;
    m_offset += row->code > 0xFF ? 2 : 1;
}

bool FormulaLexer::NextIsParenthesis() const {
    size_t offset = m_offset;
    while (offset < m_text.size() && IsBlank(m_text[offset]))
        ++offset;
    return offset < m_text.size() && m_text[offset] == '(';
}

} // namespace GENAPI_NAMESPACE::inside
