#pragma once

#include "genapi/src/formula/Formula.h"

namespace GENAPI_NAMESPACE::inside {

enum class Token : uint8_t { End, Number, Name, Symbol };

/// An operator between two operands. && and || are compiled to jumps and have no instruction of their own.
struct BinaryOperator {
    std::string_view symbol;
    int precedence;
    Op op;
};

/// Cuts a formula into tokens. The current one stands in the members.
class FormulaLexer {
public:
    explicit FormulaLexer(std::string_view text) : m_text(text) { Next(); }

    void Next();
    /// True, and past it, when the current token is that symbol.
    bool Take(std::string_view symbol);
    bool NextIsParenthesis() const;
    size_t Position() const { return m_start; }

    /// The operator that the current token is when it stands between operands, else null.
    const BinaryOperator* Operator() const { return m_operator; }

    Token token = Token::End;
    std::string_view text; ///< of a name or symbol
    Number number;         ///< of a number

private:
    void LexNumber();
    void LexSymbol();

    std::string_view m_text;
    size_t m_start = 0;
    size_t m_offset = 0;
    const BinaryOperator* m_operator = nullptr;
};

} // namespace GENAPI_NAMESPACE::inside
