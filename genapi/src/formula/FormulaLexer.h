#pragma once

#include "genapi/src/formula/Formula.h"

namespace GENAPI_NAMESPACE::inside {

enum class Token : uint8_t { End, Number, Name, Symbol };

/// Cuts a formula into tokens. The current one stands in the members.
class FormulaLexer {
public:
    explicit FormulaLexer(std::string_view text) : m_text(text) { Next(); }

    void Next();
    /// True, and past it, when the current token is that symbol.
    bool Take(std::string_view symbol);
    bool NextIsParenthesis() const;
    size_t Position() const { return m_start; }

    Token token = Token::End;
    std::string_view text; ///< of a name or symbol
    Number number;         ///< of a number

private:
    void LexNumber();
    void LexSymbol();

    std::string_view m_text;
    size_t m_start = 0;
    size_t m_offset = 0;
};

} // namespace GENAPI_NAMESPACE::inside
