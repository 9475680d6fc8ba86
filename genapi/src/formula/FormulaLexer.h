#pragma once

#include "genapi/src/formula/Formula.h"

namespace GENAPI_NAMESPACE::inside {

enum class Token : uint8_t { End, Number, Name, Symbol };

/// A symbol by its one or two characters.
constexpr uint16_t SymbolCode(std::string_view symbol) {
    return static_cast<uint16_t>(symbol[0] | (symbol.size() > 1 ? symbol[1] << 8 : 0));
}

/// A symbol of the language. Between two operands it has a precedence, the loosest first; elsewhere 0. && and
/// || are compiled to jumps and have no instruction of their own.
struct SymbolRow {
    uint16_t code;
    int precedence;
    Op op;
};

/// Cuts a formula into tokens. The current one stands in the members.
class FormulaLexer {
public:
    explicit FormulaLexer(std::string_view text) : m_text(text) { Next(); }

    void Next();
    /// True, and past it, when the current token is that symbol.
    bool Take(std::string_view symbol) {
        if (!m_symbol || m_symbol->code != SymbolCode(symbol))
            return false;
        Next();
        return true;
    }
    bool NextIsParenthesis() const;
    size_t Position() const { return m_start; }

    /// The operator that the current token is when it stands between operands, else null.
    const SymbolRow* Operator() const { return m_symbol && m_symbol->precedence > 0 ? m_symbol : nullptr; }

    Token token = Token::End;
    std::string_view text; ///< of a name or number
    Number number;         ///< of a number

private:
    void LexNumber();
    void LexSymbol();

    std::string_view m_text;
    size_t m_start = 0;
    size_t m_offset = 0;
    const SymbolRow* m_symbol = nullptr; ///< null when the current token is none
};

} // namespace GENAPI_NAMESPACE::inside
