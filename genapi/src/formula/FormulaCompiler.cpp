#include "genapi/src/formula/FormulaLexer.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

// What a device may make us spend: real formulas stay below a tenth of each.
constexpr size_t kMaxTextLength = 64 * 1024;
constexpr size_t kMaxInstructions = 64 * 1024;
constexpr size_t kMaxNesting = 256; // bounds the operands that wait for each other as well

struct FunctionName {
    std::string_view name;
    Function function;
    uint8_t maxOperands;
};

constexpr FunctionName kFunctions[] = {
    {"SGN", Function::Sgn, 1},     {"NEG", Function::Neg, 1},   {"ATAN", Function::Atan, 1},
    {"COS", Function::Cos, 1},     {"SIN", Function::Sin, 1},   {"TAN", Function::Tan, 1},
    {"ABS", Function::Abs, 1},     {"EXP", Function::Exp, 1},   {"LN", Function::Ln, 1},
    {"LG", Function::Lg, 1},       {"SQRT", Function::Sqrt, 1}, {"TRUNC", Function::Trunc, 1},
    {"FLOOR", Function::Floor, 1}, {"CEIL", Function::Ceil, 1}, {"ROUND", Function::Round, 2},
    {"ASIN", Function::Asin, 1},   {"ACOS", Function::Acos, 1},
};

const FunctionName* FindFunction(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kFunctions), std::end(kFunctions),
                     [name](const FunctionName& f) { return EqualIgnoringCase(f.name, name); });
    return found == std::end(kFunctions) ? nullptr : found;
}

class Compiler {
public:
    Compiler(FormulaDraft& formula, bool integer, SymbolTable& symbols)
        : m_formula(formula), m_integer(integer), m_symbols(symbols) {}

    void CompileText(std::string_view text) {
        if (text.size() > kMaxTextLength)
            throw FormulaError("longer than " + std::to_string(kMaxTextLength) + " characters");
        FormulaLexer lexer(text);
        FormulaLexer* const outer = m_lexer;
        m_lexer = &lexer;
        Ternary();
        if (lexer.token != Token::End)
            Fail("unexpected text");
        m_lexer = outer;
    }

private:
    class Nesting {
    public:
        explicit Nesting(Compiler& compiler) : m_compiler(compiler) {
            if (++m_compiler.m_nesting > kMaxNesting)
                throw FormulaError("nested deeper than " + std::to_string(kMaxNesting));
        }
        ~Nesting() { --m_compiler.m_nesting; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Compiler& m_compiler;
    };

    [[noreturn]] void Fail(const char* what) const {
        throw FormulaError(std::string(what) + " at position " + std::to_string(m_lexer->Position()));
    }

    size_t Emit(Instruction instruction, int stackChange) {
        // Counts what has been folded as well: expressions of expressions of constants take time and no code.
        if (++m_emitted > kMaxInstructions)
            throw FormulaError("compiles to more than " + std::to_string(kMaxInstructions) + " steps");
        m_formula.code.push_back(instruction);
        m_depth = static_cast<size_t>(static_cast<int>(m_depth) + stackChange);
        m_formula.stackSize = std::max(m_formula.stackSize, static_cast<uint32_t>(m_depth));
        return m_formula.code.size() - 1;
    }
    size_t Emit(Op op, int stackChange) { return Emit(Instruction{op, 0, 0, {}}, stackChange); }
    void LandHere(size_t jump) {
        m_landed = m_formula.code.size();
        m_formula.code[jump].argument = static_cast<uint32_t>(m_landed);
    }
    // What has only constants for operands is one, unless a jump arrives among them or there is no value:
    // that may be where nobody ever comes.
    void EmitOn(size_t operands, Instruction instruction) {
        Emit(instruction, 1 - static_cast<int>(operands));
        std::vector<Instruction>& code = m_formula.code;
        const auto begin = code.end() - static_cast<std::ptrdiff_t>(operands + 1);
        const bool constant = static_cast<size_t>(begin - code.begin()) >= m_landed &&
                              std::all_of(begin, code.end() - 1, [](const Instruction& operand) {
                                  return operand.op == Op::PushInteger || operand.op == Op::PushReal;
                              });
        const auto value =
            constant ? EvaluateConstants(&*begin, operands + 1, m_integer) : std::optional<Number>();
        if (!value)
            return;
        code.erase(begin, code.end());
        --m_depth;
        Push(*value);
    }
    void EmitOn(size_t operands, Op op) { EmitOn(operands, Instruction{op, 0, 0, {}}); }
    void Push(Number value) {
        Instruction push{Op::PushInteger, 0, 0, {}};
        if (m_integer || value.isInteger) {
            push.integer = value.AsInteger();
        } else {
            push.op = Op::PushReal;
            push.real = value.real;
        }
        Emit(push, 1);
    }

    // A loop over the else branches: long chains of conditions are common and must not nest. Until the end is
    // known, each jump to it names the one before.
    void Ternary() {
        const Nesting nesting(*this);
        constexpr uint32_t kNone = 0xFFFFFFFF;
        uint32_t end = kNone;
        for (;;) {
            Binary(2);
            if (!m_lexer->Take("?"))
                break;
            const size_t toElse = Emit(Op::JumpIfZero, -1);
            Ternary();
            if (!m_lexer->Take(":"))
                Fail("':' expected");
            end = static_cast<uint32_t>(Emit(Instruction{Op::Jump, 0, end, {}}, -1));
            LandHere(toElse);
        }
        while (end != kNone) {
            const uint32_t before = m_formula.code[end].argument;
            LandHere(end);
            end = before;
        }
    }

    void Binary(int loosest) {
        Power();
        for (const SymbolRow* op = CurrentOperator(loosest); op; op = CurrentOperator(loosest)) {
            m_lexer->Next();
            if (op->op == Op::Truth) {
                Logical(*op);
            } else {
                Binary(op->precedence + 1);
                EmitOn(2, op->op);
            }
        }
    }

    const SymbolRow* CurrentOperator(int loosest) const {
        const SymbolRow* const op = m_lexer->Operator();
        return op && op->precedence >= loosest ? op : nullptr;
    }

    void Logical(const SymbolRow& op) {
        const bool isOr = op.code == SymbolCode("||");
        const size_t decided = Emit(isOr ? Op::JumpIfNotZero : Op::JumpIfZero, -1);
        Binary(op.precedence + 1);
        Emit(Op::Truth, 0);
        const size_t end = Emit(Op::Jump, -1);
        LandHere(decided);
        Push(Number::Of(int64_t{isOr ? 1 : 0}));
        LandHere(end);
    }

    void Power() {
        const Nesting nesting(*this);
        Unary();
        if (m_lexer->Take("**")) {
            Power();
            EmitOn(2, Op::Power);
        }
    }

    void Unary() {
        const Nesting nesting(*this);
        const bool plus = m_lexer->Take("+");
        if (plus) {
            Unary();
        } else if (m_lexer->Take("-")) {
            Unary();
            EmitOn(1, Op::Negate);
        } else if (m_lexer->Take("~")) {
            Unary();
            EmitOn(1, Op::Invert);
        } else if (m_lexer->Take("!")) {
            Unary();
            EmitOn(1, Op::Not);
        } else {
            Primary();
        }
    }

    void Primary() {
        if (m_lexer->token == Token::Number) {
            Push(m_lexer->number);
            m_lexer->Next();
        } else if (m_lexer->token == Token::Name) {
            Name();
        } else if (m_lexer->Take("(")) {
            Ternary();
            if (!m_lexer->Take(")"))
                Fail("')' expected");
        } else {
            Fail("operand expected");
        }
    }

    // Declared names come before functions and constants: real descriptions have variables called EXP.
    void Name() {
        const std::string_view name = m_lexer->text;
        const Symbol symbol = m_symbols.Find(name);
        if (symbol.kind == Symbol::Kind::Undefined && m_lexer->NextIsParenthesis()) {
            if (const FunctionName* function = FindFunction(name)) {
                Call(*function);
                return;
            }
        }
        m_lexer->Next();
        if (symbol.kind == Symbol::Kind::Undefined && (name == "PI" || name == "E"))
            Push(Number::Of(name == "PI" ? 3.14159265358979323846 : 2.71828182845904523536));
        else
            Load(name, symbol);
    }

    void Load(std::string_view name, const Symbol& symbol) {
        switch (symbol.kind) {
        case Symbol::Kind::Variable:
            Emit(Instruction{Op::Load, 0, symbol.slot, {}}, 1);
            break;
        case Symbol::Kind::Constant:
            Push(symbol.constant);
            break;
        case Symbol::Kind::Expression:
            Expression(name, symbol.expression);
            break;
        case Symbol::Kind::Undefined:
            m_formula.undefined.emplace_back(name);
            Emit(Instruction{Op::Undefined, 0, static_cast<uint32_t>(m_formula.undefined.size() - 1), {}}, 1);
            break;
        }
    }

    void Expression(std::string_view name, std::string_view text) {
        if (std::find(m_expressions.begin(), m_expressions.end(), name) != m_expressions.end())
            throw FormulaError("expression '" + std::string(name) + "' refers to itself");
        m_expressions.emplace_back(name);
        CompileText(text);
        m_expressions.pop_back();
    }

    void Call(const FunctionName& function) {
        m_lexer->Next();
        m_lexer->Next();
        uint8_t count = 0;
        do {
            Ternary();
            ++count;
        } while (count < function.maxOperands && m_lexer->Take(","));
        if (!m_lexer->Take(")"))
            Fail("')' expected");
        EmitOn(count, Instruction{Op::Function, count, static_cast<uint32_t>(function.function), {}});
    }

    FormulaDraft& m_formula;
    const bool m_integer;
    SymbolTable& m_symbols;
    FormulaLexer* m_lexer = nullptr;
    std::vector<std::string> m_expressions;
    size_t m_nesting = 0;
    size_t m_depth = 0;
    size_t m_emitted = 0;
    size_t m_landed = 0; ///< where the last jump arrives that has arrived
};

} // namespace

void CompileFormula(std::string_view text, bool integer, SymbolTable& symbols, FormulaDraft& draft) {
    draft.code.clear();
    draft.undefined.clear();
    draft.stackSize = 0;
    Compiler(draft, integer, symbols).CompileText(text);
}

} // namespace GENAPI_NAMESPACE::inside
